#pragma once

// ShapeSplitter: turns shapes into pieces, those of the scene, as a camera sees them, and those on the
// screen. The canvas gives the textures.
//
// Planes, meshes, triangles and points are filled; meshes are shaded a little, to tell their faces apart, and
// planes have an edge. All else is lines. A circle without a normal lies level. A sphere is its outline and
// three rings, fainter at the back. Texts in the scene stand over their position; texts on the screen start
// at theirs, with the middle of the line level with it.
#include "samples/renderer/Camera.h"
#include "samples/renderer/Canvas.h"
#include "samples/renderer/Pieces.h"
#include "samples/renderer/Shapes.h"

class ShapeSplitter {
public:
    ShapeSplitter(Camera const & camera, Canvas & canvas, Pieces & scene, Pieces & flat)
        : camera(camera), canvas(canvas), aspect(canvas.Aspect()), scene(scene), flat(flat) {}

    void operator()(DebugRender::Plane3D const & shape);
    void operator()(CopiedMesh const & shape);
    void operator()(CopiedText3D const & shape);
    void operator()(CopiedText2D const & shape);
    void operator()(DebugRender::Sphere const & shape);
    void operator()(DebugRender::Circle3D const & shape);
    void operator()(DebugRender::Circle const & shape);
    void operator()(DebugRender::Cube const & shape);
    void operator()(DebugRender::Tri const & shape);
    void operator()(DebugRender::Line const & shape);
    void operator()(DebugRender::Point const & shape);
    void operator()(DebugRender::OvalOutline const & shape);
    void operator()(DebugRender::RectOutline const & shape);
    void operator()(DebugRender::Tri2D const & shape);
    void operator()(DebugRender::Line2D const & shape);
    void operator()(DebugRender::Point2D const & shape);

private:
    Math::Vector3f seen(Math::Vector3f const & world) const { return camera.ToScreen(world, aspect); }

    void line(Math::Vector3f const & start, Math::Vector3f const & end, MathPrim::Colour colour);
    void frame(Math::Vector3f const & centre, Math::Vector3f const & axis1, Math::Vector3f const & axis2,
               MathPrim::Colour colour);
    void ring(Math::Vector3f const & centre, Math::Vector3f const & axis1, Math::Vector3f const & axis2,
              MathPrim::Colour colour);
    void sphereRing(DebugRender::Sphere const & sphere, Math::Vector3f const & axis1,
                    Math::Vector3f const & axis2);
    void sphereOutline(DebugRender::Sphere const & sphere);

    Camera const & camera;
    Canvas & canvas;
    float aspect;
    Pieces & scene;
    Pieces & flat;
};
