#include "Cross/engine/core/Utf.h"

#include <gtest/gtest.h>

namespace {

struct Pair {
    std::string_view narrow;
    std::u16string_view wide;
};

// First and last character of each length, and the neighbours of the surrogates.
constexpr Pair c_wellFormed[] = {
    {"", u""},
    {"a\x7F", u"a\x7F"},
    {{"\0b", 2}, {u"\0b", 2}},
    {"\xC2\x80\xDF\xBF", u"\x80\x7FF"},
    {"\xE0\xA0\x80\xEF\xBF\xBF", u"\x800\xFFFF"},
    {"\xED\x9F\xBF\xEE\x80\x80", u"\xD7FF\xE000"},
    {"\xF0\x90\x80\x80", u"\xD800\xDC00"},
    {"\xF4\x8F\xBF\xBF", u"\xDBFF\xDFFF"},
    {"gr\xC3\xBC\xC3\x9F \xF0\x9F\x97\xA1", u"gr\xFC\xDF \xD83D\xDDE1"},
};

} // namespace

TEST(Utf, ConvertsWellFormedTextBothWays) {
    for (Pair const & each : c_wellFormed) {
        EXPECT_EQ(utf::ToUtf16(each.narrow), each.wide) << each.narrow;
        EXPECT_EQ(utf::ToUtf8(each.wide), each.narrow);
        std::u16string strict = u"before";
        EXPECT_TRUE(utf::ToUtf16Strict(each.narrow, strict)) << each.narrow;
        EXPECT_EQ(strict, each.wide) << each.narrow;
    }
}

TEST(Utf, ReplacesEachBadSequenceAndKeepsTheTextBehindIt) {
    constexpr Pair c_cases[] = {
        // the example in the Unicode standard, chapter 3
        {"a\xF1\x80\x80\xE1\x80\xC2"
         "b\x80"
         "c\x80\xBF"
         "d",
         u"a\xFFFD\xFFFD\xFFFD"
         u"b\xFFFD"
         u"c\xFFFD\xFFFD"
         u"d"},
        // overlong forms of '/', a surrogate, a code above the last one, bytes that never occur
        {"\xC0\xAF", u"\xFFFD\xFFFD"},
        {"\xE0\x80\xAF", u"\xFFFD\xFFFD\xFFFD"},
        {"\xF0\x80\x80\xAF", u"\xFFFD\xFFFD\xFFFD\xFFFD"},
        {"\xED\xA0\x80", u"\xFFFD\xFFFD\xFFFD"},
        {"\xF4\x90\x80\x80", u"\xFFFD\xFFFD\xFFFD\xFFFD"},
        {"\xF5\xFE\xFF", u"\xFFFD\xFFFD\xFFFD"},
        // a quote behind a sequence that breaks off stays a quote
        {"\xC3\"", u"\xFFFD\""},
        {"\xE2\x82\"", u"\xFFFD\""},
        // cut inside a character
        {"\xF0", u"\xFFFD"},
        {"\xF0\x9F", u"\xFFFD"},
        {"\xF0\x9F\x97", u"\xFFFD"},
    };
    for (Pair const & each : c_cases) {
        EXPECT_EQ(utf::ToUtf16(each.narrow), each.wide) << each.narrow;
        std::u16string strict = u"before";
        EXPECT_FALSE(utf::ToUtf16Strict(each.narrow, strict)) << each.narrow;
        EXPECT_EQ(strict, u"") << each.narrow;
    }

    constexpr Pair c_loneSurrogates[] = {
        {"a\xEF\xBF\xBDz", u"a\xD83Dz"},
        {"\xEF\xBF\xBD\xEF\xBF\xBD", u"\xDDE1\xD83D"},
        {"\xEF\xBF\xBD\xF0\x9F\x97\xA1", u"\xD83D\xD83D\xDDE1"},
    };
    for (Pair const & each : c_loneSurrogates)
        EXPECT_EQ(utf::ToUtf8(each.wide), each.narrow);
}
