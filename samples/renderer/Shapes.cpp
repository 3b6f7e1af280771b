#include "samples/renderer/Shapes.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace {

using Math::Vector3f;

constexpr std::size_t c_longestText = 8192;

Vector3f placed(Vector3f const & v, Math::Matrix43f const & matrix) {
    return matrix.rows[0] * v.x + matrix.rows[1] * v.y + matrix.rows[2] * v.z + matrix.rows[3];
}

} // namespace

CopiedMesh::CopiedMesh(DebugRender::Mesh const & mesh) : colour(mesh.colour) {
    if (!mesh.mesh)
        return;
    std::vector<Vector3f> const & vertices = mesh.mesh->vertices;
    std::vector<std::uint16_t> const & indices = mesh.mesh->indices;
    for (std::size_t i = 0; i + 2 < indices.size(); i += 3) {
        auto const three = {indices[i], indices[i + 1], indices[i + 2]};
        if (std::max(three) >= vertices.size())
            continue;
        auto & corners = triangles.emplace_back();
        std::transform(three.begin(), three.end(), corners.begin(),
                       [&](std::uint16_t index) { return placed(vertices[index], mesh.transform); });
    }
}

std::string_view ShownText(char const * text) {
    return text ? std::string_view(text, strnlen(text, c_longestText)) : std::string_view("");
}
