#include "samples/renderer/ShapeSplitter.h"

#include "samples/renderer/Vectors.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numbers>

namespace {

using Math::Vector2f;
using Math::Vector3f;
using MathPrim::Colour;

constexpr unsigned int c_ringSteps = 48;
constexpr Vector3f c_light{0.371f, 0.743f, -0.557f}; // a unit vector, from the ground to the light

Colour shaded(Colour colour, float light) {
    auto const part = [light](std::uint8_t value) {
        return static_cast<std::uint8_t>(static_cast<float>(value) * light);
    };
    return {part(colour.blue), part(colour.green), part(colour.red), colour.alpha};
}

// Between 0.4 away from the light and 1 towards it.
float lightOn(Vector3f const & normal) { return 0.7f + 0.3f * std::clamp(Dot(normal, c_light), -1.0f, 1.0f); }

Vector3f onScreen(Vector2f const & position) { return {position.x, position.y, 1.0f}; }

// Calls `side` with the ends of each side of a closed ring, as vectors from its centre.
template <class Side>
void walkRing(Vector3f const & axis1, Vector3f const & axis2, Side side) {
    Vector3f start = axis1;
    for (unsigned int step = 1; step <= c_ringSteps; ++step) {
        float const angle = 2.0f * std::numbers::pi_v<float> * static_cast<float>(step) / c_ringSteps;
        Vector3f const end = axis1 * std::cos(angle) + axis2 * std::sin(angle);
        side(start, end);
        start = end;
    }
}

} // namespace

void ShapeSplitter::operator()(DebugRender::Plane3D const & shape) {
    Across const across(Direction(shape.normal, {0, 1, 0}));
    Vector3f const axis1 = across.first * (shape.size / 2.0f), axis2 = across.second * (shape.size / 2.0f);
    Vector3f const corners[] = {seen(shape.point + axis1 + axis2), seen(shape.point + axis1 - axis2),
                                seen(shape.point - axis1 - axis2), seen(shape.point - axis1 + axis2)};
    scene.AddArea(corners, shape.colour);
    frame(shape.point, axis1, axis2, shape.colour);
}

void ShapeSplitter::operator()(CopiedMesh const & shape) {
    ImTextureID const texture = shape.texture ? canvas.TextureFor(shape.texture) : nullptr;
    for (auto const & [a, b, c] : shape.triangles) {
        Vector3f const normal = Direction(Cross(b.position - a.position, c.position - a.position), {0, 1, 0});
        bool const facesCamera = Dot(normal, camera.Position() - a.position) >= 0.0f;
        Corner const corners[] = {
            {seen(a.position), a.place}, {seen(b.position), b.place}, {seen(c.position), c.place}};
        scene.AddSurface(corners, texture, shaded(shape.colour, lightOn(normal)),
                         facesCamera ? Pieces::Side::Front : Pieces::Side::Back);
    }
}

void ShapeSplitter::operator()(CopiedText3D const & shape) {
    scene.AddText(seen(shape.position), shape.text, Pieces::Anchor::Below, shape.colour);
}

void ShapeSplitter::operator()(CopiedText2D const & shape) {
    Vector2f const position{shape.position.x * 2.0f - 1.0f, 1.0f - shape.position.y * 2.0f};
    flat.AddText(onScreen(position), shape.text, Pieces::Anchor::MiddleLeft, shape.colour);
}

void ShapeSplitter::operator()(DebugRender::Sphere const & shape) {
    float const radius = shape.radius;
    sphereRing(shape, {radius, 0, 0}, {0, radius, 0});
    sphereRing(shape, {0, radius, 0}, {0, 0, radius});
    sphereRing(shape, {0, 0, radius}, {radius, 0, 0});
    sphereOutline(shape);
}

void ShapeSplitter::operator()(DebugRender::Circle3D const & shape) {
    Across const across(Direction(shape.normal, {0, 1, 0}));
    ring(shape.centre, across.first * shape.radius, across.second * shape.radius, shape.colour);
}

void ShapeSplitter::operator()(DebugRender::Circle const & shape) {
    ring(shape.centre, {shape.radius, 0, 0}, {0, 0, shape.radius}, shape.colour);
}

// The first four corners go round one face, and each of the others lies across from its like.
void ShapeSplitter::operator()(DebugRender::Cube const & shape) {
    for (unsigned int i = 0; i < 4; ++i) {
        unsigned int const next = (i + 1) % 4;
        line(shape.corners[i], shape.corners[next], shape.colour);
        line(shape.corners[i + 4], shape.corners[next + 4], shape.colour);
        line(shape.corners[i], shape.corners[i + 4], shape.colour);
    }
}

void ShapeSplitter::operator()(DebugRender::Tri const & shape) {
    Vector3f const corners[] = {seen(shape.corners[0]), seen(shape.corners[1]), seen(shape.corners[2])};
    scene.AddArea(corners, shape.colour);
}

void ShapeSplitter::operator()(DebugRender::Line const & shape) {
    line(shape.start, shape.end, shape.colour);
}

void ShapeSplitter::operator()(DebugRender::Point const & shape) {
    scene.AddDisc(seen(shape.position), camera.LengthToScreen(shape.size / 2.0f), shape.colour);
}

void ShapeSplitter::operator()(DebugRender::OvalOutline const & shape) {
    ring(shape.centre, shape.axis1, shape.axis2, shape.colour);
}

void ShapeSplitter::operator()(DebugRender::RectOutline const & shape) {
    frame(shape.centre, shape.axis1, shape.axis2, shape.colour);
}

void ShapeSplitter::operator()(DebugRender::Tri2D const & shape) {
    Vector3f const corners[] = {onScreen(shape.corners[0]), onScreen(shape.corners[1]),
                                onScreen(shape.corners[2])};
    flat.AddArea(corners, shape.colour);
}

void ShapeSplitter::operator()(DebugRender::Line2D const & shape) {
    flat.AddLine(onScreen(shape.start), onScreen(shape.end), shape.colour);
}

void ShapeSplitter::operator()(DebugRender::Point2D const & shape) {
    flat.AddDisc(onScreen(shape.position), shape.size / 2.0f, shape.colour);
}

void ShapeSplitter::line(Vector3f const & start, Vector3f const & end, Colour colour) {
    scene.AddLine(seen(start), seen(end), colour);
}

void ShapeSplitter::frame(Vector3f const & centre, Vector3f const & axis1, Vector3f const & axis2,
                          Colour colour) {
    Vector3f const corners[] = {centre + axis1 + axis2, centre + axis1 - axis2, centre - axis1 - axis2,
                                centre - axis1 + axis2};
    for (unsigned int i = 0; i < 4; ++i)
        line(corners[i], corners[(i + 1) % 4], colour);
}

void ShapeSplitter::ring(Vector3f const & centre, Vector3f const & axis1, Vector3f const & axis2,
                         Colour colour) {
    walkRing(axis1, axis2, [&](Vector3f const & start, Vector3f const & end) {
        line(centre + start, centre + end, colour);
    });
}

void ShapeSplitter::sphereRing(DebugRender::Sphere const & sphere, Vector3f const & axis1,
                               Vector3f const & axis2) {
    Colour faint = sphere.colour;
    faint.alpha = static_cast<std::uint8_t>(faint.alpha / 3);
    walkRing(axis1, axis2, [&](Vector3f const & start, Vector3f const & end) {
        bool const facesCamera = Dot(start + end, camera.Position() - sphere.centre - start) > 0.0f;
        line(sphere.centre + start, sphere.centre + end, facesCamera ? sphere.colour : faint);
    });
}

// Where the camera's view touches the sphere: a circle somewhat nearer and smaller than the greatest one.
void ShapeSplitter::sphereOutline(DebugRender::Sphere const & sphere) {
    Vector3f const toCamera = camera.Position() - sphere.centre;
    float const distance = Length(toCamera);
    if (!(distance > sphere.radius))
        return;
    float const ratio = sphere.radius / distance;
    Across const across(Direction(toCamera, {0, 1, 0}));
    float const radius = sphere.radius * std::sqrt(1.0f - ratio * ratio);
    ring(sphere.centre + toCamera * (ratio * ratio), across.first * radius, across.second * radius,
         sphere.colour);
}
