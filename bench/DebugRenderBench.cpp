// Debug drawing that nobody looks at, and the count of models.

#include "Cross/Util/DebugRender.h"
#include "Cross/Util/RenderStats.h"
#include "bench/Ratio.h"

#include <algorithm>
#include <string>
#include <vector>

namespace {

constexpr int c_rounds = 10000;

void drawWithoutProxy(benchmark::State & state) {
    DebugRender::Line const line{};
    for (auto _ : state)
        for (int i = 0; i < c_rounds; ++i) {
            DebugRender::Draw(line, "bench");
            bench::EndRound();
        }
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
    bench::AddPair("10000 Draw without a proxy beside an empty loop and 1 ns a round", 1.0, drawWithoutProxy,
                   bench::EmptyRoundsAndANanosecond(c_rounds));
    bench::AddPair("AddModelStat of 64 models beside find_if over their names", 2.0, addModels, findNames);
    return bench::Run(argc, argv);
}
