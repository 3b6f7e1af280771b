#include "Cross/engine/core/Utf.h"

#include <gtest/gtest.h>

namespace {

constexpr std::tuple<std::string_view, std::u16string_view, bool> c_cases[] = {
    // UTF-8, what it is in UTF-16, and whether it is well formed
    // first and last character of each length, and the neighbours of the surrogates
    {{"\0\x7F", 2}, {u"\0\x7F", 2}, true},
    {"\xC2\x80\xDF\xBF", u"\x80\x7FF", true},
    {"\xE0\xA0\x80\xEF\xBF\xBF", u"\x800\xFFFF", true},
    {"\xED\x9F\xBF\xEE\x80\x80", u"\xD7FF\xE000", true},
    {"\xF0\x90\x80\x80\xF4\x8F\xBF\xBF", u"\xD800\xDC00\xDBFF\xDFFF", true},
    // each bad sequence is replaced, the text behind it stays: the example in the Unicode standard, chapter 3
    {"a\xF1\x80\x80\xE1\x80\xC2"
     "b\x80"
     "c\x80\xBF"
     "d",
     u"a\xFFFD\xFFFD\xFFFD"
     u"b\xFFFD"
     u"c\xFFFD\xFFFD"
     u"d",
     false},
    // overlong forms of '/', a surrogate, a code above the last one, bytes that never occur
    {"\xC0\xAF", u"\xFFFD\xFFFD", false},
    {"\xE0\x80\xAF", u"\xFFFD\xFFFD\xFFFD", false},
    {"\xF0\x80\x80\xAF", u"\xFFFD\xFFFD\xFFFD\xFFFD", false},
    {"\xED\xA0\x80", u"\xFFFD\xFFFD\xFFFD", false},
    {"\xF4\x90\x80\x80", u"\xFFFD\xFFFD\xFFFD\xFFFD", false},
    {"\xF5\xFE\xFF", u"\xFFFD\xFFFD\xFFFD", false},
    // cut inside a character, by a quote and by the end
    {"\xE2\x82\"\xF0\x9F\x97", u"\xFFFD\"\xFFFD", false},
};

} // namespace

TEST(Utf, ConvertsWhatIsWellFormedAndReplacesTheRest) {
    for (auto const & [narrow, wide, isWellFormed] : c_cases) {
        EXPECT_EQ(utf::ToUtf16(narrow), wide) << narrow;
        std::u16string strict = u"before";
        EXPECT_EQ(utf::ToUtf16Strict(narrow, strict), isWellFormed) << narrow;
        EXPECT_EQ(strict, isWellFormed ? wide : u"") << narrow;
        EXPECT_TRUE(!isWellFormed || utf::ToUtf8(wide) == narrow) << narrow;
    }
    // surrogates alone, in front of a pair, and cut from their other half
    EXPECT_EQ(utf::ToUtf8(u"\xDDE1\xD83D"), "\xEF\xBF\xBD\xEF\xBF\xBD");
    EXPECT_EQ(utf::ToUtf8(u"\xD83D\xD83D\xDDE1z"), "\xEF\xBF\xBD\xF0\x9F\x97\xA1z");
    EXPECT_EQ(utf::ToUtf8(std::u16string_view(u"\xD83D\xDDE1", 1)), "\xEF\xBF\xBD");
}
