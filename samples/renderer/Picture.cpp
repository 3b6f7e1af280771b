#include "samples/renderer/Picture.h"

#include <png.h>

Picture Picture::ReducedBy(int factor) const {
    Picture reduced{width / factor, height / factor, {}};
    auto const side = static_cast<std::size_t>(factor), columns = static_cast<std::size_t>(reduced.width);
    std::vector<unsigned int> sums(columns * 3);
    std::size_t const rowBytes = columns * 3 * side;
    for (std::size_t row = 0; row < static_cast<std::size_t>(height); ++row) {
        for (std::size_t i = 0; i < rowBytes; ++i)
            sums[i / (3 * side) * 3 + i % 3] += bytes[row * rowBytes + i];
        if ((row + 1) % side != 0)
            continue;
        for (unsigned int & sum : sums) {
            reduced.bytes.push_back(static_cast<std::uint8_t>(sum / (side * side)));
            sum = 0;
        }
    }
    return reduced;
}

bool Picture::SavePng(char const * path, std::string & reason) const {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(width);
    image.height = static_cast<png_uint_32>(height);
    image.format = PNG_FORMAT_RGB;
    if (png_image_write_to_file(&image, path, 0, bytes.data(), 0, nullptr))
        return true;
    reason = std::string(path) + ": " + image.message;
    return false;
}
