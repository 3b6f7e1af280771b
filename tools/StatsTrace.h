#pragma once

// A stat graph's log as JSON for trace viewers: the "traceEvents" array with a counter event per sample.

#include "tools/StatsLog.h"

// Writes the whole document; each event is a line. False when not all of it was written.
bool WriteStatsTrace(StatsLog const & log, ByteStream & stream);
