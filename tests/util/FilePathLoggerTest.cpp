#include "Cross/Util/FilePathLogger.h"

#include "tests/support/AliasedFolder.h"
#include "tests/support/CrashFiles.h"
#include "tests/support/HandClock.h"
#include "tests/support/OnFourThreads.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

class FilePathLoggerTest : public testing::Test {
protected:
    ~FilePathLoggerTest() override { FilePath::DetachListener(&logger); }

    AliasedFolder folder{"log"};
    HandClock clock;
    FilePathLogger logger;
};

} // namespace

TEST_F(FilePathLoggerTest, FiltersChooseAmongOpens) {
    struct Case {
        char const * first;
        char const * second;
        char const * takes; // of the opens 1 to 4 below
    };

    Case const c_cases[] = {
        {nullptr, nullptr, "1234"},
        {"", "", "1234"},
        // the whole text, whatever its case
        {"DATA", nullptr, "12"},
        {nullptr, "Read", "13"},
        {"data", "write", "2"},
        {"dat", nullptr, ""},
    };
    for (Case const & test : c_cases) {
        {
            FilePathLogger one;
            one.LogFiles(test.first, test.second, "one.txt", false);
            one.OnFileOpen(u"1", "data", "read");
            one.OnFileOpen(u"2", "Data", "WRITE");
            one.OnFileOpen(u"3", "database", "read");
            one.OnFileOpen(u"4", nullptr, nullptr);
        }
        std::string want;
        for (char const * open = test.takes; *open; ++open)
            want += std::string("18:05:09.00   ") + *open + "\n";
        EXPECT_EQ(folder.ReadFile("one.txt"), want) << test.takes;
        EXPECT_TRUE(VisitedCrashFiles().empty()) << "the log is closed";
    }
}

TEST_F(FilePathLoggerTest, LinesCarryTheTimeAndThePath) {
    logger.AddComment("nobody hears this");
    logger.LogFiles("other", nullptr, "other", false);
    logger.LogFiles(nullptr, nullptr, "all.txt", true);
    logger.AddComment("100%s%n");
    clock.milliseconds = 123500;
    logger.OnFileOpen(u"Textures\\\u00C4\xD800.tga", "data", "read");
    logger.OnFileOpen(u"b", "OTHER", "read");
    clock.milliseconds = 7;
    clock.now.hour = 0;
    logger.OnFileOpen(u"b", "OTHER", "read");
    logger.AddComment(nullptr);
    EXPECT_EQ(folder.ReadFile("all.txt"),
              "// 100%s%n\n18:05:09.50   data:Textures\\\xC3\x84\xEF\xBF\xBD.tga\n18:05:09.50   OTHER:b\n"
              "00:05:09.00   OTHER:b\n// \n");
    EXPECT_EQ(folder.ReadFile("other.txt"), "// 100%s%n\n18:05:09.50   b\n00:05:09.00   b\n// \n");
}

TEST_F(FilePathLoggerTest, WhatCannotBeWrittenOrIsMissingHarmsNoOtherLog) {
    for (char const * const name : {"unknown:a.txt", "", static_cast<char const *>(nullptr), "good.txt"})
        logger.LogFiles(nullptr, nullptr, name, true);
    std::size_t const length = 100000;
    logger.OnFileOpen(std::u16string(length, u'p').c_str(), "%s", "read");
    logger.OnFileOpen(nullptr, nullptr, nullptr);
    EXPECT_EQ(folder.ReadFile("good.txt"),
              "18:05:09.00   %s:" + std::string(length, 'p') + "\n18:05:09.00   :\n");
}

TEST_F(FilePathLoggerTest, HearsOfFilesWhileItIsAttached) {
    folder.WriteFile("data.txt", "x");
    logger.LogFiles(nullptr, nullptr, "all.txt", true);
    FilePath::AttachListener(&logger);
    FilePath::AttachListener(&logger);
    FilePath::OpenStream("LOG:data.txt", c_streamRead);
    logger.LogFiles(nullptr, nullptr, "later.txt", true); // an open from inside
    FilePath::DetachListener(&logger);
    FilePath::OpenStream("LOG:data.txt", c_streamRead);
    EXPECT_EQ(folder.ReadFile("all.txt"), "18:05:09.00   LOG:data.txt\n18:05:09.00   log:later.txt\n");
    EXPECT_EQ(folder.ReadFile("later.txt"), "");
}

TEST_F(FilePathLoggerTest, LinesOfThreadsDoNotMix) {
    logger.LogFiles(nullptr, "0", "zero.txt", false);
    OnFourThreads([this](int i) {
        std::string const number = std::to_string(i);
        logger.LogFiles(nullptr, number.c_str(), ("thread" + number).c_str(), true);
        for (int open = 0; open < 100; ++open) {
            logger.OnFileOpen(u"path", "first", number.c_str());
            logger.AddComment("-");
        }
    });
    std::string const text = folder.ReadFile("zero.txt"), comment = "// -", open = "18:05:09.00   path";
    EXPECT_EQ(text.size(), 400 * (comment.size() + 1) + 100 * (open.size() + 1));
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
        EXPECT_TRUE(line == comment || line == open) << line;
}
