#include "samples/renderer/Camera.h"

#include "samples/renderer/Vectors.h"

#include <algorithm>
#include <cmath>

namespace {

using Math::Vector3f;

constexpr float c_scale =
    2.1445069f; // 1 over the tangent of half the angle of view, 50 degrees from top to bottom
constexpr float c_steepest = 1.55f; // radians; straight up and down have no right and left
constexpr float c_least = 4.0f * Camera::c_near;

} // namespace

void Camera::LookAt(Vector3f const & from, Vector3f const & at) {
    position = from;
    target = at;
    ahead = Direction(at - from, {0, 0, 1});
    Across const across(ahead);
    right = across.first;
    up = across.second;
}

void Camera::Orbit(float turn, float lift) {
    Vector3f const arm = position - target;
    float const distance = Length(arm);
    float const angle = std::atan2(arm.x, -arm.z) + turn;
    float const height =
        std::clamp(std::atan2(arm.y, std::hypot(arm.x, arm.z)) + lift, -c_steepest, c_steepest);
    float const level = distance * std::cos(height);
    LookAt(target + Vector3f{level * std::sin(angle), distance * std::sin(height), -level * std::cos(angle)},
           target);
}

void Camera::Zoom(float factor) {
    if (!(factor > 0.0f) || !std::isfinite(factor))
        return;
    float const distance = Length(position - target);
    LookAt(target - ahead * std::max(distance * factor, c_least), target);
}

Vector3f Camera::ToScreen(Vector3f const & world, float aspect) const {
    Vector3f const seen = world - position;
    return {Dot(seen, right) * c_scale / aspect, Dot(seen, up) * c_scale, Dot(seen, ahead)};
}

float Camera::LengthToScreen(float world) const { return world * c_scale; }

MathPrim::Rayf Camera::RayThrough(Math::Vector2f const & screen, float aspect) const {
    return {position,
            Direction(right * (screen.x * aspect / c_scale) + up * (screen.y / c_scale) + ahead, ahead)};
}
