#include "Cross/engine/diagnostics/Fatal.h"

#include "tests/support/CrashFiles.h"

#include <gtest/gtest.h>
#include <thread>

TEST(CrashFiles, HandlesRiseAndAreNeverUsedAgain) {
    int const first = dbCrashAddCrashFile("log/a.txt", false);
    int const second = dbCrashAddCrashFile("log/b.txt", true);
    EXPECT_GE(first, 0);
    EXPECT_GT(second, first);
    for (int const handle : {second, second, -1})
        dbCrashRemoveCrashFile(handle);
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
    EXPECT_EXIT(
        {
            dbLineAux("Main.cpp", 1); // the place of another thread
            dbCrashAddCrashFile("log/first.txt", false);
            dbCrashAddCrashFile("log/second.txt", false);
            std::thread([] {
                dbCrashVisitFiles([](int, char const *, void *) { dbFatalfAux("in a visit"); }, nullptr);
            }).join();
        },
        aborted, "^Fatal error: in a visit\nCrash file: log/first\\.txt\nCrash file: log/second\\.txt\n$");
}
