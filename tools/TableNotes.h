#pragma once

// What the bytes of an attribute table's image mean.

#include "tools/ChunkList.h"

#include <functional>
#include <string_view>

// Notes every byte of an image once, value by value; one that BinaryConfigIO::Verify refuses, or that was
// built for the other byte order, as a whole. `offset` is where the image stands in its file.
void AnnotateTable(std::string_view image, unsigned int offset,
                   std::function<void(ByteNote const &)> const & note);
