#pragma once

// Benchmarks as ratios: each case runs this library and a peer side by side in one run, and only the ratio of
// their medians is worth quoting. Below 1 is faster than the peer.

#include <benchmark/benchmark.h>

#include <functional>
#include <string>

namespace bench {

using Body = std::function<void(benchmark::State &)>;

// Adds a case: `ours` must take at most `limit` times the peer's time. Both bodies have Google Benchmark's
// usual loop and do the same work per iteration.
void AddPair(std::string const & name, double limit, Body ours, Body peer);

// A peer for what costs next to nothing: per iteration an empty loop of `rounds`, and a nanosecond for each.
// A case that ends its rounds with EndRound stays below a limit of 1 when it costs less than that above the
// loop.
Body EmptyRoundsAndANanosecond(int rounds);

// Keeps the compiler from merging rounds.
inline void EndRound() { benchmark::ClobberMemory(); }

// Adds a figure that is no time, such as bytes per name, for the same table.
void AddFigure(std::string const & name, double value, std::string const & unit);

// Runs every case nine times, interleaved, and prints a Markdown table of medians, ratio and limit. Takes
// Google Benchmark's options, --benchmark_filter among them. Gives the number of cases that exceed their
// limit by more than 10 %.
int Run(int argc, char ** argv);

} // namespace bench
