#pragma once

// Flattening: from the tree of a builder to the image of a BinaryConfig. Private to the library.

#include "Cross/engine/core/ScopedArray.h"
#include "Cross/engine/core/Types.h"

class BinaryConfigCreator;

namespace BCInternal {

struct FlatImage {
    ast::scoped_array<char> bytes;
    unsigned int size = 0;
};

// Makes the image of the whole tree; the builder does not change. Throws std::bad_alloc, and
// std::length_error for an image of 4 GiB.
void Flatten(BinaryConfigCreator const & creator, PlatformType platform, FlatImage & image);

} // namespace BCInternal
