#pragma once

// Codes of up to four letters as text.

#include "Cross/engine/core/Export.h"

#include <cstdint>

// Writes the letters of a code from the most significant byte down, with a terminator. Leading zero bytes are
// skipped, so 0x494E56 gives "INV"; an unprintable byte shows as '?'.
CROSS_ENGINE_API void dbDecode4Letters(char (&text)[5], std::uint32_t code);
