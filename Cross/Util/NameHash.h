#pragma once

// The hash behind every name in the library: Bob Jenkins' lookup2 over the bytes of a text, with initial
// value 0. Its values stand in files, so they are the same on every machine. Bytes are taken as they are,
// without folding of case, and the terminator is not hashed: "" gives 0xBD49D10D, "Root" gives 0x7F402352.
//
// Threads: any. Nothing passed in is kept.

#include "Cross/engine/core/Export.h"

#include <cstddef>
#include <cstdint>

// Hash of `length` bytes, which may hold NUL. `text` may be null when `length` is 0.
CROSS_UTIL_API std::uint32_t NameHash(char const * text, std::size_t length);

// Hash of a NUL-terminated text; null counts as "".
CROSS_UTIL_API std::uint32_t NameHash(char const * text);

// Hash of the lower-case form (letters A to Z) of a NUL-terminated text, of which the first 2,047 characters
// count; null counts as "".
CROSS_UTIL_API std::uint32_t NameHashLower(char const * text);
