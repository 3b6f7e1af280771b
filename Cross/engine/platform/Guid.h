#pragma once

// Globally unique identifiers (RFC 4122, version 4) and their text.

#include "Cross/engine/core/Export.h"

#include <cstdint>

struct _GUID {
    std::uint32_t Data1;
    std::uint16_t Data2;
    std::uint16_t Data3;
    unsigned char Data4[8];
};

// A fresh random GUID. Any thread.
CROSS_ENGINE_API _GUID GUIDGenerate();

// Writes the text of a GUID in lower case, "1b4e28ba-2fa1-11d2-883f-0016d3cca427", with braces around it when
// `flag` is true: 36 or 38 characters and NUL. `size` is the size of `out` in bytes; false, with out[0] = 0,
// when the text does not fit. Size 0 means that the caller vouches for a buffer of at least 40 bytes. A null
// `out` gives false.
CROSS_ENGINE_API bool GUIDToString(char * out, unsigned int size, _GUID const & guid, bool flag);
