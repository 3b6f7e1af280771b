#include "Cross/Util/BinaryConfig.h"

#include "Cross/Util/BinaryConfigIO.h"
#include "tests/support/TableWalk.h"
#include "tests/util/TableImages.h"

#include <gtest/gtest.h>

#include <set>
#include <vector>

namespace {

class BinaryConfigTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(LoadImage(ExampleImage(), table)); }

    void Build(BinaryConfigCreator const & creator) { BinaryConfigIO::CreateBinaryConfig(creator, table, 1); }

    BinaryConfig table;
};

TEST_F(BinaryConfigTest, FieldsReadAsTheirTypeOnly) {
    EXPECT_TRUE(WalkTable(table));
    float speed = 0;
    bool on = false;
    char tag[8];
    EXPECT_TRUE(table.GetNumber("speed", speed) && table.GetBool("on", on) &&
                table.GetString("tag", tag, sizeof(tag)));
    EXPECT_EQ(speed, 1.5f);
    EXPECT_TRUE(on);
    EXPECT_STREQ(tag, "ab");
    int x = 7;
    for (char const * name : {"speed", "on", "sub", "Speed"}) // the exact spelling counts
        EXPECT_FALSE(table.GetNumber(name, x)) << name;
    EXPECT_EQ(x, 7);
    table.TablePush("sub");
    EXPECT_TRUE(table.GetNumber("x", x));
    EXPECT_EQ(x, -1);
}

TEST_F(BinaryConfigTest, EveryPushIsPoppedOnceAndARootPushLeavesTheOtherCursorAlone) {
    table.TablePop(); // at the base nothing happens
    table.TableRootPop();
    table.TablePush("missing");
    table.TablePush("speed"); // a value, but not even in the null table
    EXPECT_EQ(table.GetCount(), 0u);
    table.TablePop();
    table.TablePop();
    table.TablePush("speed"); // a value is no table
    EXPECT_EQ(table.GetCount(), 0u);
    table.TablePop();
    table.TablePush("sub");
    table.TablePush("missing");
    table.TableRootPush();
    table.TablePush("sub");
    EXPECT_TRUE(table.AttributeExists("x"));
    table.TableRootPop(); // with a push of its own still open
    EXPECT_EQ(table.GetCount(), 0u);
    table.TablePop();
    EXPECT_TRUE(table.AttributeExists("x"));
    table.TablePop();
    EXPECT_EQ(table.GetCount(), 4u);
}

TEST_F(BinaryConfigTest, FieldsAreListedInStoredOrderBehindWhatWasThere) {
    ASSERT_EQ(table.GetCount(), 4u);
    EXPECT_EQ(table.GetAt(0), 0x12AB97D0u);
    EXPECT_EQ(table.GetAt(3), 0xFF6AAAADu);
    EXPECT_EQ(table.GetTypeFromIndex(3), BCTypes::Table);
    std::vector<BCInternal::FieldInfo const *> fields(1, nullptr);
    table.GetFieldInfos(fields);
    ASSERT_EQ(fields.size(), 5u);
    EXPECT_EQ(fields[0], nullptr);
    EXPECT_EQ(fields[3]->key, 0xD8DAF8B2u);
    EXPECT_EQ(fields[3]->type, BCTypes::String);
    EXPECT_EQ(fields[3]->offset, 5u);
    table.TablePush("missing");
    table.GetFieldInfos(fields);
    EXPECT_EQ(fields.size(), 5u);
}

TEST(BinaryConfigWithoutImage, EverythingFailsAndNothingBreaks) {
    BinaryConfig table;
    table.TableRootPush();
    table.TablePush("a");
    char buffer[2] = {'x', 'y'};
    EXPECT_FALSE(table.GetString("a", buffer, sizeof(buffer)));
    EXPECT_EQ(std::string(buffer, 2), std::string("\0y", 2));
    EXPECT_EQ(table.GetCount(), 0u);
    EXPECT_EQ(table.GetBinaryConfigData(), nullptr);
    EXPECT_STREQ(table.GetFilename(), "");
}

TEST_F(BinaryConfigTest, TextIsCutAndTheBufferFilledWithZeros) {
    BinaryConfigCreator creator;
    creator.SetString("text", "abcdef");
    creator.SetWString("wide", u"abcdef");
    Build(creator);

    std::pair<unsigned int, std::string> const cases[] = {
        // size, and all eight units of the buffer afterwards, '.' for zero: cut to size - 1 characters; what
        // stands behind the buffer stays
        {4, "abc.----"},
        {1, ".-------"},
        {7, "abcdef.-"},
        // the rest is zero
        {8, "abcdef.."},
        // no room for a terminator, but the first unit is cleared before anything else
        {0, ".-------"},
    };
    for (auto const & [size, left] : cases) {
        char text[] = "--------";
        char16_t wide[] = u"--------";
        EXPECT_TRUE(table.GetString("text", text, size));
        EXPECT_TRUE(table.GetWString("wide", wide, size));
        for (std::size_t i = 0; i < left.size(); ++i) {
            EXPECT_EQ(text[i], left[i] == '.' ? '\0' : left[i]) << "size " << size << ", unit " << i;
            EXPECT_EQ(wide[i], static_cast<char16_t>(text[i])) << "size " << size << ", unit " << i;
        }
    }
    // of the other width: false, with an empty buffer
    char text[] = "--";
    char16_t wide[] = u"--";
    EXPECT_FALSE(table.GetString("wide", text, 3));
    EXPECT_FALSE(table.GetWString("text", wide, 3));
    EXPECT_EQ(std::string(text, 2), std::string("\0-", 2));
    EXPECT_EQ(std::u16string(wide, 2), std::u16string(u"\0-", 2));
}

// An image whose words are swapped tells of more fields than it has room for.
TEST_F(BinaryConfigTest, AnImageOfTheOtherByteOrderReadsAsTheNullTable) {
    BinaryConfigCreator creator;
    FillExample(creator);
    ASSERT_TRUE(LoadImage(FlattenedImage(creator, 2), table));
    EXPECT_EQ(table.GetCount(), 0u);
    EXPECT_FALSE(table.AttributeExists("speed"));
    EXPECT_EQ(table.GetBinaryConfigDataSize(), 80u);
}

// Sorted tables of shapes that a search can stumble over: each key is found, and none beside it.
TEST_F(BinaryConfigTest, TheSearchFindsExactlyTheKeysOfATable) {
    struct Shape {
        char const * name;
        std::uint32_t (*key)(std::uint32_t i);
    };

    constexpr Shape c_shapes[] = {
        {"spread like hashes", [](std::uint32_t i) { return i * 0x9E3779B1; }},
        {"from 0", [](std::uint32_t i) { return i; }},
        {"up to 0xFFFFFFFF", [](std::uint32_t i) { return 0xFFFFFFFF - 2 * i; }},
        {"at both ends", [](std::uint32_t i) { return i % 2 == 0 ? i : 0xFFFFFFFF - i; }},
        {"ever further apart", [](std::uint32_t i) { return i * i * 171; }},
        {"one far away", [](std::uint32_t i) { return i == 0 ? 0 : 0x90000000 + 3 * i; }},
    };
    for (Shape const & shape : c_shapes) {
        for (std::uint32_t const count : {1u, 2u, 3u, 64u, 1000u, 1001u, 5000u}) {
            BinaryConfigCreator creator;
            std::set<std::uint32_t> keys;
            for (std::uint32_t i = 0; i < count; ++i) {
                keys.insert(shape.key(i));
                ASSERT_TRUE(creator.SetNumber(shape.key(i), static_cast<int>(i)));
            }
            Build(creator);
            for (std::uint32_t i = 0; i < count; ++i) {
                std::uint32_t const key = shape.key(i);
                int value = -1;
                ASSERT_TRUE(table.GetNumber(key, value)) << shape.name << ", " << i << " of " << count;
                ASSERT_EQ(value, static_cast<int>(i)) << shape.name;
                ASSERT_EQ(table.AttributeExists(key - 1), keys.contains(key - 1)) << shape.name;
                ASSERT_EQ(table.AttributeExists(key + 1), keys.contains(key + 1)) << shape.name;
            }
        }
    }
}

} // namespace
