#pragma once

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

// What a listener does when it takes its time, for tests that detach it meanwhile.
class SlowCall {
public:
    void Run() {
        inside = true;
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        inside = false;
        ++calls;
    }

    // `cause` leads to Run on another thread; `detach` must not return while that is inside.
    template <class Cause, class Detach>
    void ExpectDetachWaits(Cause const & cause, Detach const & detach) {
        std::thread thread(cause);
        while (!inside && calls == 0)
            std::this_thread::yield();
        detach();
        EXPECT_FALSE(inside);
        EXPECT_EQ(calls, 1);
        thread.join();
    }

private:
    std::atomic<bool> inside{false};
    std::atomic<int> calls{0};
};
