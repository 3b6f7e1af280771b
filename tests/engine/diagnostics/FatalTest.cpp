#include "Cross/engine/diagnostics/Fatal.h"

#include "tests/support/CrashFiles.h"

#include <gtest/gtest.h>
#include <thread>

namespace {

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
    dbCrashRemoveCrashFile(second);
    dbCrashRemoveCrashFile(second);
    dbCrashRemoveCrashFile(-1);
    int const third = dbCrashAddCrashFile("log/a.txt", false); // a path may stand there twice
    EXPECT_GT(third, second);
    EXPECT_EQ(VisitedCrashFiles(), (CrashFiles{{first, "log/a.txt"}, {third, "log/a.txt"}}));
    dbCrashRemoveCrashFile(first);
    dbCrashRemoveCrashFile(third);
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
    EXPECT_EXIT(stopOnAnotherThread(), aborted, "^Fatal error: late\n$"); // the place was another thread's
    EXPECT_EXIT(stopWithCrashFiles(), aborted,
                "^Fatal error: stop\nCrash file: log/first\\.txt\nCrash file: log/second\\.txt\n$");
    EXPECT_EXIT(stopInsideAVisit(), aborted, "^Fatal error: in a visit\nCrash file: log/visited\\.txt\n$");
}
