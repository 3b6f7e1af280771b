#pragma once

// Fatal stops, for states that no caller can go on from. Two calls: the place, then the message, in which the
// program ends.
//
// Threads: any; the place belongs to the calling thread.

#include "Cross/engine/core/Export.h"

// Notes the place of the fatal message that follows; `file` must stay valid until then.
CROSS_ENGINE_API void dbLineAux(char const * file, int line);

// Writes place, text and the files of the crash report to stderr, then calls abort().
[[noreturn]] CROSS_ENGINE_API void dbFatalfAux(char const * format, ...) CROSS_PRINTF_FORMAT(1, 2);
