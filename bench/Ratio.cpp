#include "bench/Ratio.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <map>
#include <vector>

namespace bench {

namespace {

constexpr double c_grace = 1.1;
constexpr int c_runs = 9;

struct Pair {
    std::string name;
    double limit;
};

struct Figure {
    std::string name;
    double value;
    std::string unit;
};

std::vector<Pair> s_pairs;
std::vector<Figure> s_figures;

std::string oursName(std::string const & name) { return name + " | ours"; }

std::string peerName(std::string const & name) { return name + " | peer"; }

// Keeps the time per iteration of every single run, in nanoseconds, by the name of the case.
class Collector : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(Context const &) override { return true; }

    void ReportRuns(std::vector<Run> const & runs) override {
        for (Run const & run : runs) {
            if (run.run_type != Run::RT_Iteration)
                continue;
            if (run.error_occurred) {
                std::fprintf(stderr, "%s: %s\n", run.run_name.function_name.c_str(),
                             run.error_message.c_str());
                failed = true;
                continue;
            }
            times[run.run_name.function_name].push_back(run.real_accumulated_time * 1e9 /
                                                        static_cast<double>(run.iterations));
        }
    }

    bool Has(std::string const & name) const { return times.count(name) > 0; }

    double Median(std::string const & name) {
        std::vector<double> & runs = times[name];
        auto const middle = runs.begin() + static_cast<std::ptrdiff_t>(runs.size() / 2);
        std::nth_element(runs.begin(), middle, runs.end());
        return *middle;
    }

    bool failed = false;

private:
    std::map<std::string, std::vector<double>> times;
};

std::string timeText(double nanoseconds) {
    char text[32];
    if (nanoseconds < 1e4)
        std::snprintf(text, sizeof(text), "%.1f ns", nanoseconds);
    else if (nanoseconds < 1e7)
        std::snprintf(text, sizeof(text), "%.1f us", nanoseconds / 1e3);
    else
        std::snprintf(text, sizeof(text), "%.1f ms", nanoseconds / 1e6);
    return text;
}

int printPairs(Collector & collector) {
    int exceeded = 0;
    std::printf("| case | ours | peer | ratio | limit | |\n|---|---|---|---|---|---|\n");
    for (Pair const & pair : s_pairs) {
        if (!collector.Has(oursName(pair.name)) || !collector.Has(peerName(pair.name)))
            continue;
        double const ours = collector.Median(oursName(pair.name));
        double const peer = collector.Median(peerName(pair.name));
        bool const good = ours <= pair.limit * c_grace * peer;
        exceeded += good ? 0 : 1;
        std::printf("| %s | %s | %s | %.3g | %.3g | %s |\n", pair.name.c_str(), timeText(ours).c_str(),
                    timeText(peer).c_str(), ours / peer, pair.limit, good ? "ok" : "ABOVE");
    }
    return exceeded;
}

void printFigures() {
    if (s_figures.empty())
        return;
    std::printf("\n| figure | value |\n|---|---|\n");
    for (Figure const & figure : s_figures)
        std::printf("| %s | %.4g %s |\n", figure.name.c_str(), figure.value, figure.unit.c_str());
}

void waitUntil(std::chrono::steady_clock::time_point end) {
    while (std::chrono::steady_clock::now() < end)
        benchmark::ClobberMemory();
}

} // namespace

Body EmptyRoundsAndANanosecond(int rounds) {
    return [rounds](benchmark::State & state) {
        for (auto _ : state) {
            for (int i = 0; i < rounds; ++i)
                EndRound();
            waitUntil(std::chrono::steady_clock::now() + std::chrono::nanoseconds(rounds));
        }
    };
}

void AddPair(std::string const & name, double limit, Body ours, Body peer) {
    s_pairs.push_back({name, limit});
    benchmark::RegisterBenchmark(oursName(name).c_str(), std::move(ours))->UseRealTime()->Repetitions(c_runs);
    benchmark::RegisterBenchmark(peerName(name).c_str(), std::move(peer))->UseRealTime()->Repetitions(c_runs);
}

void AddFigure(std::string const & name, double value, std::string const & unit) {
    s_figures.push_back({name, value, unit});
}

int Run(int argc, char ** argv) {
    std::string interleave = "--benchmark_enable_random_interleaving=true";
    std::vector<char *> arguments{argv[0], interleave.data()};
    arguments.insert(arguments.end(), argv + 1, argv + argc);
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data()))
        return 1;
    Collector collector;
    benchmark::RunSpecifiedBenchmarks(&collector);
    int const exceeded = printPairs(collector);
    printFigures();
    return exceeded + (collector.failed ? 1 : 0);
}

} // namespace bench
