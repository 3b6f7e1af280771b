#include "Cross/engine/core/FixedString.h"

#include <cstring>
#include <gtest/gtest.h>
#include <type_traits>

// Records that hold one are copied as bytes and compared as bytes.
TEST(FixedString, IsItsTextAndNothingElse) {
    using Name = fixedstring<5, tarnstring_trait<char>>;
    static_assert(sizeof(Name) == 6 && std::is_trivially_copyable_v<Name>);
    Name name("abcdef"); // is cut
    EXPECT_EQ(std::memcmp(&name, "abcde", 6), 0);
    EXPECT_TRUE(name == "abcde" && !(name == "abcdef") && name.length() == 5) << "a text is compared whole";
    name = name.c_str() + 2; // a part of itself
    EXPECT_EQ(std::memcmp(&name, "cde\0\0", 6), 0);
    name = nullptr;
    EXPECT_EQ(std::memcmp(&name, "\0\0\0\0\0", 6), 0);
}
