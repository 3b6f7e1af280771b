#include "Cross/engine/platform/Guid.h"

#include <cstring>
#include <gtest/gtest.h>
#include <tuple>

TEST(Guid, WritesItsText) {
    constexpr _GUID c_sample = {0x1B4E28BA, 0x2FA1, 0x01D2, {0x88, 0x3F, 0x00, 0x16, 0xD3, 0xCC, 0xA4, 0x27}};
    constexpr char const * c_bare = "1b4e28ba-2fa1-01d2-883f-0016d3cca427";
    constexpr char const * c_braced = "{1b4e28ba-2fa1-01d2-883f-0016d3cca427}";
    constexpr std::tuple<unsigned int, bool, char const *> c_cases[] = {
        // size of the buffer (0: large enough), braces, and the text; "" when it does not fit
        {0, true, c_braced}, {39, true, c_braced}, {38, true, ""},
        {37, false, c_bare}, {36, false, ""},      {1, false, ""},
    };
    for (auto const & [size, braces, text] : c_cases) {
        char out[41];
        std::memset(out, '#', sizeof(out));
        EXPECT_EQ(GUIDToString(out, size, c_sample, braces), *text != '\0') << size;
        EXPECT_STREQ(out, text) << size;
    }
    EXPECT_FALSE(GUIDToString(nullptr, 0, c_sample, true));
}

TEST(Guid, EachIsFreshAndRandom) {
    char text[40], other[40];
    ASSERT_TRUE(GUIDToString(text, 0, GUIDGenerate(), false));
    EXPECT_EQ(text[14], '4') << text; // version: random
    EXPECT_NE(std::strchr("89ab", text[19]), nullptr) << text;
    GUIDToString(other, 0, GUIDGenerate(), false);
    EXPECT_STRNE(text, other);
}
