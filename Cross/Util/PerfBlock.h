#pragma once

// PerfBlock: a stopwatch for a stretch of code. It keeps the mean of its last eight measurements, and one
// with a name feeds each of them to a StatGraph channel of that name.
//
//     PerfBlock block("physics");
//     block.Start();
//     simulate();
//     block.Stop();
//
// A named block measures only while its channel is enabled, or for good once somebody has asked it for its
// last measurement; otherwise its timing operations return at once. One without a name always measures.
//
// Times are in ticks of Plat::Time::GetCycle or in seconds.
//
// Threads: a block belongs to one thread at a time, a named one to that of StatGraph.
// Lifetime: the channel comes and goes with the block, and nobody else may destroy it. The block must not
// outlive the library.

#include "Cross/Util/StatGraph.h"
#include "Cross/engine/core/Export.h"

#include <array>
#include <cstdint>

class CROSS_UTIL_API PerfBlock {
public:
    // A null name counts as "". Blocks in an array may be given by their names.
    PerfBlock(char const * name = "");
    PerfBlock(PerfBlock const &) = delete;
    PerfBlock & operator=(PerfBlock const &) = delete;
    ~PerfBlock();

    // Begins a measurement; one that runs is thrown away.
    void Start() {
        if (IsActive())
            InternalStart();
    }

    // Ends the measurement. Without a Start since the last Stop, that one counts again.
    void Stop() {
        if (IsActive())
            InternalStop();
    }

    // Leaves out what lies between the two. A second Pause does nothing; Resume while running loses the time
    // since the last Start or Resume.
    void Pause() {
        if (IsActive())
            InternalPause();
    }

    void Resume() {
        if (IsActive())
            InternalResume();
    }

    // The measurement that was ended last, or the one that runs up to its last Pause. From now on the block
    // measures whether or not its channel is enabled.
    std::int64_t GetLastTicks() const;
    float GetLastTime() const;

    // Mean of the last measurements, at most eight; 0 before the first.
    std::int64_t GetAverageTicks() const { return average; }

    float GetAverageTime() const;

    // Units per second of what goes to the channel; at first 1000000, so that it shows microseconds.
    float GetResolution() const { return resolution; }

    void SetResolution(float unitsPerSecond) { resolution = unitsPerSecond; }

    // As if each of the last eight measurements had been this one. The last measurement and the channel do
    // not change. What is beyond 64 bits of ticks becomes their end, NaN 0.
    void SetTicks(std::int64_t ticks);
    void SetTime(float seconds);

private:
    static constexpr std::uint32_t c_historySize = 8;

    bool IsActive() const { return keepActive || (channel && StatGraph::ChannelEnabled(channel)); }

    void InternalStart();
    void InternalStop();
    void InternalPause();
    void InternalResume();
    void addMeasurement();

    std::array<std::int64_t, c_historySize> history{}; // a ring
    std::int64_t sum = 0;                              // of the entries in use; wraps
    std::int64_t average = 0;
    std::uint32_t count = 0;     // entries in use
    std::uint32_t next = 0;      // where the next measurement goes
    std::int64_t startTicks = 0; // when the running stretch began; 0 = not running
    std::int64_t lastTicks = 0;
    float resolution = 1000000.0f;
    mutable bool keepActive = false;
    StatGraph::Handle channel; // owned
};
