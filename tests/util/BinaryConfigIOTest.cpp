#include "Cross/Util/BinaryConfigIO.h"

#include "Cross/engine/filesystem/FileStream.h"
#include "tests/support/AliasedFolder.h"
#include "tests/support/TableWalk.h"
#include "tests/support/TraceCapture.h"
#include "tests/util/TableImages.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

namespace {

constexpr std::uint32_t c_exampleCRC = 0x86E8C26E;

class BinaryConfigIOTest : public testing::Test {
protected:
    void SetUp() override { FillExample(creator); }

    void TearDown() override { FileFaults::Instance().Clear(); }

    // The one line that a failed operation leaves in the trace, behind those of the stream itself.
    std::string LastLine() const { return trace.lines.empty() ? "" : trace.lines.back(); }

    TemporaryFolder folder;
    std::string const file = folder / "table";
    BinaryConfigCreator creator;
    BinaryConfig config;
    TraceCapture trace;
};

bool verify(std::string const & image, BinaryConfigIO::VerifyError * error = nullptr) {
    return BinaryConfigIO::Verify(image.data(), static_cast<unsigned int>(image.size()), error);
}

TEST_F(BinaryConfigIOTest, ASavedBuilderLoadsWithImageCrcAndName) {
    ASSERT_TRUE(BinaryConfigIO::Save(file.c_str(), creator, 1));
    EXPECT_EQ(folder.ReadFile("table"), TableFile(ExampleImage(), c_exampleCRC, sizeof(c_exampleImage)));
    ASSERT_TRUE(LoadImage(std::string(4, '\0'), config)); // is replaced
    ASSERT_TRUE(BinaryConfigIO::Load(file.c_str(), config));
    EXPECT_EQ(ImageOf(config), ExampleImage());
    EXPECT_EQ(config.GetCRC(), c_exampleCRC);
    EXPECT_EQ(config.GetFilename(), file);
    EXPECT_TRUE(config.AttributeExists("speed"));
    std::uint32_t crc = 0;
    EXPECT_TRUE(BinaryConfigIO::LoadCRCOnly(file.c_str(), crc));
    EXPECT_EQ(crc, c_exampleCRC);
    EXPECT_TRUE(trace.lines.empty());
}

// Crc and size follow the platform of the file, the image the one it was built for.
TEST_F(BinaryConfigIOTest, TheImageOfAnotherPlatformLoadsAsItIs) {
    ASSERT_TRUE(BinaryConfigIO::Save(file.c_str(), creator, 2));
    ASSERT_TRUE(BinaryConfigIO::Load(file.c_str(), config));
    EXPECT_EQ(ImageOf(config), FlattenedImage(creator, 2));
    EXPECT_NE(config.GetCRC(), c_exampleCRC);
    EXPECT_EQ(config.GetCount(), 0u);

    BinaryConfig native;
    BinaryConfigIO::CreateBinaryConfig(creator, native, 1);
    ASSERT_TRUE(BinaryConfigIO::Save(file.c_str(), native, 2));
    ASSERT_TRUE(BinaryConfigIO::Load(file.c_str(), config));
    EXPECT_EQ(ImageOf(config), ExampleImage());
    EXPECT_EQ(config.GetCRC(), c_exampleCRC);
}

TEST_F(BinaryConfigIOTest, AFinishedImageIsSavedUnchangedWithItsCrc) {
    ASSERT_TRUE(LoadBytes(TableFile("\1\2\3\4\5", 0xFEDCBA98, 5), config)); // trusted, whatever it holds
    ASSERT_TRUE(BinaryConfigIO::Save(file.c_str(), config, 1));
    EXPECT_EQ(folder.ReadFile("table"), TableFile("\1\2\3\4\5", 0xFEDCBA98, 5));
}

TEST_F(BinaryConfigIOTest, OnlyAliasedLoadsKnowAliases) {
    ASSERT_TRUE(BinaryConfigIO::Save(file.c_str(), creator, 1));
    AliasedFolder const alias("tabletest");
    alias.WriteFile("table", folder.ReadFile("table"));
    EXPECT_TRUE(BinaryConfigIO::Load("TABLETEST:Table", config));
    EXPECT_STREQ(config.GetFilename(), "TABLETEST:Table");
    EXPECT_FALSE(BinaryConfigIO::LoadUnAliased("TABLETEST:Table", config));
    EXPECT_TRUE(BinaryConfigIO::LoadUnAliased(file.c_str(), config));
}

TEST_F(BinaryConfigIOTest, AFileThatDoesNotOpenIsTracedByName) {
    std::uint32_t crc = 5;
    EXPECT_FALSE(BinaryConfigIO::LoadCRCOnly("/no/such/table", crc));
    EXPECT_EQ(crc, 5u);
    EXPECT_TRUE(trace.lines.empty());

    EXPECT_FALSE(BinaryConfigIO::Load("/no/such/table", config));
    EXPECT_FALSE(BinaryConfigIO::LoadUnAliased("/no/such/table", config));
    EXPECT_FALSE(BinaryConfigIO::Save("/no/such/table", creator, 1));
    folder.WriteFile("table", "old");
    EXPECT_FALSE(BinaryConfigIO::Save(file.c_str(), config, 1));
    EXPECT_EQ(folder.ReadFile("table"), "old");
    BinaryConfigIO::CreateBinaryConfig(creator, config, 1);
    EXPECT_FALSE(BinaryConfigIO::Save("/no/such/table", config, 1));
    std::vector<std::string> const expected = {
        "UTIL -- Failed to Load BinaryConfig file: '/no/such/table', error: 'Unable to open file!'",
        "UTIL -- Failed to Load UnAliased BinaryConfig file: '/no/such/table', error: 'Unable to open file!'",
        "UTIL -- Failed to Save BinaryConfigCreator to file: '/no/such/table', error: 'Unable to open file!'",
        "UTIL -- Failed to Save BinaryConfig to file: '" + file + "', error: 'There is no image to save!'",
        "UTIL -- Failed to Save BinaryConfig to file: '/no/such/table', error: 'Unable to open file!'",
    };
    EXPECT_EQ(trace.lines, expected);
}

TEST_F(BinaryConfigIOTest, ADamagedFileIsTracedOnceAndTheOldImageStays) {
    std::string const image = ExampleImage();
    std::tuple<char const *, std::string, bool> const cases[] = {
        // the rule, the file, and whether its crc can be read
        {"another chunk id", TableFile(image, 1, 80, FourCC("AEGX")), false},
        {"a newer version", TableFile(image, 1, 80, FourCC("AEGD"), 2), false},
        {"a size beyond the chunk", TableFile(image, 1, 81), true},
        {"a size that would wrap", TableFile(image, 1, 0xFFFFFFFF), true},
        {"no room for a root", TableFile(image, 1, 3), true},
        {"no file at all", "", false},
    };
    for (auto const & [rule, bytes, readsCRC] : cases) {
        SCOPED_TRACE(rule);
        BinaryConfigIO::CreateBinaryConfig(creator, config, 1);
        folder.WriteFile("table", bytes);
        trace.lines.clear();
        EXPECT_FALSE(BinaryConfigIO::Load(file.c_str(), config));
        ASSERT_EQ(trace.lines.size(), 1u);
        EXPECT_EQ(LastLine().find("UTIL -- Failed to read BinaryConfig stream, error: '"), 0u) << LastLine();
        EXPECT_NE(LastLine().find(file), std::string::npos) << LastLine();
        EXPECT_EQ(ImageOf(config), image);
        EXPECT_STREQ(config.GetFilename(), "InMemoryFile");
        std::uint32_t crc = 7;
        EXPECT_EQ(BinaryConfigIO::LoadCRCOnly(file.c_str(), crc), readsCRC);
        EXPECT_EQ(crc, readsCRC ? 1u : 7u);
    }
    EXPECT_FALSE(BinaryConfigIO::Load(static_cast<ByteStream *>(nullptr), config));
}

// The disk refuses each step of a save in turn.
TEST_F(BinaryConfigIOTest, AFailedSaveKeepsTheOldFileAndLeavesNoOther) {
    creator.SetString("long", std::string(300000, 'x').c_str());
    std::tuple<unsigned int, bool, bool> const faults[] = {
        // the write that fails, and whether the last steps do, which only a save over an old file takes
        {1, false, false},
        {2, false, false},
        {0, true, false},
        {0, false, true},
    };
    for (char const * const old : {"old", ""}) {
        for (auto const & [write, sync, rename] : faults) {
            if (!*old && write == 0)
                continue;
            if (*old)
                folder.WriteFile("table", old);
            FileFaults::Instance().failingWrite = write;
            FileFaults::Instance().failSync = sync;
            FileFaults::Instance().failRename = rename;
            EXPECT_FALSE(BinaryConfigIO::Save(file.c_str(), creator, 1));
            EXPECT_EQ(LastLine().find("UTIL -- Failed to Save BinaryConfigCreator to file: '" + file + "'"),
                      0u)
                << LastLine();
            FileFaults::Instance().Clear();
            EXPECT_EQ(folder.ReadFile("table"), old);
            EXPECT_EQ(folder.CountEntries(), *old ? 1u : 0u);
            std::filesystem::remove(file);
        }
    }
}

// One fault each in an image of four fields and their values: where it lies is told, and what it is.
TEST(BinaryConfigVerify, FaultsAreToldWithTheirPlace) {
    auto const word = [](std::uint32_t value) {
        return std::string(reinterpret_cast<char const *>(&value), 4);
    };
    std::tuple<unsigned int, std::string, unsigned int, char const *> const cases[] = {
        // where the bytes go, what Verify tells
        {0x00, word(7), 0x00, "a table has more fields than the image has room for"},
        {0x00, word(0), 0x04, "bytes follow the last value"},
        // a root of the other byte order would have two fields, but one of no known type
        {0x00, word(0x02000000), 0x00, "a table has more fields than the image has room for"},
        {0x3C, word(2), 0x3C, "a table has more fields than the image has room for"},
        {0x10, word(0x12AB97D0), 0x10, "the keys of a sorted table do not ascend"},
        {0x28, word(0), 0x28, "the keys of a sorted table do not ascend"},
        {0x08, word(5), 0x08, "a field is of no known type"},
        {0x18, word(3), 0x18, "a value begins before the end of the one in front of it"},
        {0x30, word(0xFFFFFFF8), 0x30, "a value begins beyond the end of the image"},
        {0x30, word(9), 0x30, "a value is not aligned"},
        {0x30, word(12), 0x3C, "a byte between two values is not zero"},
        {0x48, word(4), 0x48, "a value begins beyond the end of the image"},
        {0x38, "\2", 0x38, "a bool is neither 0 nor 1"},
    };
    for (auto const & [position, bytes, offset, reason] : cases) {
        std::string image = ExampleImage();
        image.replace(position, bytes.size(), bytes);
        BinaryConfigIO::VerifyError error;
        EXPECT_FALSE(verify(image, &error)) << std::hex << position;
        EXPECT_EQ(error.offset, offset) << error.reason;
        EXPECT_STREQ(error.reason, reason) << std::hex << position;
    }
}

TEST(BinaryConfigVerify, ImagesCutOrLengthenedFail) {
    std::string const whole = ExampleImage();
    for (std::size_t length = 0; length < whole.size(); ++length) {
        std::unique_ptr<char[]> const exact(
            new char[length]); // for the sanitizers: nothing behind it is read
        std::memcpy(exact.get(), whole.data(), length);
        EXPECT_FALSE(BinaryConfigIO::Verify(exact.get(), static_cast<unsigned int>(length))) << length;
    }
    BinaryConfigIO::VerifyError error;
    EXPECT_FALSE(verify(whole + '\0', &error));
    EXPECT_EQ(error.offset, 80u);
    EXPECT_STREQ(error.reason, "bytes follow the last value");
    EXPECT_FALSE(BinaryConfigIO::Verify(nullptr, 0, &error));

    BinaryConfigCreator creator;
    FillExample(creator);
    EXPECT_FALSE(verify(FlattenedImage(creator, 2), &error));
    EXPECT_STREQ(error.reason, "the image is stored for a platform of the other byte order");
}

TEST(BinaryConfigVerify, DepthIsBounded) {
    BinaryConfigCreator creator;
    for (unsigned int i = 0; i < BinaryConfigIO::c_verifyDepth; ++i)
        creator.TablePush("t", i % 2 == 0);
    EXPECT_TRUE(verify(FlattenedImage(creator)));
    creator.TablePush("t", false);
    BinaryConfigIO::VerifyError error;
    EXPECT_FALSE(verify(FlattenedImage(creator), &error));
    EXPECT_STREQ(error.reason, "tables are nested too deeply");
}

TEST(BinaryConfigVerify, UnsortedTablesNeedDifferentKeysAndTextsAnEnd) {
    BinaryConfigCreator creator;
    creator.TablePush("list", true);
    creator.SetBool(7u, true);
    creator.SetBool(3u, true);
    std::string image = FlattenedImage(creator);
    image[0x20] = 7; // the key of the second
    BinaryConfigIO::VerifyError error;
    EXPECT_FALSE(verify(image, &error));
    EXPECT_STREQ(error.reason, "a table has two fields of one key");

    BinaryConfigCreator texts;
    texts.SetWString("wide", u"text");
    image = FlattenedImage(texts);
    image.back() = 1;
    EXPECT_FALSE(verify(image, &error));
    EXPECT_STREQ(error.reason, "a wide text has no terminator");
    image.pop_back(); // nor is half a unit one
    EXPECT_FALSE(verify(image, &error));
}

// Every byte of an image with every type in it is damaged in several ways. What passes all the same can be
// read to the last field; the sanitizers watch.
TEST(BinaryConfigVerify, WhatPassesCanBeReadSafely) {
    BinaryConfigCreator creator;
    FillExample(creator);
    creator.SetWString("wide", u"ab");
    creator.TablePush("list", true);
    creator.SetString(9u, "x");
    creator.SetNumber(3u, 2.5f);
    std::string const whole = FlattenedImage(creator);
    EXPECT_TRUE(verify(whole));
    unsigned int passed = 0;
    for (std::size_t i = 0; i < whole.size(); ++i) {
        for (unsigned int value = 0; value < 256; ++value) {
            std::string image = whole;
            image[i] = static_cast<char>(value);
            BinaryConfig config;
            ASSERT_TRUE(LoadImage(image, config));
            if (!BinaryConfigIO::Verify(config.GetBinaryConfigData(), config.GetBinaryConfigDataSize()))
                continue;
            ++passed;
            EXPECT_TRUE(WalkTable(config)) << "byte " << i << " set to " << value;
        }
    }
    EXPECT_GT(passed, whole.size()); // at least each byte with its own value, and every value of the numbers
}

} // namespace
