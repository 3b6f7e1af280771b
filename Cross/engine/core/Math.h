#pragma once

// Plain vectors and matrices of floats: stored as they stand, without padding, and copied as bytes. Nothing
// is set unless it is given: write Vector3f{} for zeros.

namespace Math {

struct Vector2f {
    float x, y;

    friend constexpr bool operator==(Vector2f const &, Vector2f const &) = default;
};

struct Vector3f {
    float x, y, z;

    friend constexpr bool operator==(Vector3f const &, Vector3f const &) = default;

    friend constexpr Vector3f operator+(Vector3f const & a, Vector3f const & b) {
        return {a.x + b.x, a.y + b.y, a.z + b.z};
    }

    friend constexpr Vector3f operator-(Vector3f const & a, Vector3f const & b) {
        return {a.x - b.x, a.y - b.y, a.z - b.z};
    }

    friend constexpr Vector3f operator*(Vector3f const & a, float factor) {
        return {a.x * factor, a.y * factor, a.z * factor};
    }
};

constexpr float Dot(Vector3f const & a, Vector3f const & b) { return a.x * b.x + a.y * b.y + a.z * b.z; }

struct Vector4f {
    float x, y, z, w;

    friend constexpr bool operator==(Vector4f const &, Vector4f const &) = default;
};

// Nine floats, row after row.
struct Matrix3f {
    Vector3f rows[3];

    friend constexpr bool operator==(Matrix3f const &, Matrix3f const &) = default;
};

// Three rows of rotation and a fourth of translation.
struct Matrix43f {
    Vector3f rows[4];

    friend constexpr bool operator==(Matrix43f const &, Matrix43f const &) = default;
};

// Sixteen floats, row after row.
struct Matrix4f {
    Vector4f rows[4];

    friend constexpr bool operator==(Matrix4f const &, Matrix4f const &) = default;
};

static_assert(sizeof(Matrix3f) == 36 && sizeof(Matrix43f) == 48 && sizeof(Matrix4f) == 64);

} // namespace Math
