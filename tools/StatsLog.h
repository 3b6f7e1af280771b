#pragma once

// The file that the stat graph's sink writes (StatgraphFile.h), read for people: per channel its samples.

#include "Cross/engine/filesystem/ByteStream.h"

#include <cstdint>
#include <string>
#include <vector>

struct StatsSample {
    std::uint32_t row;
    float value; // finite
};

struct StatsChannel {
    std::string name;
    std::vector<StatsSample> samples; // rows ascend; one that is left out is a gap
    std::uint64_t notFinite = 0;      // samples left out since they are no finite numbers
};

struct StatsLog {
    std::vector<std::uint64_t> times; // of the rows in milliseconds, never falling: wraps are undone
    std::vector<StatsChannel> channels;
    std::vector<std::string> notes; // what the file lacks, and what became of it
};

// Reads a whole log. A last line without its end is left out; channels without a name are numbered. Throws
// std::runtime_error, whose text begins with the name of the stream and tells the line, for what no sink can
// have written.
StatsLog ReadStatsLog(ByteStream & stream);

struct StatsSummary {
    float least, greatest;
    double average;
    float percent95, percent99; // 95 and 99 of 100 samples are at or below it
};

// REQUIRES: a sample.
StatsSummary Summarize(std::vector<StatsSample> const & samples);
