#pragma once

// Flattening: from the tree of a builder to the image of a BinaryConfig. Private to the library.
//
// An image is its root table. A table, at a position that is a multiple of 4 from the start of the image:
//
//     count         word
//     field[count]  words key, type, offset
//     data area     the values in the order of the fields; `offset` counts from its start
//
// Float, Integer: a word, at a multiple of 4. Bool: a byte. String: bytes and a NUL. WString: 16-bit
// little-endian units and a zero unit, at a multiple of 2. Table, TableUnsorted: a table. Bytes between
// values are zero; nothing follows the last one. Words are in the byte order of the platform.

#include "Cross/engine/core/ScopedArray.h"
#include "Cross/engine/core/Types.h"

#include <cstdint>

class BinaryConfigCreator;

namespace BCInternal {

constexpr std::uint32_t SwapBytes(std::uint32_t word) {
    return word >> 24 | (word >> 8 & 0xFF00) | (word << 8 & 0xFF0000) | word << 24;
}

struct FlatImage {
    ast::scoped_array<char> bytes;
    unsigned int size = 0;
};

// Makes the image of the whole tree; the builder does not change. Throws std::bad_alloc, and
// std::length_error for an image of 4 GiB, with `image` as it was.
void Flatten(BinaryConfigCreator const & creator, PlatformType platform, FlatImage & image);

} // namespace BCInternal
