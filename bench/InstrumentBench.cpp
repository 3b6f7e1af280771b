// Timing blocks: what Start and Stop cost in the code that they stand in.

#include "Cross/Util/PerfBlock.h"
#include "bench/Ratio.h"

#include <chrono>
#include <ctime>

namespace {

constexpr int c_rounds = 10000;

// Keeps the compiler from merging rounds.
void endRound() { benchmark::ClobberMemory(); }

void inactivePairs(benchmark::State & state) {
    PerfBlock block("bench.inactive");
    benchmark::DoNotOptimize(&block);
    for (auto _ : state)
        for (int i = 0; i < c_rounds; ++i) {
            block.Start();
            endRound();
            block.Stop();
        }
}

void waitUntil(std::chrono::steady_clock::time_point end) {
    while (std::chrono::steady_clock::now() < end)
        benchmark::ClobberMemory();
}

// The rounds alone, and a nanosecond for each.
void emptyRoundsAndANanosecond(benchmark::State & state) {
    for (auto _ : state) {
        for (int i = 0; i < c_rounds; ++i)
            endRound();
        waitUntil(std::chrono::steady_clock::now() + std::chrono::nanoseconds(c_rounds));
    }
}

void activePairs(benchmark::State & state) {
    PerfBlock block;
    for (auto _ : state) {
        block.Start();
        block.Stop();
    }
    benchmark::DoNotOptimize(block.GetAverageTicks());
}

void clockPairs(benchmark::State & state) {
    std::timespec time = {};
    for (auto _ : state)
        for (int i = 0; i < 2; ++i) {
            clock_gettime(CLOCK_MONOTONIC, &time);
            benchmark::DoNotOptimize(time);
        }
}

} // namespace

int main(int argc, char ** argv) {
    bench::AddPair("10000 inactive Start/Stop beside an empty loop and 1 ns a round", 1.0, inactivePairs,
                   emptyRoundsAndANanosecond);
    bench::AddPair("active Start/Stop beside two clock_gettime", 0.5, activePairs, clockPairs);
    return bench::Run(argc, argv);
}
