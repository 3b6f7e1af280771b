#include "tools/PngFile.h"

#include "tools/Quote.h"

#include <png.h>

#include <cstdint>
#include <limits>
#include <stdexcept>

namespace {

// Where a file tells its bits per channel and what channels it has; the chunk they are in comes first.
constexpr std::size_t c_depthOffset = 24, c_colourTypeOffset = 25;

constexpr png_uint_32 c_sides = 65536; // of Targa files, exclusive

// No byte of a deflated stream stands for more.
constexpr std::uint64_t c_mostInflation = 1032;

// Frees what the library holds between its calls.
struct PngImage : png_image {
    PngImage() : png_image() { version = PNG_IMAGE_VERSION; }

    PngImage(PngImage const &) = delete;
    PngImage & operator=(PngImage const &) = delete;

    ~PngImage() { png_image_free(this); }

    // A call of the library that may have failed.
    void Require(int result) const {
        if (result == 0)
            throw std::runtime_error(Quote(message));
    }
};

unsigned int channelsOf(unsigned char colourType) {
    switch (colourType) {
    case PNG_COLOR_TYPE_GRAY_ALPHA:
        return 2;
    case PNG_COLOR_TYPE_RGB:
        return 3;
    case PNG_COLOR_TYPE_RGB_ALPHA:
        return 4;
    default:
        return 1;
    }
}

// Nothing is allocated for pixels that cannot be there.
void requireSize(PngImage const & image, std::string_view file) {
    if (image.width >= c_sides || image.height >= c_sides)
        throw std::runtime_error(std::to_string(image.width) + " x " + std::to_string(image.height) +
                                 " pixels are more than a Targa file can have");
    unsigned int const bits = static_cast<unsigned char>(file[c_depthOffset]) *
                              channelsOf(static_cast<unsigned char>(file[c_colourTypeOffset]));
    std::uint64_t const stored = (std::uint64_t{image.width} * bits + 7) / 8 * image.height;
    if (stored > c_mostInflation * file.size())
        throw std::runtime_error(std::to_string(image.width) + " x " + std::to_string(image.height) +
                                 " pixels are more than " + std::to_string(file.size()) + " bytes can hold");
}

// Both ways the library takes a negative distance of rows for the bottom row first.
png_int_32 rowDistance(TargaPicture const & picture) {
    return -static_cast<png_int_32>(picture.width * (picture.bitsPerPixel / 8));
}

png_uint_32 formatOf(TargaPicture const & picture) {
    return picture.bitsPerPixel == 32 ? PNG_FORMAT_BGRA : PNG_FORMAT_BGR;
}

} // namespace

TargaPicture DecodePng(std::string_view file) {
    PngImage image;
    image.Require(png_image_begin_read_from_memory(&image, file.data(), file.size()));
    requireSize(image, file);
    TargaPicture picture{
        image.width, image.height, (image.format & PNG_FORMAT_FLAG_ALPHA) != 0 ? 32u : 24u, {}};
    std::uint64_t const size = std::uint64_t{picture.width} * picture.height * (picture.bitsPerPixel / 8);
    if (size > std::numeric_limits<std::uint32_t>::max())
        throw std::runtime_error("the pixels take 4 GiB or more");
    picture.bytes.resize(size);
    image.format = formatOf(picture);
    image.Require(
        png_image_finish_read(&image, nullptr, picture.bytes.data(), rowDistance(picture), nullptr));
    return picture;
}

std::string EncodePng(TargaPicture const & picture) {
    PngImage image;
    image.width = picture.width;
    image.height = picture.height;
    image.format = formatOf(picture);
    png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(image);
    std::string file(size, '\0');
    image.Require(png_image_write_to_memory(&image, file.data(), &size, 0, picture.bytes.data(),
                                            rowDistance(picture), nullptr));
    file.resize(size);
    return file;
}
