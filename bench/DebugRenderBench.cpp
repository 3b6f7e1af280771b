// Debug drawing that nobody looks at, and the count of models.

#include "Cross/Util/DebugRender.h"
#include "Cross/Util/RenderStats.h"
#include "bench/Ratio.h"

#include <algorithm>
#include <chrono>
#include <string>
#include <vector>

namespace {

constexpr int c_calls = 1000;

// Lets the compiler know nothing of what it has in hand, so that each turn of a loop does its work.
void forget() { benchmark::ClobberMemory(); }

void drawWithoutProxy() {
    DebugRender::Line const line{};
    for (int i = 0; i < c_calls; ++i) {
        DebugRender::Draw(line, "bench");
        forget();
    }
}

void doNothing() {
    for (int i = 0; i < c_calls; ++i)
        forget();
}

// The shortest of many runs, in nanoseconds per call.
double timeOf(void (*calls)()) {
    using Clock = std::chrono::steady_clock;
    Clock::duration best = Clock::duration::max();
    for (int run = 0; run < 1000; ++run) {
        Clock::time_point const start = Clock::now();
        calls();
        best = std::min(best, Clock::now() - start);
    }
    return std::chrono::duration<double, std::nano>(best).count() / c_calls;
}

std::vector<std::string> modelNames() {
    std::vector<std::string> names;
    for (int i = 0; i < 64; ++i)
        names.push_back("soldier_" + std::to_string(i * 37 % 100 + 100) + ".model");
    return names;
}

// Announces each model on the list by the path that a renderer has.
void addModels(benchmark::State & state) {
    RenderStats stats;
    stats.Enable(true);
    std::vector<std::string> paths;
    for (std::string const & name : modelNames()) {
        paths.push_back("data/art/soldiers/" + name);
        stats.AddModelStat(paths.back().c_str());
    }
    for (auto _ : state)
        for (std::string const & path : paths)
            benchmark::DoNotOptimize(stats.AddModelStat(path.c_str()));
}

void findNames(benchmark::State & state) {
    std::vector<std::string> const names = modelNames();
    for (auto _ : state)
        for (std::string const & name : names)
            benchmark::DoNotOptimize(std::find_if(names.begin(), names.end(),
                                                  [&](std::string const & other) { return other == name; }));
}

} // namespace

int main(int argc, char ** argv) {
    bench::AddFigure("Draw without a proxy, above an empty loop (1 at most)",
                     timeOf(drawWithoutProxy) - timeOf(doNothing), "ns");
    bench::AddPair("AddModelStat of 64 models beside find_if over their names", 2.0, addModels, findNames);
    return bench::Run(argc, argv);
}
