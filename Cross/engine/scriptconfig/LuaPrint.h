#pragma once

// The script console: lines that script functions print for the person at the console. Threads: any; lines
// never mix.

#include "Cross/engine/core/Export.h"

struct lua_State;

// Prints one line, printf's, on the script console: stdout unless a sink stands in its place. `state`, the
// state of the call, is not read.
CROSS_ENGINE_API void luax_print(lua_State * state, char const * format, ...) CROSS_PRINTF_FORMAT(2, 3);

// Receives each line without its end; `text` is valid during the call. The sink may print itself.
using luaxPrintSink = void (*)(char const * text, void * context);

// Puts a sink in place of stdout; null brings stdout back.
CROSS_ENGINE_API void luaxSetPrintSink(luaxPrintSink sink, void * context);
