// Random numbers beside std::mt19937.

#include "Cross/Util/Random.h"
#include "bench/Ratio.h"

#include <random>
#include <vector>

namespace {

constexpr std::size_t c_block = 4096;

void draw(benchmark::State & state) {
    Random random;
    random.SetSeed(1);
    for (auto _ : state)
        benchmark::DoNotOptimize(random.GetBits(32));
}

void drawPeer(benchmark::State & state) {
    std::mt19937 random(1);
    for (auto _ : state)
        benchmark::DoNotOptimize(random());
}

void fill(benchmark::State & state) {
    Random random;
    random.SetSeed(1);
    std::vector<std::uint32_t> numbers(c_block);
    for (auto _ : state) {
        random.Fill(numbers.data(), numbers.size());
        benchmark::DoNotOptimize(numbers.data());
        benchmark::ClobberMemory();
    }
}

void fillPeer(benchmark::State & state) {
    std::mt19937 random(1);
    std::vector<std::uint32_t> numbers(c_block);
    for (auto _ : state) {
        for (std::uint32_t & number : numbers)
            number = static_cast<std::uint32_t>(random());
        benchmark::DoNotOptimize(numbers.data());
        benchmark::ClobberMemory();
    }
}

} // namespace

int main(int argc, char ** argv) {
    bench::AddPair("one draw", 1.2, draw, drawPeer);
    bench::AddPair("a block of " + std::to_string(c_block), 0.6, fill, fillPeer);
    return bench::Run(argc, argv);
}
