#pragma once

#include <thread>
#include <vector>

// Runs work(0) to work(3) side by side, and returns when all have ended.
template <class Work>
void OnFourThreads(Work const & work) {
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back(work, i);
    for (std::thread & thread : threads)
        thread.join();
}
