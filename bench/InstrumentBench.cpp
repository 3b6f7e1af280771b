// Timing blocks: what Start and Stop cost in the code that they stand in.

#include "Cross/Util/PerfBlock.h"
#include "bench/Ratio.h"

#include <ctime>

namespace {

constexpr int c_rounds = 10000;

void inactivePairs(benchmark::State & state) {
    PerfBlock block("bench.inactive");
    benchmark::DoNotOptimize(&block);
    for (auto _ : state)
        for (int i = 0; i < c_rounds; ++i) {
            block.Start();
            bench::EndRound();
            block.Stop();
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
                   bench::EmptyRoundsAndANanosecond(c_rounds));
    bench::AddPair("active Start/Stop beside two clock_gettime", 0.5, activePairs, clockPairs);
    return bench::Run(argc, argv);
}
