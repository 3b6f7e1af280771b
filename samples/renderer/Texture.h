#pragma once

// Texture: a picture that meshes wear. It never changes, and whoever draws with it shares it: a picture that
// was loaded anew gets a texture of its own, and the renderer gives back what it made of the old one once
// nobody holds that any longer.
//
// Threads: any.

#include "Cross/engine/core/Array2D.h"
#include "Cross/engine/core/MathPrim.h"

#include <memory>
#include <vector>

struct Texture {
    using Image = Array2D<MathPrim::Colour, Array2DNewAllocator<MathPrim::Colour>>;

    // Copies a picture, the bottom row first, as TGAIO loads it. Null for an empty one.
    static std::shared_ptr<Texture const> Of(Image const & image);

    unsigned int width, height;           // at least 1
    std::vector<MathPrim::Colour> pixels; // the bottom row first
};
