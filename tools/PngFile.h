#pragma once

// PNG images, whole files in memory.

#include <string>
#include <string_view>
#include <vector>

// Pixels as Targa files store them: blue, green, red and with 32 bits alpha, the bottom row first.
struct TargaPicture {
    unsigned int width = 0, height = 0;
    unsigned int bitsPerPixel = 0; // 24 or 32
    std::vector<unsigned char> bytes;
};

// Pixels with alpha become 32 bits, others 24; those of other depths and kinds are converted. Throws
// std::runtime_error with the reason when the bytes are no whole PNG image or have more pixels than a Targa
// file can.
TargaPicture DecodePng(std::string_view file);

// Throws std::runtime_error with the reason when it cannot be done.
std::string EncodePng(TargaPicture const & picture);
