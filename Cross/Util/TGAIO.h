#pragma once

// TGAIO: Truevision Targa images of 24 or 32 bits per pixel without a colour map. Loads plain and run-length
// encoded ones, into memory that the caller provides, and saves plain ones.
//
// Pixels in memory have four bytes, blue, green, red, alpha; the bottom row comes first, and rows follow one
// another without a gap. Paths are those of FilePath::OpenStream.
//
// Threads: any, one at a time for each image. What is wrong with a file's kind is traced.

#include "Cross/engine/core/Array2D.h"
#include "Cross/engine/core/Export.h"
#include "Cross/engine/core/MathPrim.h"

namespace TGAIO {

// The memory that an image is loaded into.
class CROSS_UTIL_API LoadAdapter {
public:
    // The virtual functions are called by position: their order stays.

    virtual ~LoadAdapter();

    // Makes room for `width` times `height` pixels, both at least 1 and together less than 4 GiB. They need
    // no value: of an image that the file does not hold nothing is touched.
    virtual void Resize(unsigned int width, unsigned int height) = 0;

    // Gives the memory back: the pixels could not all be read.
    virtual void Clear() = 0;

    // The room that Resize made; null when there is none, which ends the load.
    virtual MathPrim::Colour * GetData() = 0;
};

// True when all pixels were loaded; those of a file without alpha have alpha 255. False leaves the adapter as
// it was for a file that does not open or is of another kind, without memory where there is none or its
// pixels end early. The last packet of a run-length encoded file may reach beyond the image; what does is
// ignored.
CROSS_UTIL_API bool Load(char const * filename, LoadAdapter & adapter);
CROSS_UTIL_API bool Load(char const * filename,
                         Array2D<MathPrim::Colour, Array2DNewAllocator<MathPrim::Colour>> & image);

// Writes a plain image, `data` as it stands: rows from the bottom one up, pixels of three or four bytes in
// the order blue, green, red, alpha. False, with no file touched, for sides of 65,536 and more and for other
// bits per pixel than 24 and 32; false as well, with the old file as it was, when the file cannot be written
// or `dataSize` is 0.
CROSS_UTIL_API bool Save(char const * filename, unsigned int width, unsigned int height,
                         unsigned int bitsPerPixel, unsigned int dataSize, void const * data);

} // namespace TGAIO
