#pragma once

// Copies the warnings of a category into the trace, while that is switched on for it. Categories and
// handlers: see Warning.h, which alone knows what is switched on. Scripts switch it with the library
// "warninglib".
//
// Threads: any. Lines are traced on the thread that raises the warning.

#include "Cross/engine/core/Export.h"

#include <cstdint>

// The handler: traces each line by itself, in order and unchanged.
CROSS_UTIL_API void WarningTraceCB(char const * const * lines, unsigned int count, std::uint32_t category);

// Switching twice to the same state does nothing. While it is on, the category has a handler and its warnings
// no longer go to stderr.
CROSS_UTIL_API void EnableWarningTraceOutput(std::uint32_t category);
CROSS_UTIL_API void DisableWarningTraceOutput(std::uint32_t category);
CROSS_UTIL_API void SetWarningTraceOutput(std::uint32_t category, bool enable);
