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

TEST_F(BinaryConfigTest, NamesAndKeysReadTheSameFields) {
    float speed = 0;
    EXPECT_TRUE(table.GetNumber("speed", speed));
    EXPECT_EQ(speed, 1.5f);
    EXPECT_TRUE(table.GetNumber(0x12AB97D0, speed));
    bool on = false;
    EXPECT_TRUE(table.GetBool("on", on));
    EXPECT_TRUE(on);
    EXPECT_TRUE(table.GetBool(0xB8ED05D9, on));
    EXPECT_FALSE(table.GetBool("On", on)); // the exact spelling counts
    char tag[8];
    EXPECT_TRUE(table.GetString(0xD8DAF8B2, tag, sizeof(tag)));
    EXPECT_STREQ(tag, "ab");
    table.TablePush(0xFF6AAAAD);
    int x = 0;
    EXPECT_TRUE(table.GetNumber("x", x));
    EXPECT_EQ(x, -1);
}

TEST_F(BinaryConfigTest, AnotherTypeIsNotConvertedAndLeavesTheValue) {
    int integer = 7;
    EXPECT_FALSE(table.GetNumber("speed", integer));
    EXPECT_FALSE(table.GetNumber("on", integer));
    EXPECT_FALSE(table.GetNumber("sub", integer));
    EXPECT_FALSE(table.GetNumber("missing", integer));
    EXPECT_EQ(integer, 7);
    bool flag = true;
    EXPECT_FALSE(table.GetBool("speed", flag));
    EXPECT_TRUE(flag);
    table.TablePush("sub");
    float number = 7;
    EXPECT_FALSE(table.GetNumber("x", number));
    EXPECT_EQ(number, 7);
}

TEST_F(BinaryConfigTest, ATableIsNoAttribute) {
    EXPECT_TRUE(table.TableExists("sub"));
    EXPECT_FALSE(table.AttributeExists("sub"));
    EXPECT_TRUE(table.AttributeExists("speed"));
    EXPECT_FALSE(table.TableExists("speed"));
    EXPECT_FALSE(table.AttributeExists("missing"));
    EXPECT_FALSE(table.TableExists("missing"));
}

TEST_F(BinaryConfigTest, EveryPushIsPoppedOnce) {
    table.TablePush("missing");
    table.TablePush("deeper");
    EXPECT_EQ(table.GetCount(), 0u);
    EXPECT_FALSE(table.AttributeExists("speed"));
    table.TablePop();
    table.TablePush("speed"); // a value, but not even in the null table
    table.TablePop();
    table.TablePop();
    EXPECT_EQ(table.GetCount(), 4u);
    table.TablePush("speed"); // a value is no table
    EXPECT_EQ(table.GetCount(), 0u);
    table.TablePop();
    EXPECT_EQ(table.GetCount(), 4u);
}

TEST_F(BinaryConfigTest, ARootPushLeavesTheOtherCursorAlone) {
    table.TablePush("sub");
    table.TablePush("missing");
    table.TableRootPush();
    EXPECT_TRUE(table.AttributeExists("speed"));
    table.TablePush("sub");
    EXPECT_TRUE(table.AttributeExists("x"));
    table.TableRootPop(); // with a push of its own still open
    EXPECT_EQ(table.GetCount(), 0u);
    table.TablePop();
    EXPECT_TRUE(table.AttributeExists("x"));
    table.TablePop();
    EXPECT_TRUE(table.AttributeExists("speed"));
}

TEST_F(BinaryConfigTest, PopsAtTheBaseDoNothing) {
    table.TablePop();
    table.TableRootPop();
    EXPECT_TRUE(table.AttributeExists("speed"));
}

TEST_F(BinaryConfigTest, FieldsAreListedInStoredOrderBehindWhatWasThere) {
    ASSERT_EQ(table.GetCount(), 4u);
    EXPECT_EQ(table.GetAt(0), 0x12AB97D0u);
    EXPECT_EQ(table.GetAt(3), 0xFF6AAAADu);
    EXPECT_EQ(table.GetTypeFromIndex(0), BCTypes::Float);
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
    table.TablePop();
    table.TableRootPop();
    char buffer[2] = {'x', 'y'};
    EXPECT_FALSE(table.GetString("a", buffer, sizeof(buffer)));
    EXPECT_EQ(buffer[0], 0);
    EXPECT_EQ(buffer[1], 'y');
    EXPECT_FALSE(table.TableExists(0u));
    EXPECT_EQ(table.GetCount(), 0u);
    EXPECT_EQ(table.GetCRC(), 0u);
    EXPECT_EQ(table.GetBinaryConfigData(), nullptr);
    EXPECT_EQ(table.GetBinaryConfigDataSize(), 0u);
    EXPECT_STREQ(table.GetFilename(), "");
}

TEST_F(BinaryConfigTest, TextIsCutAndTheBufferFilledWithZeros) {
    BinaryConfigCreator creator;
    creator.SetString("text", "abcdef");
    creator.SetWString("wide", u"abcdef");
    Build(creator);

    struct Case {
        unsigned int size;
        bool found;
        std::string left; // all eight units of the buffer afterwards, '.' for zero
    };

    Case const cases[] = {
        // cut to size - 1 characters; what stands behind the buffer stays
        {4, true, "abc.----"},
        {1, true, ".-------"},
        {6, true, "abcde.--"},
        {7, true, "abcdef.-"},
        // the rest is zero
        {8, true, "abcdef.."},
        // no room for a terminator, but the first unit is cleared before anything else
        {0, true, ".-------"},
    };
    for (Case const & c : cases) {
        char text[] = "--------";
        char16_t wide[] = u"--------";
        EXPECT_TRUE(table.GetString("text", text, c.size));
        EXPECT_TRUE(table.GetWString("wide", wide, c.size));
        for (std::size_t i = 0; i < c.left.size(); ++i) {
            char const expected = c.left[i] == '.' ? '\0' : c.left[i];
            EXPECT_EQ(text[i], expected) << "size " << c.size << ", unit " << i;
            EXPECT_EQ(wide[i], static_cast<char16_t>(expected)) << "size " << c.size << ", unit " << i;
        }
    }
}

TEST_F(BinaryConfigTest, TextOfTheOtherWidthFailsWithAnEmptyBuffer) {
    BinaryConfigCreator creator;
    creator.SetString("text", "a");
    creator.SetWString("wide", u"a");
    Build(creator);
    char text[] = "--";
    char16_t wide[] = u"--";
    EXPECT_FALSE(table.GetString("wide", text, 3));
    EXPECT_FALSE(table.GetWString("text", wide, 3));
    EXPECT_EQ(std::string(text, 2), std::string("\0-", 2));
    EXPECT_EQ(std::u16string(wide, 2), std::u16string(u"\0-", 2));
}

TEST_F(BinaryConfigTest, AnEmptyRootIsATable) {
    ASSERT_TRUE(LoadImage(std::string(4, '\0'), table));
    EXPECT_EQ(table.GetCount(), 0u);
    EXPECT_FALSE(table.AttributeExists("speed"));
    std::vector<BCInternal::FieldInfo const *> fields;
    table.GetFieldInfos(fields);
    EXPECT_TRUE(fields.empty());
    table.TableRootPush();
    table.TableRootPop();
}

TEST_F(BinaryConfigTest, AnUnsortedTableIsScannedInItsOwnOrder) {
    BinaryConfigCreator creator;
    creator.TablePush("list", true);
    std::uint32_t const keys[] = {500, 3, 0xFFFFFFFF, 0, 77};
    for (std::uint32_t const key : keys)
        creator.SetNumber(key, static_cast<int>(key));
    Build(creator);
    table.TablePush("list");
    for (unsigned int i = 0; i < std::size(keys); ++i) {
        int value = 0;
        EXPECT_EQ(table.GetAt(i), keys[i]);
        EXPECT_TRUE(table.GetNumber(keys[i], value));
        EXPECT_EQ(value, static_cast<int>(keys[i]));
    }
    EXPECT_FALSE(table.AttributeExists(4u));
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
        for (std::uint32_t const count : {1u, 2u, 3u, 8u, 64u, 1000u, 1001u, 1037u, 5000u}) {
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
