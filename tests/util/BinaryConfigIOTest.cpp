#include "Cross/Util/BinaryConfigIO.h"

#include "Cross/engine/filesystem/FilePath.h"
#include "Cross/engine/filesystem/FileStream.h"
#include "tests/support/TableWalk.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TraceCapture.h"
#include "tests/util/TableImages.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>
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

TEST_F(BinaryConfigIOTest, TheChunkHoldsCrcSizeAndImage) {
    ASSERT_TRUE(BinaryConfigIO::Save(file.c_str(), creator, 1));
    EXPECT_EQ(folder.ReadFile("table"), TableFile(ExampleImage(), c_exampleCRC, sizeof(c_exampleImage)));
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
    FilePath::SetAlias("tabletest", folder.Path().c_str());
    EXPECT_TRUE(BinaryConfigIO::Load("TABLETEST:Table", config));
    EXPECT_STREQ(config.GetFilename(), "TABLETEST:Table");
    EXPECT_FALSE(BinaryConfigIO::LoadUnAliased("TABLETEST:Table", config));
    FilePath::RemoveAlias("tabletest");
    EXPECT_TRUE(BinaryConfigIO::LoadUnAliased(file.c_str(), config));
    EXPECT_EQ(trace.lines.size(), 1u);
}

TEST_F(BinaryConfigIOTest, AFileThatDoesNotOpenIsTracedByName) {
    std::uint32_t crc = 5;
    EXPECT_FALSE(BinaryConfigIO::LoadCRCOnly("/no/such/table", crc));
    EXPECT_EQ(crc, 5u);
    EXPECT_TRUE(trace.lines.empty());

    EXPECT_FALSE(BinaryConfigIO::Load("/no/such/table", config));
    EXPECT_FALSE(BinaryConfigIO::LoadUnAliased("/no/such/table", config));
    EXPECT_FALSE(BinaryConfigIO::Save("/no/such/table", creator, 1));
    BinaryConfigIO::CreateBinaryConfig(creator, config, 1);
    EXPECT_FALSE(BinaryConfigIO::Save("/no/such/table", config, 1));
    std::vector<std::string> const expected = {
        "UTIL -- Failed to Load BinaryConfig file: '/no/such/table', error: 'Unable to open file!'",
        "UTIL -- Failed to Load UnAliased BinaryConfig file: '/no/such/table', error: 'Unable to open file!'",
        "UTIL -- Failed to Save BinaryConfigCreator to file: '/no/such/table', error: 'Unable to open file!'",
        "UTIL -- Failed to Save BinaryConfig to file: '/no/such/table', error: 'Unable to open file!'",
    };
    EXPECT_EQ(trace.lines, expected);
}

TEST_F(BinaryConfigIOTest, ADamagedFileIsTracedOnceAndTheOldImageStays) {
    struct Case {
        char const * rule;
        std::string file;
        bool readsCRC;
    };

    std::string const image = ExampleImage();
    Case const cases[] = {
        {"another chunk id", TableFile(image, 1, 80, FourCC("AEGX")), false},
        {"a newer version", TableFile(image, 1, 80, FourCC("AEGD"), 2), false},
        {"a size beyond the chunk", TableFile(image, 1, 81), true},
        {"a size that would wrap", TableFile(image, 1, 0xFFFFFFFF), true},
        {"no room for a root", TableFile(image, 1, 3), true},
        {"no image", TableFile("", 1, 0), true},
        {"no file at all", "", false},
        {"no chunk file", "speed = 1.5, on = true", false},
    };
    for (Case const & c : cases) {
        BinaryConfigIO::CreateBinaryConfig(creator, config, 1);
        folder.WriteFile("table", c.file);
        trace.lines.clear();
        EXPECT_FALSE(BinaryConfigIO::Load(file.c_str(), config)) << c.rule;
        ASSERT_EQ(trace.lines.size(), 1u) << c.rule;
        EXPECT_EQ(LastLine().find("UTIL -- Failed to read BinaryConfig stream, error: '"), 0u) << LastLine();
        EXPECT_NE(LastLine().find(file), std::string::npos) << LastLine();
        EXPECT_EQ(ImageOf(config), image) << c.rule;
        EXPECT_STREQ(config.GetFilename(), "InMemoryFile") << c.rule;
        EXPECT_TRUE(config.AttributeExists("speed")) << c.rule;

        std::uint32_t crc = 7;
        EXPECT_EQ(BinaryConfigIO::LoadCRCOnly(file.c_str(), crc), c.readsCRC) << c.rule;
        EXPECT_EQ(crc, c.readsCRC ? 1u : 7u) << c.rule;
    }
    EXPECT_FALSE(BinaryConfigIO::Load(static_cast<ByteStream *>(nullptr), config));
}

TEST_F(BinaryConfigIOTest, AFileCutAnywhereDoesNotLoad) {
    std::string const whole = TableFile(ExampleImage());
    for (std::size_t length = 0; length < whole.size(); ++length)
        EXPECT_FALSE(LoadBytes(whole.substr(0, length), config)) << length;
    EXPECT_EQ(config.GetBinaryConfigData(), nullptr);
}

TEST_F(BinaryConfigIOTest, LoadingAgainReplacesTheImage) {
    ASSERT_TRUE(LoadImage(ExampleImage(), config));
    ASSERT_TRUE(LoadImage(std::string(4, '\0'), config));
    EXPECT_EQ(config.GetCount(), 0u);
    EXPECT_EQ(config.GetBinaryConfigDataSize(), 4u);
}

TEST_F(BinaryConfigIOTest, WithoutAnImageThereIsNothingToSave) {
    folder.WriteFile("table", "old");
    EXPECT_FALSE(BinaryConfigIO::Save(file.c_str(), config, 1));
    ASSERT_EQ(trace.lines.size(), 1u);
    EXPECT_EQ(LastLine().find("UTIL -- Failed to Save BinaryConfig to file: '" + file + "', error: '"), 0u);
    EXPECT_EQ(folder.ReadFile("table"), "old");
}

// The disk refuses each step of a save in turn.
TEST_F(BinaryConfigIOTest, AFailedSaveKeepsTheOldFileAndLeavesNoOther) {
    BinaryConfigIO::CreateBinaryConfig(creator, config, 1);
    creator.SetString("long", std::string(300000, 'x').c_str());
    auto const failingSave = [this](bool ofBuilder) {
        trace.lines.clear();
        bool const saved = ofBuilder ? BinaryConfigIO::Save(file.c_str(), creator, 1)
                                     : BinaryConfigIO::Save(file.c_str(), config, 1);
        char const * const what = ofBuilder ? "BinaryConfigCreator" : "BinaryConfig";
        EXPECT_FALSE(saved);
        EXPECT_EQ(LastLine().find(std::string("UTIL -- Failed to Save ") + what + " to file: '" + file +
                                  "', error: '"),
                  0u)
            << LastLine();
        FileFaults::Instance().Clear();
    };
    for (bool const exists : {true, false}) {
        for (bool const ofBuilder : {true, false}) {
            if (exists)
                folder.WriteFile("table", "old");
            FileFaults::Instance().failingWrite = 1;
            failingSave(ofBuilder);
            if (ofBuilder) {
                FileFaults::Instance().failingWrite = 2;
                failingSave(ofBuilder);
            }
            if (exists) {
                FileFaults::Instance().failSync = true;
                failingSave(ofBuilder);
                FileFaults::Instance().failRename = true;
                failingSave(ofBuilder);
            }
            EXPECT_EQ(folder.ReadFile("table"), exists ? "old" : "");
            EXPECT_EQ(folder.CountEntries(), exists ? 1u : 0u);
            std::filesystem::remove(file);
        }
    }
}

TEST(BinaryConfigVerify, SoundImagesPass) {
    BinaryConfigCreator creator;
    EXPECT_TRUE(verify(FlattenedImage(creator)));
    FillExample(creator);
    creator.SetWString("wide", u"text");
    creator.TablePush("list", true);
    for (std::uint32_t const key : {9u, 1u, 5u})
        creator.TablePush(key, true), creator.TablePop();
    EXPECT_TRUE(verify(FlattenedImage(creator)));
}

// One fault each in an image of four fields and their values: where it lies is told, and what it is.
TEST(BinaryConfigVerify, FaultsAreToldWithTheirPlace) {
    struct Case {
        unsigned int position; // where the words go
        std::string bytes;
        unsigned int offset; // what Verify tells
        char const * reason;
    };

    auto const word = [](std::uint32_t value) {
        return std::string(reinterpret_cast<char const *>(&value), 4);
    };
    Case const cases[] = {
        {0x00, word(7), 0x00, "a table has more fields than the image has room for"},
        {0x00, word(0xFFFFFFFF), 0x00, "a table has more fields than the image has room for"},
        {0x3C, word(2), 0x3C, "a table has more fields than the image has room for"},
        {0x10, word(0x12AB97D0), 0x10, "the keys of a sorted table do not ascend"},
        {0x28, word(0), 0x28, "the keys of a sorted table do not ascend"},
        {0x08, word(5), 0x08, "a field is of no known type"},
        {0x2C, word(99), 0x2C, "a field is of no known type"},
        {0x18, word(3), 0x18, "a value begins before the end of the one in front of it"},
        {0x24, word(4), 0x24, "a value begins before the end of the one in front of it"},
        {0x30, word(28), 0x30, "a value begins beyond the end of the image"},
        {0x30, word(0xFFFFFFF8), 0x30, "a value begins beyond the end of the image"},
        {0x30, word(9), 0x30, "a value is not aligned"},
        {0x30, word(12), 0x3C, "a byte between two values is not zero"},
        {0x48, word(4), 0x48, "a value begins beyond the end of the image"},
        {0x38, "\2", 0x38, "a bool is neither 0 nor 1"},
    };
    for (Case const & c : cases) {
        std::string image = ExampleImage();
        image.replace(c.position, c.bytes.size(), c.bytes);
        BinaryConfigIO::VerifyError error;
        EXPECT_FALSE(verify(image, &error)) << std::hex << c.position;
        EXPECT_EQ(error.offset, c.offset) << error.reason;
        EXPECT_STREQ(error.reason, c.reason) << std::hex << c.position;
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
}

TEST(BinaryConfigVerify, TheOtherByteOrderIsTold) {
    BinaryConfigCreator creator;
    FillExample(creator);
    BinaryConfigIO::VerifyError error;
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
