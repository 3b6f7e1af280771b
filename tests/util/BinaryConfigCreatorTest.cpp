#include "Cross/Util/BinaryConfigCreator.h"

#include "Cross/Util/BinaryConfigIO.h"
#include "Cross/engine/memory/MemPool.h"
#include "tests/support/TableWalk.h"
#include "tests/util/TableImages.h"

#include <gtest/gtest.h>

#include <string>

namespace {

// A number takes the type of its argument, and no other type turns into one of the two unnoticed.
template <class T>
concept Settable = requires(BinaryConfigCreator & creator, T value) {
    creator.SetNumber("name", value);
    creator.SetNumber(1u, value);
};

static_assert(Settable<int> && Settable<float>);
static_assert(!Settable<double> && !Settable<unsigned int> && !Settable<short> && !Settable<bool> &&
              !Settable<char> && !Settable<long long>);

class BinaryConfigCreatorTest : public testing::Test {
protected:
    // The flattened tree, ready to be read.
    BinaryConfig & Flat() {
        BinaryConfigIO::CreateBinaryConfig(creator, flat, 1);
        return flat;
    }

    BinaryConfigCreator creator;

private:
    BinaryConfig flat;
};

using BinaryConfigCreatorDeathTest = BinaryConfigCreatorTest;

TEST_F(BinaryConfigCreatorTest, TheExampleHasTheBytesOfTheDocumentation) {
    FillExample(creator);
    BinaryConfig & flat = Flat();
    EXPECT_EQ(ImageOf(flat), ExampleImage());
    EXPECT_EQ(flat.GetCRC(), 0x86E8C26EU);
    EXPECT_STREQ(flat.GetFilename(), "InMemoryFile");
    EXPECT_EQ(FlattenedImage(creator, 0), ExampleImage()); // 0 and 1 are both native
}

TEST_F(BinaryConfigCreatorTest, OtherPlatformsSwapWordsAndKeepTexts) {
    creator.SetNumber(0x01020304, 1.5f);
    creator.SetWString(0x01020305, u"A");
    creator.TablePush(0x01020306, true);
    constexpr unsigned char c_expected[] = {
        0x00, 0x00, 0x00, 0x03,                                                 // 3 fields
        0x01, 0x02, 0x03, 0x04, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, // a Float at 0
        0x01, 0x02, 0x03, 0x05, 0x00, 0x00, 0x00, 0x04, 0x00, 0x00, 0x00, 0x04, // a WString at 4
        0x01, 0x02, 0x03, 0x06, 0x00, 0x00, 0x00, 0x65, 0x00, 0x00, 0x00, 0x08, // a TableUnsorted at 8
        0x3F, 0xC0, 0x00, 0x00,                                                 // 1.5
        0x41, 0x00, 0x00, 0x00, // u"A", little-endian in every image
        0x00, 0x00, 0x00, 0x00, // no fields
    };
    std::string const expected(reinterpret_cast<char const *>(c_expected), sizeof(c_expected));
    EXPECT_EQ(FlattenedImage(creator, 2), expected);
    EXPECT_EQ(FlattenedImage(creator, 7), expected);
}

TEST_F(BinaryConfigCreatorTest, ValuesAreAlignedFromTheStartOfTheImage) {
    struct Case {
        char const * rule;
        void (*fill)(BinaryConfigCreator & creator); // keys 1 and 2
        std::uint32_t offset;                        // of the second value
        std::size_t size;                            // of the values
    };

    Case const cases[] = {
        {"a float behind a bool moves to the next multiple of 4",
         [](BinaryConfigCreator & c) { c.SetBool(1u, true), c.SetNumber(2u, 1.0f); }, 4, 8},
        {"so does an integer", [](BinaryConfigCreator & c) { c.SetString(1u, "abcd"), c.SetNumber(2u, 1); },
         8, 12},
        {"and a table", [](BinaryConfigCreator & c) { c.SetBool(1u, true), c.TablePush(2u, false); }, 4, 8},
        {"a bool or string never moves",
         [](BinaryConfigCreator & c) { c.SetBool(1u, true), c.SetString(2u, ""); }, 1, 2},
        {"a wide string moves by one byte behind a text of odd length",
         [](BinaryConfigCreator & c) { c.SetString(1u, "ab"), c.SetWString(2u, u"a"); }, 4, 8},
        {"and not behind one of even length",
         [](BinaryConfigCreator & c) { c.SetString(1u, "a"), c.SetWString(2u, u"a"); }, 2, 6},
    };
    for (Case const & c : cases) {
        BinaryConfigCreator pair;
        c.fill(pair);
        std::string const image = FlattenedImage(pair);
        ASSERT_EQ(image.size(), 28 + c.size) << c.rule;
        EXPECT_EQ(static_cast<unsigned char>(image[24]), c.offset) << c.rule;
        BinaryConfigIO::VerifyError error; // which checks that the bytes between are zero
        EXPECT_TRUE(BinaryConfigIO::Verify(image.data(), static_cast<unsigned int>(image.size()), &error))
            << c.rule << ": " << error.reason;
    }
}

TEST_F(BinaryConfigCreatorTest, AFieldIsNeverReplaced) {
    EXPECT_FALSE(creator.SetString("a", nullptr));
    EXPECT_FALSE(creator.SetWString(NameHash("a"), nullptr));
    EXPECT_TRUE(creator.SetNumber("a", 1));
    EXPECT_FALSE(creator.SetNumber("a", 2));
    EXPECT_FALSE(creator.SetString("a", "text"));
    EXPECT_FALSE(creator.SetNumber(NameHash("a"), 3.0f)); // a key finds what a name made
    EXPECT_TRUE(creator.SetNumber(nullptr, 5));
    EXPECT_FALSE(creator.SetNumber("", 6)) << "a null name is the empty one";
    // names compare by their first 255 characters, and their key comes from the whole
    std::string name(300, 'n');
    EXPECT_TRUE(creator.SetNumber(name.c_str(), 1));
    EXPECT_FALSE(creator.SetNumber(name.c_str(), 2));
    name.back() = 'm';
    EXPECT_TRUE(creator.SetNumber(name.c_str(), 3));
    int value = 0;
    EXPECT_TRUE(Flat().GetNumber("a", value));
    EXPECT_EQ(value, 1);
    EXPECT_EQ(Flat().GetCount(), 4u);
}

TEST_F(BinaryConfigCreatorTest, ATablePushedAgainIsTheSameTable) {
    EXPECT_TRUE(creator.TablePush("t", true));
    creator.SetNumber(9u, 1);
    creator.TablePop();
    EXPECT_FALSE(creator.TablePush("t", false)); // and stays unsorted
    creator.SetNumber(5u, 2);
    creator.TablePop();
    creator.TablePop(); // at the root already
    std::string const before = FlattenedImage(creator);
    // what hangs below a value is not stored
    creator.TablePush("t", false);
    EXPECT_FALSE(creator.TablePush(9u, false));
    EXPECT_TRUE(creator.SetNumber("lost", 2));
    EXPECT_FALSE(creator.SetNumber("lost", 3));
    EXPECT_TRUE(creator.TablePush("table", false));
    EXPECT_EQ(FlattenedImage(creator), before);

    BinaryConfig & flat = Flat();
    EXPECT_EQ(flat.GetCount(), 1u);
    flat.TablePush("t");
    ASSERT_EQ(flat.GetCount(), 2u);
    EXPECT_EQ(flat.GetAt(0), 9u);
    EXPECT_EQ(flat.GetAt(1), 5u);
}

TEST_F(BinaryConfigCreatorTest, OnlyUnsortedTablesKeepTheOrderOfAdding) {
    std::uint32_t const keys[] = {0x80000000, 5, 0xFFFFFFFF, 0, 0x7FFFFFFF}; // compared as unsigned numbers
    std::uint32_t const sorted[] = {0, 5, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF};
    for (bool const unsorted : {false, true}) {
        creator.TablePush(unsorted ? 2u : 1u, unsorted);
        for (std::uint32_t const key : keys)
            creator.SetBool(key, true);
        creator.TablePop();
    }
    BinaryConfig & flat = Flat();
    for (bool const unsorted : {false, true}) {
        flat.TablePush(unsorted ? 2u : 1u);
        for (unsigned int i = 0; i < std::size(keys); ++i)
            EXPECT_EQ(flat.GetAt(i), unsorted ? keys[i] : sorted[i]);
        EXPECT_TRUE(WalkTable(flat));
        EXPECT_FALSE(flat.AttributeExists(4u));
        flat.TablePop();
    }
}

TEST_F(BinaryConfigCreatorTest, FlatteningChangesNothingAndMayBeRepeated) {
    EXPECT_EQ(FlattenedImage(creator), std::string(4, '\0'));
    FillExample(creator);
    creator.TablePush("sub", false); // wherever the cursor stands, the whole tree is flattened
    EXPECT_EQ(ImageOf(Flat()), ExampleImage());
    creator.SetNumber("y", 2);
    BinaryConfig & flat = Flat(); // replaces the image before
    EXPECT_EQ(flat.GetCount(), 4u);
    flat.TablePush("sub");
    EXPECT_EQ(flat.GetCount(), 2u);
}

// Neither building, flattening nor the destructor recurses.
TEST_F(BinaryConfigCreatorTest, TablesNestAsDeepAsMemoryAllows) {
    constexpr unsigned int c_depth = 100000;
    for (unsigned int i = 0; i < c_depth; ++i)
        creator.TablePush("t", false);
    creator.SetBool("bottom", true);
    BinaryConfig & flat = Flat();
    for (unsigned int i = 0; i < c_depth; ++i)
        flat.TablePush("t");
    EXPECT_TRUE(flat.AttributeExists("bottom"));
}

TEST(BinaryConfigCreatorPool, AGivenPoolIsClearedAndAnOwnOneGoes) {
    MemoryPoolObj pool("creator test", 0, 0, false);
    {
        BinaryConfigCreator creator(pool.Get());
        creator.SetString("long", std::string(5000, 'x').c_str());
        EXPECT_GT(MemPoolGetStats(pool.Get()).liveBytes, 5000u);
    }
    EXPECT_EQ(MemPoolGetStats(pool.Get()).liveBlocks, 0u);
    MemPoolStats own;
    {
        BinaryConfigCreator const creator(nullptr);
        EXPECT_TRUE(MemPoolFindStats("BCCEntryPool", own));
    }
    EXPECT_FALSE(MemPoolFindStats("BCCEntryPool", own));
}

constexpr char c_collision[] = "BinaryConfigCreator Fields have a name hash collision.  HANDLE THIS";

TEST_F(BinaryConfigCreatorDeathTest, TwoNamesWithOneHashAreFatal) {
    creator.SetNumber("abhjbwag", 1);
    EXPECT_DEATH(creator.SetNumber("wyumcchu", 1), c_collision);
    EXPECT_DEATH(creator.TablePush("wyumcchu", false), c_collision);
    creator.TablePush("another table", false);
    EXPECT_TRUE(creator.SetNumber("wyumcchu", 1));
    // the name of a field that was made by key is not known, so every name counts as another one
    creator.SetNumber(NameHash("a"), 1);
    EXPECT_DEATH(creator.SetNumber("a", 1), c_collision);
}

} // namespace
