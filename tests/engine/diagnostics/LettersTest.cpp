#include "Cross/engine/diagnostics/Letters.h"

#include <gtest/gtest.h>

TEST(Letters, ShowsTheLettersOfACode) {
    struct Case {
        std::uint32_t code;
        char const * text;
    };

    constexpr Case c_cases[] = {
        {0x494E56, "INV"},
        {0x5042474D, "PBGM"},
        {0x41, "A"},
        {0, ""},
        {0x20202020, "    "},
        // zeros in front are no letters; elsewhere they are unprintable
        {0x41000042, "A??B"},
        {0x00410000, "A??"},
        // first and last printable byte, and their neighbours
        {0x207E1F7F, " ~??"},
        {0xFF80C4E4, "????"},
    };
    for (Case const & each : c_cases) {
        char text[5] = {'#', '#', '#', '#', '#'};
        dbDecode4Letters(text, each.code);
        EXPECT_STREQ(text, each.text) << std::hex << each.code;
    }
}
