#include "Cross/Util/BoundVolume.h"

#include "Cross/Util/DebugRender.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <utility>

using Math::Vector3f;
using MathPrim::OBBf;
using MathPrim::Spheref;

namespace {

constexpr float c_largest = std::numeric_limits<float>::max();
constexpr Math::Matrix3f c_identity = {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};

constexpr unsigned int c_axes = 3;
constexpr unsigned int c_pointsAtOnce = 4;
constexpr unsigned int c_floatsAtOnce = c_pointsAtOnce * c_axes;

struct Range {
    Vector3f min, max;
};

// A component of four points in a row lies in every third lane of three registers. Where neither is less, as
// beside a NaN, the second one counts, which is the bound.
using Lanes = float __attribute__((__vector_size__(16)));

struct LaneRange {
    void Take(Lanes lanes) {
        min = lanes < min ? lanes : min;
        max = lanes > max ? lanes : max;
    }

    Lanes min = {c_largest, c_largest, c_largest, c_largest};
    Lanes max = {-c_largest, -c_largest, -c_largest, -c_largest};
};

Lanes loadLanes(float const * floats) {
    Lanes lanes;
    std::memcpy(&lanes, floats, sizeof(lanes));
    return lanes;
}

float lesser(float value, float bound) { return value < bound ? value : bound; }

float greater(float value, float bound) { return value > bound ? value : bound; }

// Of zeros the first one is the bound, whatever its sign; the lanes do not know which came first.
float firstOfEqual(float bound, float const * component) {
    if (bound != 0.0f)
        return bound;
    while (*component != 0.0f)
        component += c_axes;
    return *component;
}

Range rangeOf(Vector3f const * points, unsigned int count) {
    float const * const floats = &points->x;
    LaneRange lanes[c_axes];
    std::size_t const total = std::size_t{count} * c_axes;
    std::size_t done = 0;
    for (; done + c_floatsAtOnce <= total; done += c_floatsAtOnce)
        for (std::size_t i = 0; i < c_axes; ++i)
            lanes[i].Take(loadLanes(floats + done + i * 4));

    float min[c_axes] = {c_largest, c_largest, c_largest};
    float max[c_axes] = {-c_largest, -c_largest, -c_largest};
    for (unsigned int i = 0; i < c_floatsAtOnce; ++i) {
        min[i % c_axes] = lesser(lanes[i / 4].min[i % 4], min[i % c_axes]);
        max[i % c_axes] = greater(lanes[i / 4].max[i % 4], max[i % c_axes]);
    }
    for (; done < total; ++done) {
        min[done % c_axes] = lesser(floats[done], min[done % c_axes]);
        max[done % c_axes] = greater(floats[done], max[done % c_axes]);
    }
    for (unsigned int axis = 0; axis < c_axes; ++axis) {
        min[axis] = firstOfEqual(min[axis], floats + axis);
        max[axis] = firstOfEqual(max[axis], floats + axis);
    }
    return {{min[0], min[1], min[2]}, {max[0], max[1], max[2]}};
}

OBBf boxOf(Range const & range) {
    return {(range.min + range.max) * 0.5f, (range.max - range.min) * 0.5f, c_identity};
}

float lengthOf(Vector3f const & vector) { return std::sqrt(Dot(vector, vector)); }

Spheref sphereOf(OBBf const & box) { return {box.center, lengthOf(box.extents)}; }

void putCorners(OBBf const & box, Vector3f * corners) {
    Vector3f const & p = box.center;
    Vector3f const x = box.rotation.rows[0] * box.extents.x;
    Vector3f const y = box.rotation.rows[1] * box.extents.y;
    Vector3f const z = box.rotation.rows[2] * box.extents.z;
    for (Vector3f const & side : {p + x, p - x})
        for (Vector3f const & corner : {side + y + z, side + y - z, side - y - z, side - y + z})
            *corners++ = corner;
}

// A row vector times the three rows of rotation.
Vector3f turned(Vector3f const & vector, Math::Matrix43f const & matrix) {
    return matrix.rows[0] * vector.x + matrix.rows[1] * vector.y + matrix.rows[2] * vector.z;
}

Vector3f moved(Vector3f const & point, Math::Matrix43f const & matrix) {
    return turned(point, matrix) + matrix.rows[3];
}

// The part of a ray that lies in all slabs so far, in lengths of its direction.
struct RaySpan {
    // Cuts the span to a slab of half length `half`: `offset` and `speed` are the way from the ray's origin
    // to the middle of the slab and the ray's direction, along the axis. False when nothing in front is left.
    bool Cut(float offset, float speed, float half) {
        if (std::fabs(speed) <= 1e-6f)
            return !(std::fabs(offset) > half);
        float const inverse = 1.0f / speed;
        float near = (offset + half) * inverse;
        float far = (offset - half) * inverse;
        if (near > far)
            std::swap(near, far);
        min = std::max(min, near);
        max = std::min(max, far);
        return !(max < min || max < 0.0f);
    }

    float min = -c_largest;
    float max = c_largest;
};

bool touch(Spheref const & a, Spheref const & b) {
    Vector3f const way = a.center - b.center;
    float const reach = a.radius + b.radius;
    return !(Dot(way, way) > reach * reach);
}

// 1 / sqrt(x) to about 22 bits, and finite at 0.
float fastInverseRoot(float x) {
    float y = std::bit_cast<float>(0x5F3759DF - (std::bit_cast<std::uint32_t>(x) >> 1));
    y = y * (1.5f - 0.5f * x * y * y);
    return y * (1.5f - 0.5f * x * y * y);
}

} // namespace

void BoundVolume::Clear() {
    valid = false;
    obb = {{0, 0, 0}, {0, 0, 0}, c_identity};
    sphere = {{0, 0, 0}, 0};
}

void BoundVolume::SetOBB(OBBf const & box) {
    valid = true;
    obb = box;
    sphere = sphereOf(obb);
}

void BoundVolume::SetSphere(Spheref const & newSphere) {
    valid = true;
    sphere = newSphere;
    float const radius = sphere.radius;
    obb = {sphere.center, {radius, radius, radius}, c_identity};
}

void BoundVolume::Build(Vector3f const * points, unsigned int count) {
    if (count == 0) {
        Clear();
        return;
    }
    valid = true;
    Range const range = rangeOf(points, count);
    obb = boxOf(range);
    sphere = {range.min + obb.extents, lengthOf(obb.extents)};
}

BoundVolume const & BoundVolume::operator+=(BoundVolume const & other) {
    if (!other.valid)
        return *this;
    if (!valid)
        return *this = other;
    Vector3f corners[16];
    putCorners(obb, corners);
    putCorners(other.obb, corners + 8);
    SetOBB(boxOf(rangeOf(corners, 16)));
    return *this;
}

void BoundVolume::Scale(float factor) {
    if (!valid)
        return;
    obb.extents = obb.extents * factor;
    sphere = sphereOf(obb);
}

void BoundVolume::Transform(Math::Matrix43f const & matrix) {
    if (!valid)
        return;
    for (Vector3f & axis : obb.rotation.rows)
        axis = turned(axis, matrix);
    obb.center = moved(obb.center, matrix);
    sphere.center = moved(sphere.center, matrix);
}

bool BoundVolume::Intersect(Vector3f const & point) const {
    Vector3f const way = point - obb.center;
    auto const isOutside = [&way](Vector3f const & axis, float half) {
        float const distance = Dot(axis, way);
        return distance > half || distance < -half;
    };
    auto const & axes = obb.rotation.rows;
    return !isOutside(axes[0], obb.extents.x) && !isOutside(axes[1], obb.extents.y) &&
           !isOutside(axes[2], obb.extents.z);
}

bool BoundVolume::Intersect(MathPrim::Rayf const & ray, Vector3f & hit) const {
    Vector3f const way = obb.center - ray.origin;
    RaySpan span;
    auto const cut = [&](Vector3f const & axis, float half) {
        return span.Cut(Dot(axis, way), Dot(axis, ray.direction), half);
    };
    auto const & axes = obb.rotation.rows;
    if (!cut(axes[0], obb.extents.x) || !cut(axes[1], obb.extents.y) || !cut(axes[2], obb.extents.z))
        return false;
    hit = ray.origin + ray.direction * (span.min > 0.0f ? span.min : span.max);
    return true;
}

bool BoundVolume::Intersect(Spheref const & other, Vector3f & point) const {
    if (!touch(sphere, other))
        return false;
    Vector3f const way = sphere.center - other.center;
    float const square = Dot(way, way);
    point = sphere.center + way * fastInverseRoot(square) * (std::sqrt(square) - sphere.radius);
    return true;
}

bool BoundVolume::Intersect(BoundVolume const & other) const { return touch(sphere, other.sphere); }

void BoundVolume::Display() const {
    DebugRender::Cube box{};
    putCorners(obb, box.corners);
    box.colour = MathPrim::Colour::FromWord(0xFF0000FF);
    DebugRender::Draw(box, DebugRender::GlobalFrame());
    DebugRender::Draw(
        DebugRender::Sphere{sphere.center, sphere.radius, MathPrim::Colour::FromWord(0xFFFF0000)},
        DebugRender::GlobalFrame());
}
