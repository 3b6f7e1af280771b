#pragma once

// Plain records of shapes and colours over Math.h.

#include <cstdint>

namespace MathPrim {

// Four bytes, 0 to 255 each, in the order in which they are stored.
struct Colour {
    std::uint8_t blue, green, red, alpha;

    // From and to a word 0xAARRGGBB.
    static constexpr Colour FromWord(std::uint32_t word) {
        return {static_cast<std::uint8_t>(word), static_cast<std::uint8_t>(word >> 8),
                static_cast<std::uint8_t>(word >> 16), static_cast<std::uint8_t>(word >> 24)};
    }

    constexpr std::uint32_t ToWord() const {
        return blue | static_cast<std::uint32_t>(green) << 8 | static_cast<std::uint32_t>(red) << 16 |
               static_cast<std::uint32_t>(alpha) << 24;
    }

    friend constexpr bool operator==(Colour const &, Colour const &) = default;
};

static_assert(Colour::FromWord(0x80FF4020).red == 0xFF &&
              Colour::FromWord(0x80FF4020).ToWord() == 0x80FF4020);

} // namespace MathPrim
