#pragma once

// ASCII text helpers. Only the letters A to Z have a case here: bytes above 127 are compared and kept as they
// are, and nothing depends on the locale. All functions may be called from any thread.

#include "Cross/engine/core/Export.h"

#include <cstdarg>
#include <cstddef>
#include <string>

namespace text {

// The lower-case form of one byte.
constexpr char ToLower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

// Lower-cases a text in place; null is ignored.
CROSS_ENGINE_API void ToLower(char * text);

// Order of two texts with case ignored, as unsigned bytes of their lower-case forms: below 0, 0 or above 0.
CROSS_ENGINE_API int CompareNoCase(char const * left, char const * right);
CROSS_ENGINE_API bool EqualNoCase(char const * left, char const * right);

// Copies a text into a buffer of `size` bytes and ends it with NUL; what does not fit is cut. A null source
// counts as "", and a size of 0 writes nothing. The source may lie inside the buffer. Gives true when nothing
// was cut.
CROSS_ENGINE_API bool CopyCut(char * buffer, std::size_t size, char const * source);

// printf into a string, under the C locale: the text replaces what `out` held and keeps its capacity. A
// format that the C library refuses gives "" and false. VPrintf leaves `arguments` as it was.
CROSS_ENGINE_API bool Printf(std::string & out, char const * format, ...) CROSS_PRINTF_FORMAT(2, 3);
CROSS_ENGINE_API bool VPrintf(std::string & out, char const * format, std::va_list arguments)
    CROSS_PRINTF_FORMAT(2, 0);

// printf into a buffer of `size` bytes, cut to fit and always ended with NUL; a size of 0 writes nothing.
// Gives the length of the whole text, whether it fitted or not.
CROSS_ENGINE_API std::size_t PrintfCut(char * buffer, std::size_t size, char const * format, ...)
    CROSS_PRINTF_FORMAT(3, 4);
CROSS_ENGINE_API std::size_t VPrintfCut(char * buffer, std::size_t size, char const * format,
                                        std::va_list arguments) CROSS_PRINTF_FORMAT(3, 0);

} // namespace text
