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
    name = name.c_str() + 2; // a part of itself
    EXPECT_EQ(std::memcmp(&name, "cde\0\0", 6), 0);
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
        EXPECT_EQ(name.length(), std::strlen(each.text)) << each.text;
        EXPECT_TRUE(name == each.text) << each.text;
    }
    EXPECT_FALSE(Name("abcde") == "abcdef") << "a text is compared whole";
}
