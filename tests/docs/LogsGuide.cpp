#include "Cross/Util/LogFile.h"
#include "Cross/engine/filesystem/FilePath.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace {

TEST(LogsGuide, WriteALog) {
    TemporaryFolder const folder;
    std::string const logFolder = folder / "logs";

    // [write-log]
    FilePath::SetAlias("log", logFolder.c_str()); // once, at the start of the program

    LogFile log;
    if (log.Create("Physics", ".txt", true, false)) {
        log.puts("bodies;contacts;ms");
        log.printf("%d;%d;%.2f", 214, 37, 1.25);
    }
    // [write-log]

    char path[c_maxPath];
    LogFile::MakeFilename(path, "physics", "txt");
    EXPECT_EQ(folder.ReadFile(std::string("logs/") + (path + 4)), "bodies;contacts;ms\n214;37;1.25\n");
    FilePath::RemoveAlias("log");
}

TEST(LogsGuide, WriteAFixedName) {
    TemporaryFolder const folder;
    FilePath::SetAlias("log", folder.Path().c_str());

    // [write-fixed-name]
    LogFile report;
    report.CreateWithName("last-run.csv", false, false); // replaces the one of the run before
    report.printf("%d,", 1);
    report.printf("%d\n", 2);
    report.Close();
    // [write-fixed-name]

    EXPECT_EQ(folder.ReadFile("last-run.csv"), "1,2\n");
    FilePath::RemoveAlias("log");
}

} // namespace
