#pragma once

// A picture in memory.

#include "Cross/engine/core/MathPrim.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

struct Picture {
    int width = 0, height = 0;
    std::vector<std::uint8_t> bytes; // red, green, blue of each pixel, from the top left, row after row

    friend bool operator==(Picture const &, Picture const &) = default;

    // The opaque colour of a pixel.
    // REQUIRES: 0 <= x < width, 0 <= y < height.
    MathPrim::Colour At(int x, int y) const {
        std::uint8_t const * const pixel =
            bytes.data() +
            3 * (static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x));
        return {pixel[2], pixel[1], pixel[0], 255};
    }

    // The picture whose pixels are the means of squares of that many pixels on each side.
    // REQUIRES: width and height are multiples of `factor`.
    Picture ReducedBy(int factor) const;

    // Writes a PNG file, the same bytes for the same picture. On failure false, with the reason, and no file.
    bool SavePng(char const * path, std::string & reason) const;
};
