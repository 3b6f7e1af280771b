#pragma once

// The trace: one line per event, for people who look for what happened when.
//
// Threads: any; lines never mix. A sink that traces again is not called again: the inner line is dropped.

#include "Cross/engine/core/Export.h"

// One line in the trace. `format` is printf's and has no line end; the text may have any length. Without a
// sink the line goes to stderr as "[hh:mm:ss.mmm] text".
CROSS_ENGINE_API void dbTimeStampedTracefAux(char const * format, ...) CROSS_PRINTF_FORMAT(1, 2);

// Receives the bare text of each line, without time stamp and line end; `text` is valid during the call. Runs
// under the trace's lock on the tracing thread.
using dbTraceSink = void (*)(char const * text, void * context);

// Puts a sink in place of stderr; null brings stderr back.
CROSS_ENGINE_API void dbTraceSetSink(dbTraceSink sink, void * context);
