#include "Cross/Util/LogFile.h"

#include "Cross/engine/core/Text.h"
#include "tests/support/AliasedFolder.h"
#include "tests/support/CrashFiles.h"
#include "tests/support/HandClock.h"
#include "tests/support/HeapLimit.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace {

std::string startStamp() {
    Plat::Time::SystemTime start;
    Plat::Time::TimeStart(start);
    std::string stamp;
    text::Printf(stamp, "%04d-%02d-%02d.%02d-%02d-%02d", start.year, start.month, start.day, start.hour,
                 start.minute, start.second);
    return stamp;
}

class LogFileTest : public testing::Test {
protected:
    using Names = std::set<std::string>;

    ~LogFileTest() override {
        for (auto const & [handle, path] : VisitedCrashFiles())
            dbCrashRemoveCrashFile(handle);
    }

    // Names of the files in the log folder.
    Names Files() const {
        Names names;
        for (auto const & entry : std::filesystem::directory_iterator(folder.Path()))
            names.insert(entry.path().filename().string());
        return names;
    }

    // Names of the files in the crash report, all of which are in the log folder.
    Names Reported() const {
        Names names;
        for (auto const & [handle, path] : VisitedCrashFiles()) {
            std::string const name = std::filesystem::path(path).filename().string();
            EXPECT_EQ(path, folder / name);
            names.insert(name);
        }
        return names;
    }

    AliasedFolder folder{"log"};
    std::string const stamp = startStamp();
};

TEST_F(LogFileTest, NamesCarryTheStartOfTheProgram) {
    struct Case {
        char const * name;
        char const * extension;
        std::string want;
    };

    std::string const tooLong(300, 'X');
    Case const cases[] = {
        // the extension comes with or without its point, and keeps its case
        {"frame", ".txt", "log:frame." + stamp + ".txt"},
        {"frame", "TXT", "log:frame." + stamp + ".TXT"},
        {"frame", "", "log:frame." + stamp},
        // the name is lower-cased, A to Z only, and made legal
        {"Frame \xC3\x84", ".txt", "log:frame \xC3\x84." + stamp + ".txt"},
        {"log:../A\\b?%s", ".txt", "log:log_.._a_b_%s." + stamp + ".txt"},
        {nullptr, ".txt", "log:." + stamp + ".txt"},
        // too long a name loses its end, too long an extension spoils all
        {tooLong.c_str(), ".txt", "log:" + std::string(200, 'x') + ".txt"},
        {"frame", tooLong.c_str(), ""},
    };
    HandClock const later; // the time at which a log is made does not matter
    for (Case const & c : cases) {
        char filename[c_maxPath] = "left over";
        LogFile::MakeFilename(filename, c.name, c.extension);
        EXPECT_EQ(filename, c.want);
    }

    char inPlace[c_maxPath] = "Frame";
    LogFile::MakeFilename(inPlace);
    EXPECT_EQ(inPlace, "log:frame." + stamp + ".txt");
    EXPECT_FALSE(LogFile().Create("frame", tooLong.c_str(), true, false));
}

TEST_F(LogFileTest, CreateGivesTenFilesOfOneStampAndTouchesNoEarlierOne) {
    // whatever stands under a name takes its place among the ten, in any case of letters
    std::filesystem::create_directory(folder.Path() / ("x." + stamp + ".3.txt"));
    folder.WriteFile("X." + stamp + ".5.TXT", "older");
    Names files = Files();
    LogFile log;
    for (std::string const number : {"", ".1", ".2", ".4", ".6", ".7", ".8", ".9"}) {
        ASSERT_TRUE(log.Create("X", ".txt", true, false));
        log.printf("file%s", number.c_str());
        files.insert("x." + stamp + number + ".txt");
        EXPECT_EQ(Files(), files);
    }
    EXPECT_FALSE(log.Create("x", ".txt", true, false));
    EXPECT_FALSE(log.IsOpened());
    EXPECT_EQ(Files(), files);
    EXPECT_EQ(folder.ReadFile("x." + stamp + ".9.txt"), "file.9\n");
    EXPECT_EQ(folder.ReadFile("X." + stamp + ".5.TXT"), "older");
    EXPECT_TRUE(log.Create("x", "", true, false)) << "another name";
}

TEST_F(LogFileTest, EmptyNamesLeaveAnOpenLogAlone) {
    LogFile log;
    ASSERT_TRUE(log.CreateWithName("kept", false, false));
    for (char const * const none : {"", static_cast<char const *>(nullptr)})
        EXPECT_FALSE(log.Create(none, ".txt", true, false) || log.CreateWithName(none, true, false));
    EXPECT_FALSE(log.Create("x", nullptr, true, false));
    log.puts("a");
    EXPECT_EQ(folder.ReadFile("kept.txt"), "a");
    EXPECT_EQ(Reported(), Names{"kept.txt"});
}

TEST_F(LogFileTest, CreateWithNameFillsInWhatIsMissing) {
    AliasedFolder const other("elsewhere");

    std::string const longest(c_maxPath - 1 - std::string("log:.txt").size(), 'n');
    std::pair<std::string, std::string> const cases[] = {
        {"abc", folder / "abc.txt"},
        {"abc", folder / "abc.txt"}, // in place of what the first one wrote
        {"abc.log", folder / "abc.log"},
        {"log:def", folder / "def.txt"},
        {"sub/folder.d/abc", folder / "sub/folder.d/abc.txt"},
        {"elsewhere:abc.csv", other / "abc.csv"},
        {longest, folder / (longest + ".txt")},
    };
    LogFile log;
    for (auto const & [name, file] : cases) {
        ASSERT_TRUE(log.CreateWithName(name.c_str(), true, false)) << name;
        log.puts("here");
        EXPECT_EQ(folder.ReadFile(file), "here\n") << name;
        // a real path may be longer than the crash report takes
        EXPECT_EQ(VisitedCrashFiles().size(), file.size() < c_maxPath ? 1u : 0u) << name;
    }

    std::string const refused[] = {
        // no room for the extension, for the alias, or for the name itself: none is cut to another file's
        longest + "n", "./" + longest.substr(1) + ".txt", "log:" + longest + "n.txt", "nowhere:abc", "../abc",
    };
    for (std::string const & name : refused) {
        EXPECT_FALSE(log.CreateWithName(name.c_str(), true, false)) << name;
        EXPECT_FALSE(log.IsOpened());
    }

    // no name helps without a folder to write to
    FilePath::RemoveAlias("log");
    EXPECT_FALSE(log.Create("x", ".txt", true, false));
    EXPECT_EQ(Reported(), Names());
}

TEST_F(LogFileTest, EachWriteIsInTheFileWhenItReturns) {
    LogFile log;
    ASSERT_TRUE(log.CreateWithName("lines", true, false));
    log.puts("a");
    EXPECT_EQ(folder.ReadFile("lines.txt"), "a\n");
    log.puts("100%s\n");
    log.puts(nullptr);
    log.printf("%s=%.2f", "b", 0.5);
    EXPECT_EQ(folder.ReadFile("lines.txt"), "a\n100%s\n\n\nb=0.50\n");

    ASSERT_TRUE(log.CreateWithName("pieces", false, false));
    std::string const longText(100000, 'l');
    log.puts("a");
    log.printf("<%s>", longText.c_str());
    {
        HeapLimit const noHeap(0); // lines up to the longest so far do not allocate
        log.printf("%s.", longText.c_str());
        log.printf("%c", 'b');
    }
    std::string const written = "a<" + longText + ">" + longText + ".b";
    EXPECT_EQ(folder.ReadFile("pieces.txt"), written);

    log.Close();
    log.puts("dropped");
    HeapLimit const noHeap(0);
    LogFile().printf("%s", longText.c_str()); // dropped, and not even formatted
}

TEST_F(LogFileTest, AnOpenLogBelongsToTheCrashReport) {
    LogFile log;
    ASSERT_TRUE(log.Create("x", ".txt", true, false));
    EXPECT_EQ(Reported(), Names{"x." + stamp + ".txt"});
    ASSERT_TRUE(log.CreateWithName("second", true, false));
    EXPECT_EQ(Reported(), Names{"second.txt"});
    EXPECT_FALSE(log.CreateWithName("nowhere:third", true, false));
    EXPECT_EQ(Reported(), Names());

    {
        LogFile kept;
        ASSERT_TRUE(kept.CreateWithName("kept", true, true));
        kept.Close();
        ASSERT_TRUE(kept.Create("kept", ".txt", true, true));
        ASSERT_TRUE(kept.CreateWithName("gone", true, false)); // the flag of the earlier file does not stay
    }
    EXPECT_EQ(Reported(), (Names{"kept.txt", "kept." + stamp + ".txt"}));
}

TEST_F(LogFileTest, CopyingMovesTheOpenFile) {
    LogFile source;
    ASSERT_TRUE(source.CreateWithName("moved", false, false));
    source.puts("1");

    LogFile copy(source);
    EXPECT_FALSE(source.IsOpened());
    source.Close();
    EXPECT_EQ(Reported(), Names{"moved.txt"}) << "only the target reports";
    copy.puts("2"); // and still without line ends

    LogFile target;
    ASSERT_TRUE(target.CreateWithName("closed", true, false));
    target = copy;
    EXPECT_EQ(Reported(), Names{"moved.txt"});
    LogFile & self = target;
    target = self;
    target.puts("3");
    EXPECT_EQ(folder.ReadFile("moved.txt"), "123");
    target = LogFile();
    EXPECT_EQ(Reported(), Names());

    ASSERT_TRUE(source.CreateWithName("kept", true, true));
    target = LogFile(source);
    target.Close();
    EXPECT_EQ(Reported(), Names{"kept.txt"});
}

} // namespace
