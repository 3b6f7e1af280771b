#pragma once

// What the writer and the check of images share. Private to the library.
//
// An image is its root table. A table, at a position that is a multiple of 4 from the start of the image:
//
//     count         word
//     field[count]  words key, type, offset
//     data area     the values in the order of the fields; `offset` counts from its start
//
// Float, Integer: a word. Bool: a byte. String: bytes and a NUL. WString: 16-bit little-endian units and a
// zero unit. Table, TableUnsorted: a table. Bytes between values are zero; nothing follows the last one.
// Words are in the byte order of the platform.

#include "Cross/Util/BinaryConfig.h"

#include <bit>
#include <cstdint>

namespace BCInternal {

static_assert(std::endian::native == std::endian::little, "wide text is stored as it lies in memory");

inline constexpr unsigned int c_countSize = 4; // a table begins with the number of its fields

constexpr std::uint32_t SwapBytes(std::uint32_t word) {
    return word >> 24 | (word >> 8 & 0xFF00) | (word << 8 & 0xFF0000) | word << 24;
}

// Where a value may begin, in bytes from the start of the image; 0 for a type that there is not.
constexpr unsigned int AlignmentOf(BCTypes::FieldEntryType type) {
    switch (type) {
    case BCTypes::Bool:
    case BCTypes::String:
        return 1;
    case BCTypes::WString:
        return 2;
    case BCTypes::Float:
    case BCTypes::Integer:
    case BCTypes::Table:
    case BCTypes::TableUnsorted:
        return 4;
    }
    return 0;
}

} // namespace BCInternal
