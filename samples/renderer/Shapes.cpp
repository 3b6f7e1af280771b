#include "samples/renderer/Shapes.h"

#include "samples/renderer/Vectors.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <utility>

namespace {

using Math::Vector3f;

constexpr std::size_t c_longestText = 8192;

Vector3f placed(Vector3f const & v, Math::Matrix43f const & matrix) {
    return matrix.rows[0] * v.x + matrix.rows[1] * v.y + matrix.rows[2] * v.z + matrix.rows[3];
}

using Triangles = std::vector<std::array<Vector3f, 3>>;

// Six times the volume, below 0 when the normals point inside.
float volumeOf(Triangles const & triangles) {
    float volume = 0.0f;
    for (auto const & [a, b, c] : triangles) {
        Vector3f const & origin = triangles[0][0];
        volume += Dot(a - origin, Cross(b - origin, c - origin));
    }
    return volume;
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
    if (volumeOf(triangles) < 0.0f)
        for (std::array<Vector3f, 3> & corners : triangles)
            std::swap(corners[1], corners[2]);
}

std::string_view ShownText(char const * text) {
    return text ? std::string_view(text, strnlen(text, c_longestText)) : std::string_view("");
}
