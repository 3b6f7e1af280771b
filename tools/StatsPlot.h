#pragma once

// A stat graph's log as a picture.

#include "tools/StatsLog.h"

#include <string>

// SVG of one panel per channel, all over the same time: a line, whose every spike stays however many rows
// share a pixel, axes, and a legend. Where rows have no sample the line is broken.
std::string PlotStats(StatsLog const & log, std::string const & title);
