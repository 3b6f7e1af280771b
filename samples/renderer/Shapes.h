#pragma once

// Shapes as a renderer keeps them until it shows them, with copies of what their callers lend: texts and the
// corners of meshes.

#include "Cross/Util/DebugRender.h"
#include "samples/renderer/Texture.h"
#include "samples/renderer/Vectors.h"

#include <array>
#include <memory>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

struct CopiedText3D {
    Math::Vector3f position;
    std::string text;
    MathPrim::Colour colour;
};

struct CopiedText2D {
    Math::Vector2f position;
    std::string text;
    MathPrim::Colour colour;
};

struct CopiedMesh {
    // Indices that no vertex has, and what is left over of threes, are dropped. A texture lies over the mesh
    // from above: x and z of the mesh's own bounds are its width and height.
    CopiedMesh(MathPrim::Mesh const & mesh, Math::Matrix43f const & transform, MathPrim::Colour colour,
               std::shared_ptr<Texture const> texture = nullptr);

    // In world units. Those of a closed mesh have their normals, of second by third side, outside, whichever
    // way the mesh goes round.
    std::vector<std::array<Corner, 3>> triangles;
    MathPrim::Colour colour;
    std::shared_ptr<Texture const> texture; // may be null
};

using Shape =
    std::variant<DebugRender::Plane3D, CopiedMesh, CopiedText3D, CopiedText2D, DebugRender::Sphere,
                 DebugRender::Circle3D, DebugRender::Circle, DebugRender::Cube, DebugRender::Tri,
                 DebugRender::Line, DebugRender::Point, DebugRender::OvalOutline, DebugRender::RectOutline,
                 DebugRender::Tri2D, DebugRender::Line2D, DebugRender::Point2D>;

// What is shown of a text: null is "", and 8 KiB fill more than a screen.
std::string_view ShownText(char const * text);
