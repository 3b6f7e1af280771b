#pragma once

// Plain records of shapes and colours over Math.h.

#include "Cross/engine/core/Math.h"

#include <cstdint>
#include <vector>

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

// A box turned in space. `extents` are the half lengths along its axes, row i of `rotation` is axis i.
struct OBBf {
    Math::Vector3f center, extents;
    Math::Matrix3f rotation;

    friend constexpr bool operator==(OBBf const &, OBBf const &) = default;
};

struct Spheref {
    Math::Vector3f center;
    float radius;

    friend constexpr bool operator==(Spheref const &, Spheref const &) = default;
};

// Without an end; the direction may have any length.
struct Rayf {
    Math::Vector3f origin, direction;
};

// A corner of a triangle and the ways from it to the second and the third.
struct MeshTriangle {
    Math::Vector3f corner, toSecond, toThird;

    friend constexpr bool operator==(MeshTriangle const &, MeshTriangle const &) = default;
};

// Triangles over shared vertices: three indices each, every one below the number of vertices.
struct Mesh {
    std::vector<Math::Vector3f> vertices;
    std::vector<std::uint16_t> indices;
    std::vector<MeshTriangle> triangles; // one per three indices where the mesh was loaded
};

static_assert(sizeof(OBBf) == 60 && sizeof(Spheref) == 16 && sizeof(MeshTriangle) == 36);
static_assert(Colour::FromWord(0x80FF4020).red == 0xFF &&
              Colour::FromWord(0x80FF4020).ToWord() == 0x80FF4020);

} // namespace MathPrim
