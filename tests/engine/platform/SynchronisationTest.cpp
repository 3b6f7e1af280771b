#include "Cross/engine/platform/Atomic.h"
#include "Cross/engine/platform/RecursiveMutex.h"
#include "tests/support/OnFourThreads.h"

#include <gtest/gtest.h>

TEST(Atomic, CountsOfThreadsAreNotLost) {
    int volatile value = 1;
    int volatile zeros = 0;
    OnFourThreads([&](int) {
        for (int i = 0; i < 5000; ++i) {
            Plat::AtomicIncrement(&value);
            if (Plat::AtomicDecrement(&value) == 0)
                Plat::AtomicIncrement(&zeros);
        }
    });
    EXPECT_EQ(value, 1);
    EXPECT_EQ(zeros, 0);
    EXPECT_EQ(Plat::AtomicIncrement(&value), 2) << "the new value";
}

TEST(RecursiveMutex, OneThreadEntersRepeatedlyAndKeepsOthersOut) {
    Plat::RecursiveMutex mutex;
    int plain = 0;
    OnFourThreads([&](int) {
        for (int i = 0; i < 2000; ++i) {
            mutex.Enter();
            mutex.Enter();
            ++plain;
            mutex.Leave();
            ++plain; // still ours
            mutex.Leave();
        }
    });
    EXPECT_EQ(plain, 16000);
}
