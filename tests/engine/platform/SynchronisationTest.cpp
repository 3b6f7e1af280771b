#include "Cross/engine/platform/Atomic.h"
#include "Cross/engine/platform/RecursiveMutex.h"
#include "tests/support/OnFourThreads.h"

#include <gtest/gtest.h>

TEST(Synchronisation, CountsOfThreadsAreNotLost) {
    int volatile value = 1;
    Plat::RecursiveMutex mutex;
    int plain = 0;
    OnFourThreads([&](int) {
        for (int i = 0; i < 5000; ++i) {
            Plat::AtomicIncrement(&value);
            EXPECT_NE(Plat::AtomicDecrement(&value), 0);
            mutex.Enter();
            mutex.Enter();
            ++plain;
            mutex.Leave();
            ++plain; // still ours
            mutex.Leave();
        }
    });
    EXPECT_EQ(plain, 40000);
    EXPECT_EQ(Plat::AtomicIncrement(&value), 2) << "the new value";
}
