#include "Cross/engine/core/Text.h"

#include "tests/support/CommaLocale.h"

#include <gtest/gtest.h>

TEST(Text, ComparesWithoutTheCaseOfAsciiLetters) {
    constexpr std::tuple<char const *, char const *, int> c_cases[] = {
        {"Sword@AZ[`az{", "sWORD@az[`AZ{", 0},
        // a start of the other comes first
        {"sword", "swords", -1},
        {"a", "", 1},
        // the order is that of lower-case letters: '_' stands between the two cases
        {"_", "A", -1},
        {"[", "a", -1},
        // bytes above 127 have no case and come last
        {"\xC4", "\xE4", -1},
        {"z", "\x80", -1},
    };
    for (auto const & [left, right, sign] : c_cases) {
        int const order = text::CompareNoCase(left, right);
        EXPECT_EQ((order > 0) - (order < 0), sign) << left << " and " << right;
    }
}

TEST(Text, CopiesWhatFits) {
    constexpr std::tuple<char const *, std::size_t, char const *, bool> c_cases[] = {
        {"abc", 4, "abc", true}, {"abc", 3, "ab", false},      {"abc", 1, "", false},
        {nullptr, 4, "", true},  {"abc", 0, "#######", false},
    };
    for (auto const & [source, size, result, whole] : c_cases) {
        char buffer[8] = "#######";
        EXPECT_EQ(text::CopyCut(buffer, size, source), whole);
        EXPECT_STREQ(buffer, result);
    }

    char overlapping[] = "path/name";
    EXPECT_TRUE(text::CopyCut(overlapping, sizeof(overlapping), overlapping + 2));
    EXPECT_STREQ(overlapping, "th/name");
}

// The C locale has no euro sign, so the C library refuses a format with one.
TEST(Text, PrintsTextsOfAnyLengthAndIntoBuffers) {
    std::string out;
    for (std::size_t length : {1022u, 1023u, 1024u, 100000u}) {
        std::string const inner(length, 'x');
        EXPECT_TRUE(text::Printf(out, "%s", inner.c_str()));
        EXPECT_EQ(out, inner);
        text::Printf(out, "%s%s", out.c_str(), out.c_str()); // an argument may be the old text
        EXPECT_EQ(out, inner + inner);
    }
    EXPECT_FALSE(text::Printf(out, "price %ls", L"\u20AC"));
    EXPECT_EQ(out, "");

    char buffer[6] = "#####";
    EXPECT_EQ(text::PrintfCut(buffer, 0, "%d", 12345), 5u);
    EXPECT_STREQ(buffer, "#####");
    EXPECT_EQ(text::PrintfCut(buffer, sizeof(buffer), "%d", 123456), 6u);
    EXPECT_STREQ(buffer, "12345");
    EXPECT_EQ(text::PrintfCut(buffer, sizeof(buffer), "price %ls", L"\u20AC"), 0u);
    EXPECT_STREQ(buffer, "");
}

TEST(Text, NumbersHaveAPointUnderAnyLocale) {
    CommaLocale const comma;
    std::string out;
    text::Printf(out, "%.2f", 1234.5);
    EXPECT_EQ(out, "1234.50");
    EXPECT_TRUE(comma.IsCurrent()) << "the caller's locale must be back";
}
