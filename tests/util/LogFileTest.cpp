#include "Cross/Util/LogFile.h"

#include "Cross/engine/core/Text.h"
#include "Cross/engine/diagnostics/CrashFiles.h"
#include "Cross/engine/filesystem/FilePath.h"
#include "Cross/engine/platform/Time.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace {

std::string startStamp() {
    Plat::Time::SystemTime start;
    Plat::Time::TimeStart(start);
    std::string stamp;
    text::Printf(stamp, "%04d-%02d-%02d.%02d-%02d-%02d", start.year, start.month, start.day, start.hour,
                 start.minute, start.second);
    return stamp;
}

struct CrashFile {
    int handle;
    std::string path;
};

std::vector<CrashFile> crashFiles() {
    std::vector<CrashFile> files;
    dbCrashVisitFiles(
        [](int handle, char const * path, void * context) {
            static_cast<std::vector<CrashFile> *>(context)->push_back({handle, path});
        },
        &files);
    return files;
}

class LogFileTest : public testing::Test {
protected:
    LogFileTest() { FilePath::SetAlias("log", folder.Path().c_str()); }

    ~LogFileTest() override { FilePath::RemoveAlias("log"); }

    // Names of the files in the log folder, in order, one blank between.
    std::string Files() const {
        std::vector<std::string> names;
        for (auto const & entry : std::filesystem::directory_iterator(folder.Path()))
            names.push_back(entry.path().filename().string());
        std::sort(names.begin(), names.end());
        std::string all;
        for (std::string const & name : names)
            all += (all.empty() ? "" : " ") + name;
        return all;
    }

    // Whether the crash report includes a file of the log folder.
    bool IsReported(std::string const & name) const {
        std::vector<CrashFile> const files = crashFiles();
        return std::any_of(files.begin(), files.end(),
                           [&](CrashFile const & file) { return file.path == folder / name; });
    }

    TemporaryFolder folder;
    std::string const stamp = startStamp();
};

TEST_F(LogFileTest, NamesCarryTheStartOfTheProgram) {
    struct Case {
        char const * name;
        char const * extension;
        std::string want;
    };

    Case const cases[] = {
        // the extension comes with or without its point, and keeps its case
        {"frame", ".txt", "log:frame." + stamp + ".txt"},
        {"frame", "TXT", "log:frame." + stamp + ".TXT"},
        {"frame", "", "log:frame." + stamp},
        // the name is lower-cased, A to Z only, and made legal
        {"Frame \xC3\x84", ".txt", "log:frame \xC3\x84." + stamp + ".txt"},
        {"log:../A\\b?", ".txt", "log:log_.._a_b_." + stamp + ".txt"},
        {"100%s%n", ".txt", "log:100%s%n." + stamp + ".txt"},
        {nullptr, ".txt", "log:." + stamp + ".txt"},
    };
    for (Case const & c : cases) {
        char filename[c_maxPath] = "left over";
        LogFile::MakeFilename(filename, c.name, c.extension);
        EXPECT_EQ(filename, c.want);
    }

    char inPlace[c_maxPath] = "Frame";
    LogFile::MakeFilename(inPlace);
    EXPECT_EQ(inPlace, "log:frame." + stamp + ".txt");

    char tooLong[c_maxPath] = "left over";
    LogFile::MakeFilename(tooLong, "frame", std::string(300, 'x').c_str());
    EXPECT_STREQ(tooLong, "");
    EXPECT_FALSE(LogFile().Create("frame", std::string(300, 'x').c_str(), true, false));
    EXPECT_EQ(Files(), "");
}

TEST_F(LogFileTest, CreateGivesTenFilesOfOneStampAndNoMore) {
    // byte order puts the nine numbers in front of the bare extension
    std::string expected = "x." + stamp + ".txt";
    LogFile log;
    for (int i = 0; i < 10; ++i) {
        ASSERT_TRUE(log.Create("X", ".txt", true, false));
        log.printf("file %d", i);
        EXPECT_EQ(Files(), expected);
        expected.insert(expected.size() - std::string("x." + stamp + ".txt").size(),
                        "x." + stamp + "." + std::to_string(i + 1) + ".txt ");
    }
    EXPECT_FALSE(log.Create("x", ".txt", true, false));
    EXPECT_FALSE(log.IsOpened());
    EXPECT_EQ(folder.CountEntries(), 10u);
    EXPECT_EQ(folder.ReadFile("x." + stamp + ".txt"), "file 0\n");
    EXPECT_EQ(folder.ReadFile("x." + stamp + ".9.txt"), "file 9\n");

    EXPECT_TRUE(log.Create("x", ".log", true, false));
    EXPECT_TRUE(log.Create("y", ".txt", true, false));
}

TEST_F(LogFileTest, CreateSkipsWhateverStandsUnderTheName) {
    std::filesystem::create_directory(folder.Path() / ("x." + stamp + ".txt"));
    folder.WriteFile("X." + stamp + ".1.TXT", "older"); // found with case ignored
    LogFile log;
    ASSERT_TRUE(log.Create("x", ".txt", true, false));
    log.puts("new");
    EXPECT_EQ(folder.ReadFile("x." + stamp + ".2.txt"), "new\n");
    EXPECT_EQ(folder.ReadFile("X." + stamp + ".1.TXT"), "older");
}

TEST_F(LogFileTest, WithoutAFolderToWriteToNothingOpens) {
    folder.WriteFile("file", "");
    FilePath::SetAlias("log", (folder / "file").c_str());
    LogFile log;
    EXPECT_FALSE(log.Create("x", ".txt", true, false));
    EXPECT_FALSE(log.CreateWithName("x", true, false));
    FilePath::RemoveAlias("log");
    EXPECT_FALSE(log.Create("x", ".txt", true, false));
    EXPECT_FALSE(log.IsOpened());
    EXPECT_TRUE(crashFiles().empty());
}

TEST_F(LogFileTest, EmptyNamesLeaveAnOpenLogAlone) {
    LogFile log;
    ASSERT_TRUE(log.CreateWithName("kept", false, false));
    EXPECT_FALSE(log.Create(nullptr, ".txt", true, false));
    EXPECT_FALSE(log.Create("", ".txt", true, false));
    EXPECT_FALSE(log.Create("x", nullptr, true, false));
    EXPECT_FALSE(log.CreateWithName(nullptr, true, false));
    EXPECT_FALSE(log.CreateWithName("", true, false));
    log.puts("a");
    log.puts("b");
    EXPECT_EQ(folder.ReadFile("kept.txt"), "ab");
    EXPECT_EQ(Files(), "kept.txt");
    EXPECT_TRUE(IsReported("kept.txt"));
}

TEST_F(LogFileTest, CreateWithNameFillsInWhatIsMissing) {
    TemporaryFolder other;
    FilePath::SetAlias("elsewhere", other.Path().c_str());

    struct Case {
        std::string name;
        TemporaryFolder const & where;
        std::string file;
        bool reported = true;
    };

    std::string const longest(c_maxPath - 1 - std::string("log:.txt").size(), 'n');
    Case const cases[] = {
        {"abc", folder, "abc.txt"},
        {"abc.log", folder, "abc.log"},
        {"log:def", folder, "def.txt"},
        {"sub/folder.d/abc", folder, "sub/folder.d/abc.txt"},
        {"elsewhere:abc.csv", other, "abc.csv"},
        // opens, but its real path is longer than the crash report takes
        {longest, folder, longest + ".txt", false},
    };
    for (Case const & c : cases) {
        LogFile log;
        ASSERT_TRUE(log.CreateWithName(c.name.c_str(), true, false)) << c.name;
        log.puts("here");
        EXPECT_EQ(c.where.ReadFile(c.file), "here\n") << c.name;
        EXPECT_EQ(crashFiles().size(), c.reported ? 1u : 0u) << c.name;
    }

    LogFile log;
    ASSERT_TRUE(log.CreateWithName("abc", true, false));
    log.puts("new");
    EXPECT_EQ(folder.ReadFile("abc.txt"), "new\n");
    // a name that does not fit is not cut to that of another file
    for (std::string const & tooLong : {longest + "n", "log:" + longest + "n.txt", std::string(400, 'n')})
        EXPECT_FALSE(log.CreateWithName(tooLong.c_str(), true, false)) << tooLong;
    EXPECT_FALSE(log.IsOpened());
    EXPECT_FALSE(log.CreateWithName("nowhere:abc", true, false));
    EXPECT_FALSE(log.CreateWithName("../abc", true, false));
    FilePath::RemoveAlias("elsewhere");
}

TEST_F(LogFileTest, EachWriteIsInTheFileWhenItReturns) {
    LogFile log;
    log.puts("dropped");
    log.printf("dropped %d", 1);

    ASSERT_TRUE(log.CreateWithName("lines", true, false));
    log.puts("a");
    EXPECT_EQ(folder.ReadFile("lines.txt"), "a\n");
    log.puts("100%s\n");
    log.puts(nullptr);
    log.printf("%s=%.2f", "b", 0.5);
    EXPECT_EQ(folder.ReadFile("lines.txt"), "a\n100%s\n\n\nb=0.50\n");

    std::string const longText(100000, 'l');
    log.printf("<%s>", longText.c_str());
    log.printf("%s", "short again");
    EXPECT_EQ(folder.ReadFile("lines.txt"), "a\n100%s\n\n\nb=0.50\n<" + longText + ">\nshort again\n");

    ASSERT_TRUE(log.CreateWithName("pieces", false, false));
    log.puts("a");
    log.printf("%c", 'b');
    EXPECT_EQ(folder.ReadFile("pieces.txt"), "ab");

    log.Close();
    log.Close();
    log.puts("dropped");
    log.printf("dropped %d", 2);
    EXPECT_EQ(folder.ReadFile("pieces.txt"), "ab");
}

TEST_F(LogFileTest, AnOpenLogBelongsToTheCrashReport) {
    LogFile log;
    ASSERT_TRUE(log.Create("x", ".txt", true, false));
    std::string const first = "x." + stamp + ".txt";
    EXPECT_TRUE(IsReported(first));
    ASSERT_TRUE(log.CreateWithName("second", true, false));
    EXPECT_FALSE(IsReported(first));
    EXPECT_TRUE(IsReported("second.txt"));
    EXPECT_FALSE(log.CreateWithName("nowhere:third", true, false));
    EXPECT_TRUE(crashFiles().empty());

    {
        LogFile kept;
        ASSERT_TRUE(kept.CreateWithName("kept", true, true));
        kept.Close();
        EXPECT_TRUE(IsReported("kept.txt"));
        // the flag of the earlier file does not carry over
        ASSERT_TRUE(kept.CreateWithName("gone", true, false));
    }
    EXPECT_FALSE(IsReported("gone.txt"));
    ASSERT_EQ(crashFiles().size(), 1u);
    dbCrashRemoveCrashFile(crashFiles()[0].handle);
}

TEST_F(LogFileTest, CopyingMovesTheOpenFile) {
    LogFile source;
    ASSERT_TRUE(source.CreateWithName("moved", false, false));
    source.puts("1");

    LogFile copy(source);
    EXPECT_FALSE(source.IsOpened());
    source.puts("dropped");
    source.Close();
    EXPECT_TRUE(IsReported("moved.txt")); // only the target reports
    ASSERT_TRUE(copy.IsOpened());
    copy.puts("2"); // and still without line ends

    LogFile target;
    ASSERT_TRUE(target.CreateWithName("closed", true, false));
    target = copy;
    EXPECT_FALSE(IsReported("closed.txt"));
    LogFile & self = target;
    target = self;
    target.puts("3");
    EXPECT_EQ(folder.ReadFile("moved.txt"), "123");

    target = LogFile();
    EXPECT_FALSE(target.IsOpened());
    EXPECT_TRUE(crashFiles().empty());

    ASSERT_TRUE(source.CreateWithName("kept", true, true));
    target = source;
    target.Close();
    ASSERT_EQ(crashFiles().size(), 1u);
    dbCrashRemoveCrashFile(crashFiles()[0].handle);
}

} // namespace
