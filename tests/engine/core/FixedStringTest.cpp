#include "Cross/engine/core/FixedString.h"

#include <cstring>
#include <gtest/gtest.h>
#include <type_traits>

namespace {

using Name = fixedstring<5, tarnstring_trait<char>>;

} // namespace

// Records that hold one are copied as bytes and compared as bytes.
TEST(FixedString, IsItsTextAndNothingElse) {
    static_assert(sizeof(Name) == 6 && std::is_trivially_copyable_v<Name>);
    Name name("abcde");
    EXPECT_EQ(std::memcmp(&name, "abcde", 6), 0);
    name = "x";
    EXPECT_EQ(std::memcmp(&name, "x\0\0\0\0", 6), 0);
    EXPECT_EQ(static_cast<void const *>(name.c_str()), &name);
}

TEST(FixedString, CutsWhatDoesNotFit) {
    struct Case {
        char const * source;
        char const * text;
    };

    constexpr Case c_cases[] = {
        {"abcdef", "abcde"}, {"abcde", "abcde"}, {"abcd", "abcd"}, {"", ""}, {nullptr, ""},
    };
    for (Case const & each : c_cases) {
        Name name("#####");
        name = each.source;
        EXPECT_STREQ(name.c_str(), each.text);
        EXPECT_EQ(name.length(), std::strlen(each.text));
        EXPECT_EQ(name.empty(), each.text[0] == '\0');
        EXPECT_TRUE(name == each.text);
    }
}

TEST(FixedString, ComparesWholeTexts) {
    EXPECT_FALSE(Name("abcde") == "abcdef");
    EXPECT_FALSE(Name("abc") == "ab");
    EXPECT_FALSE(Name("ab") == "abc");
    EXPECT_TRUE(Name() == nullptr);
}

TEST(FixedString, TakesAPartOfItself) {
    Name name("abcde");
    name = name.c_str() + 2;
    EXPECT_EQ(std::memcmp(&name, "cde\0\0", 6), 0);
}
