#include "Cross/engine/platform/File.h"

#include <gtest/gtest.h>

TEST(File, MakesNamesLegal) {
    std::string const most(198, 'a');
    std::pair<std::string, std::string> const cases[] = {
        {"a<b>c:d\"e/f\\g|h?i*j", "a_b_c_d_e_f_g_h_i_j"},
        {"a\tb\nc\x01\x1F\x7F", "a_b_c___"},
        // trailing points and blanks, and only those at the end
        {" .name. x . .", " .name. x"},
        // nothing left
        {"", "_"},
        {" . . ", "_"},
        // 200 bytes are the most
        {most + "bbb", most + "bb"},
        // characters across the end
        {most + "b\xC3\xBC", most + "b"},
        {most + "\xC3\xBC...", most + "\xC3\xBC"},
        {most + "\xF0\x9F\x97\xA1", most},
        // no UTF-8 at all
        {std::string(300, '\x80'), std::string(200, '\x80')},
        // the cut bares a point
        {most + ". b", most},
    };
    for (auto const & [text, name] : cases)
        EXPECT_EQ(Plat::File::ConvertToFilename(text.c_str()), name) << text;
    EXPECT_EQ(Plat::File::ConvertToFilename(nullptr), "_");
}
