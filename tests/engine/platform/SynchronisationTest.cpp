#include "Cross/engine/platform/Atomic.h"
#include "Cross/engine/platform/RecursiveMutex.h"

#include <gtest/gtest.h>
#include <thread>
#include <vector>

namespace {

template <class Work>
void onFourThreads(Work const & work) {
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back(work);
    for (std::thread & thread : threads)
        thread.join();
}

} // namespace

TEST(Atomic, GivesTheNewValue) {
    int volatile value = -1;
    EXPECT_EQ(Plat::AtomicIncrement(&value), 0);
    EXPECT_EQ(Plat::AtomicIncrement(&value), 1);
    EXPECT_EQ(Plat::AtomicDecrement(&value), 0);
}

TEST(Atomic, LosesNoCount) {
    int volatile value = 1;
    int volatile zeros = 0;
    onFourThreads([&] {
        for (int i = 0; i < 5000; ++i) {
            Plat::AtomicIncrement(&value);
            if (Plat::AtomicDecrement(&value) == 0)
                Plat::AtomicIncrement(&zeros);
        }
        Plat::AtomicIncrement(&value);
    });
    EXPECT_EQ(value, 5);
    EXPECT_EQ(zeros, 0);
}

TEST(RecursiveMutex, OneThreadEntersRepeatedlyAndKeepsOthersOut) {
    Plat::RecursiveMutex mutex;
    int plain = 0;
    onFourThreads([&] {
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
