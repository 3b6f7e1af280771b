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

#include "Cross/engine/core/Types.h"

class BinaryConfigCreator;
class RamStream;

namespace BCInternal {

// Writes the image of the whole tree into `stream`, which is opened for it. The builder does not change.
// Throws what the stream throws: std::bad_alloc, std::length_error at 4 GiB.
void Flatten(BinaryConfigCreator const & creator, PlatformType platform, RamStream & stream);

} // namespace BCInternal
