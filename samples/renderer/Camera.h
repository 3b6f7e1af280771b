#pragma once

// Camera: where the scene is seen from, in perspective. The world has x to the right, y up and z ahead, so
// that a map with north on top is seen from above as it is drawn on paper. A plain value.

#include "Cross/engine/core/Math.h"
#include "Cross/engine/core/MathPrim.h"

class Camera {
public:
    static constexpr float c_near = 0.1f; // nothing nearer is seen

    // From ten units behind the origin, level.
    Camera() = default;

    // A position that is the target looks ahead.
    void LookAt(Math::Vector3f const & from, Math::Vector3f const & at);

    // Moves on a sphere about the target, in radians: `turn` to the right, `lift` up, never quite over the
    // top.
    void Orbit(float turn, float lift);

    // Brings the distance to the target to `factor` times what it is; a factor that is not above 0 is
    // ignored.
    void Zoom(float factor);

    Math::Vector3f const & Position() const { return position; }

    Math::Vector3f const & Target() const { return target; }

    // A position as this camera sees it: x to the right and y up, so that both run from -1 to 1 over the
    // screen once they are divided by z, the depth. `aspect` is the screen's width over its height.
    Math::Vector3f ToScreen(Math::Vector3f const & world, float aspect) const;

    // A length across the view in the unit of ToScreen's y.
    float LengthToScreen(float world) const;

    // From the position through a point of the screen, given in screen units: -1 to 1, y up.
    MathPrim::Rayf RayThrough(Math::Vector2f const & screen, float aspect) const;

private:
    Math::Vector3f position{0, 0, -10}, target{0, 0, 0};
    Math::Vector3f right{1, 0, 0}, up{0, 1, 0}, ahead{0, 0, 1};
};
