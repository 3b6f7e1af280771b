#include "samples/renderer/Picture.h"

#include <png.h>

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
