#pragma once

// Warnings by category. A category is a code of up to four letters, packed from the first letter down:
// 0x494E56 is "INV".
//
// Threads: any. Handlers run on the thread that raises the warning, with no lock held, so they may add and
// remove handlers and raise warnings themselves.

#include "Cross/engine/core/Export.h"

#include <cstdint>

// Raises a warning. The text, printf's, is handed over split at its line ends. With no handler for exactly
// this category, one line goes to stderr; nothing goes to the trace.
CROSS_ENGINE_API void dbWarningfAux(std::uint32_t category, char const * format, ...)
    CROSS_PRINTF_FORMAT(2, 3);

// `lines` holds `count` texts, at least one, valid during the call.
using dbWarningHandler = void (*)(char const * const * lines, unsigned int count, std::uint32_t category);

// Adds a handler for one category; adding it again does nothing, nor does removing one that was not added.
CROSS_ENGINE_API void dbWarningHandlerAdd(std::uint32_t category, dbWarningHandler handler);
CROSS_ENGINE_API void dbWarningHandlerRmv(std::uint32_t category, dbWarningHandler handler);
