#include "Cross/Util/TGAIO.h"

#include "Cross/engine/core/Types.h"
#include "Cross/engine/diagnostics/Trace.h"
#include "Cross/engine/filesystem/FilePath.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>

using MathPrim::Colour;

namespace TGAIO {

namespace {

using Byte = unsigned char;
using ColourArray = Array2D<Colour, Array2DNewAllocator<Colour>>;

// Places in the header.
enum HeaderByte {
    HB_ID_LENGTH = 0,
    HB_IMAGE_TYPE = 2,
    HB_WIDTH = 12,
    HB_HEIGHT = 14,
    HB_BITS_PER_PIXEL = 16,
    HB_DESCRIPTOR = 17,
    HB_COUNT = 18
};

// The colour map, but for the size of its entries, and the origin.
constexpr int c_zeroBytes[] = {1, 3, 4, 5, 6, 8, 9, 10, 11};

constexpr Byte c_plain = 2, c_packed = 10;
constexpr Byte c_topFirst = 0x20;
constexpr Byte c_eightAlphaBits = 8;

constexpr Byte c_opaque = 255;

struct Image {
    std::size_t PixelCount() const { return std::size_t{width} * height; }

    unsigned int BytesPerPixel() const { return bitsPerPixel / 8; }

    unsigned int width, height, bitsPerPixel;
    bool isPacked, topFirst;
};

class Array2D_Colour_LoadAdapter final : public LoadAdapter {
public:
    explicit Array2D_Colour_LoadAdapter(ColourArray & array) : array(array) {}

    void Resize(unsigned int width, unsigned int height) override { array.Resize(width, height); }

    void Clear() override { array.Clear(); }

    Colour * GetData() override { return array.data; }

private:
    ColourArray & array;
};

unsigned int wordAt(Byte const * bytes) { return bytes[0] | static_cast<unsigned int>(bytes[1]) << 8; }

void putWord(Byte * bytes, unsigned int word) {
    bytes[0] = static_cast<Byte>(word);
    bytes[1] = static_cast<Byte>(word >> 8);
}

bool readAll(ByteStream & stream, void * bytes, unsigned int size) {
    return size == 0 || stream.Read(bytes, size) == size;
}

bool isKindKnown(Byte const * header, char const * filename) {
    for (int const place : c_zeroBytes)
        if (header[place] != 0) {
            dbTimeStampedTracefAux("TGAIO -- Could not load TGA file '%s' because of unsupported header "
                                   "format at bit %d. Found: %d, expected %d.",
                                   filename, place, header[place], 0);
            return false;
        }
    Byte const type = header[HB_IMAGE_TYPE];
    if (type == c_plain || type == c_packed)
        return true;
    dbTimeStampedTracefAux(
        "TGAIO -- Could not load TGA file '%s' because it is an unsupported image type (%d).", filename,
        type);
    return false;
}

bool isSizeKnown(Image const & image) {
    constexpr std::size_t c_mostPixels = std::numeric_limits<std::uint32_t>::max() / sizeof(Colour);
    return image.PixelCount() > 0 && image.PixelCount() <= c_mostPixels &&
           (image.bitsPerPixel == 24 || image.bitsPerPixel == 32);
}

// Reads everything in front of the pixels.
bool readHeader(ByteStream & stream, char const * filename, Image & image) {
    Byte header[HB_COUNT], id[255];
    if (!readAll(stream, header, sizeof(header)) || !isKindKnown(header, filename) ||
        !readAll(stream, id, header[HB_ID_LENGTH]))
        return false;
    image = {wordAt(header + HB_WIDTH), wordAt(header + HB_HEIGHT), header[HB_BITS_PER_PIXEL],
             header[HB_IMAGE_TYPE] == c_packed, (header[HB_DESCRIPTOR] & c_topFirst) != 0};
    return isSizeKnown(image);
}

Colour pixelAt(Byte const * bytes, unsigned int size) {
    return {bytes[0], bytes[1], bytes[2], size == 4 ? bytes[3] : c_opaque};
}

// Gives pixels of three bytes their alpha. They may lie at the end of the room that they are going to fill: a
// pixel is read before anything is written over it. All but the last one are read with a byte of the next.
void addAlpha(Colour * pixels, Byte const * bytes, std::size_t count) {
    for (std::size_t i = 0; i + 1 < count; ++i) {
        Colour pixel;
        std::memcpy(&pixel, bytes + i * 3, sizeof(pixel));
        pixel.alpha = c_opaque;
        pixels[i] = pixel;
    }
    pixels[count - 1] = pixelAt(bytes + (count - 1) * 3, 3);
}

bool readPlain(ByteStream & stream, Image const & image, Colour * pixels) {
    std::size_t const count = image.PixelCount();
    unsigned int const pixelSize = image.BytesPerPixel();
    Byte * const tail = reinterpret_cast<Byte *>(pixels) + count * (sizeof(Colour) - pixelSize);
    if (!readAll(stream, tail, static_cast<unsigned int>(count * pixelSize)))
        return false;
    if (pixelSize == 3)
        addAlpha(pixels, tail, count);
    return true;
}

// Bytes of a stream, piece by piece.
class ByteSource {
public:
    explicit ByteSource(ByteStream & stream) : stream(stream) {}

    // The next `size` bytes, at most c_longestPiece, until the next call; null when the stream ends in front
    // of their end.
    Byte const * Take(unsigned int size) {
        if (size > end - begin)
            refill();
        if (size > end - begin)
            return nullptr;
        begin += size;
        return bytes.get() + begin - size;
    }

    static constexpr unsigned int c_longestPiece = 128 * sizeof(Colour);

private:
    // What is left moves to the front, so that a piece is never torn.
    void refill() {
        std::memmove(bytes.get(), bytes.get() + begin, end - begin);
        end -= begin;
        begin = 0;
        end += stream.Read(bytes.get() + end, c_readSize);
    }

    static constexpr unsigned int c_readSize = 64 * 1024; // file streams pass that through without a copy

    ByteStream & stream;
    std::unique_ptr<Byte[]> bytes = std::make_unique_for_overwrite<Byte[]>(c_longestPiece + c_readSize);
    unsigned int begin = 0, end = 0;
};

bool readPackets(ByteStream & stream, Image const & image, Colour * pixels) {
    ByteSource source(stream);
    unsigned int const pixelSize = image.BytesPerPixel();
    for (std::size_t left = image.PixelCount(); left > 0;) {
        Byte const * const packet = source.Take(1);
        if (!packet)
            return false;
        bool const isRun = (*packet & 0x80) != 0;
        auto const length = static_cast<unsigned int>(std::min<std::size_t>((*packet & 0x7F) + 1u, left));
        Byte const * const bytes = source.Take(pixelSize * (isRun ? 1 : length));
        if (!bytes)
            return false;
        if (isRun)
            std::fill_n(pixels, length, pixelAt(bytes, pixelSize));
        else if (pixelSize == 3)
            addAlpha(pixels, bytes, length);
        else
            std::memcpy(pixels, bytes, length * sizeof(Colour));
        pixels += length;
        left -= length;
    }
    return true;
}

void swapRows(Image const & image, Colour * pixels) {
    Colour * top = pixels;
    Colour * bottom = pixels + image.PixelCount() - image.width;
    for (; top < bottom; top += image.width, bottom -= image.width)
        std::swap_ranges(top, top + image.width, bottom);
}

bool writeAll(ByteStream & stream, void const * bytes, unsigned int size) {
    return size > 0 && stream.Write(bytes, size) == size;
}

} // namespace

LoadAdapter::~LoadAdapter() = default;

bool Load(char const * filename, LoadAdapter & adapter) {
    ByteStreamProxy const stream = FilePath::OpenStream(filename, c_streamRead);
    Image image;
    if (!stream || !readHeader(*stream, filename, image))
        return false;
    adapter.Resize(image.width, image.height);
    Colour * const pixels = adapter.GetData();
    if (!pixels)
        return false;
    if (image.isPacked)
        dbTimeStampedTracefAux(
            "TGAIO -- TGA file '%s' is RLE compressed. For optimal speed, please re-save uncompressed.",
            filename);
    if (!(image.isPacked ? readPackets : readPlain)(*stream, image, pixels)) {
        adapter.Clear();
        return false;
    }
    if (image.topFirst)
        swapRows(image, pixels);
    return true;
}

bool Load(char const * filename, ColourArray & image) {
    Array2D_Colour_LoadAdapter adapter(image);
    return Load(filename, adapter);
}

bool Save(char const * filename, unsigned int width, unsigned int height, unsigned int bitsPerPixel,
          unsigned int dataSize, void const * data) {
    constexpr unsigned int c_sides = 65536;
    if (width >= c_sides || height >= c_sides || (bitsPerPixel != 24 && bitsPerPixel != 32))
        return false;
    ByteStreamProxy const stream = FilePath::OpenStream(filename, c_streamWrite);
    if (!stream)
        return false;
    Byte header[HB_COUNT] = {};
    header[HB_IMAGE_TYPE] = c_plain;
    putWord(header + HB_WIDTH, width);
    putWord(header + HB_HEIGHT, height);
    header[HB_BITS_PER_PIXEL] = static_cast<Byte>(bitsPerPixel);
    header[HB_DESCRIPTOR] = bitsPerPixel == 32 ? c_eightAlphaBits : 0;
    bool const written = writeAll(*stream, header, HB_WIDTH) &&
                         writeAll(*stream, header + HB_WIDTH, HB_COUNT - HB_WIDTH) &&
                         writeAll(*stream, data, dataSize) && stream->Flush();
    if (!written)
        stream->Discard();
    return written;
}

} // namespace TGAIO
