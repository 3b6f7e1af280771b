#include "Cross/engine/diagnostics/Fatal.h"

#include "Cross/engine/diagnostics/CrashFiles.h"

#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace {

using Files = std::vector<std::pair<int, std::string>>;

Files crashFiles() {
    Files files;
    dbCrashVisitFiles([](int handle, char const * path,
                         void * context) { static_cast<Files *>(context)->emplace_back(handle, path); },
                      &files);
    return files;
}

void stopOnAnotherThread() {
    dbLineAux("Main.cpp", 1);
    std::thread([] { dbFatalfAux("late"); }).join();
}

void stopWithCrashFiles() {
    dbCrashAddCrashFile("log/first.txt", false);
    dbCrashRemoveCrashFile(dbCrashAddCrashFile("log/gone.txt", false));
    dbCrashAddCrashFile("log/second.txt", false);
    dbFatalfAux("stop");
}

void stopInsideAVisit() {
    dbCrashAddCrashFile("log/visited.txt", false);
    dbCrashVisitFiles([](int, char const *, void *) { dbFatalfAux("in a visit"); }, nullptr);
}

} // namespace

TEST(CrashFiles, HandlesRiseAndAreNeverUsedAgain) {
    int const first = dbCrashAddCrashFile("log/a.txt", false);
    int const second = dbCrashAddCrashFile("log/b.txt", true);
    EXPECT_GE(first, 0);
    EXPECT_GT(second, first);
    EXPECT_EQ(crashFiles(), (Files{{first, "log/a.txt"}, {second, "log/b.txt"}}));

    dbCrashRemoveCrashFile(second);
    dbCrashRemoveCrashFile(second);
    dbCrashRemoveCrashFile(-1);
    int const third = dbCrashAddCrashFile("log/a.txt", false); // a path may stand there twice
    EXPECT_GT(third, second);
    EXPECT_EQ(crashFiles(), (Files{{first, "log/a.txt"}, {third, "log/a.txt"}}));

    dbCrashRemoveCrashFile(first);
    dbCrashRemoveCrashFile(third);
    EXPECT_TRUE(crashFiles().empty());
}

TEST(FatalDeathTest, TellsPlaceTextAndFilesAndAborts) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    auto const aborted = testing::KilledBySignal(SIGABRT);
    EXPECT_EXIT(
        {
            dbLineAux("Table.cpp", 42);
            dbFatalfAux("two keys for %s", "100%s");
        },
        aborted, "^Table\\.cpp\\(42\\): Fatal error: two keys for 100%s\n$");
    EXPECT_EXIT(dbFatalfAux("no place"), aborted, "^Fatal error: no place\n$");
    EXPECT_EXIT(stopOnAnotherThread(), aborted, "^Fatal error: late\n$");
    EXPECT_EXIT(stopWithCrashFiles(), aborted,
                "^Fatal error: stop\nCrash file: log/first\\.txt\nCrash file: log/second\\.txt\n$");
    EXPECT_EXIT(stopInsideAVisit(), aborted, "^Fatal error: in a visit\nCrash file: log/visited\\.txt\n$");
}
