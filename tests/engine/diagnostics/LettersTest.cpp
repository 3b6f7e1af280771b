#include "Cross/engine/diagnostics/Letters.h"

#include <gtest/gtest.h>

TEST(Letters, ShowsTheLettersOfACode) {
    constexpr std::pair<std::uint32_t, char const *> c_cases[] = {
        {0x5042474D, "PBGM"},
        {0, ""},
        // zeros in front are no letters; elsewhere they are unprintable
        {0x00410000, "A??"},
        // first and last printable byte, and their neighbours
        {0x207E1F7F, " ~??"},
        {0xFF80C4E4, "????"},
    };
    for (auto const & [code, expected] : c_cases) {
        char text[5] = {'#', '#', '#', '#', '#'};
        dbDecode4Letters(text, code);
        EXPECT_STREQ(text, expected) << std::hex << code;
    }
}
