#pragma once

// What drawing needs of vectors beyond Math.h.

#include "Cross/engine/core/Math.h"

#include <cmath>

inline Math::Vector3f Cross(Math::Vector3f const & a, Math::Vector3f const & b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

inline float Length(Math::Vector3f const & v) { return std::hypot(v.x, v.y, v.z); }

// `otherwise` when `v` has no direction.
inline Math::Vector3f Direction(Math::Vector3f const & v, Math::Vector3f const & otherwise) {
    float const length = Length(v);
    return length > 0.0f && std::isfinite(length) ? Math::Vector3f{v.x / length, v.y / length, v.z / length}
                                                  : otherwise;
}

// A corner of an area, and the place in a texture that it shows: 0 to 1, from the bottom left.
struct Corner {
    Math::Vector3f position;
    Math::Vector2f place;
};

// Two unit vectors across a direction and across each other.
struct Across {
    explicit Across(Math::Vector3f const & direction)
        : first(Direction(Cross({0, 1, 0}, direction), {1, 0, 0})),
          second(Direction(Cross(direction, first), {0, 0, 1})) {}

    Math::Vector3f first, second;
};
