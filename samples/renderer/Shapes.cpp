#include "samples/renderer/Shapes.h"

#include <algorithm>
#include <cfloat>
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

using Triangles = std::vector<std::array<Corner, 3>>;

// Positions are those of the mesh; there are no places yet.
Triangles trianglesOf(MathPrim::Mesh const & mesh) {
    Triangles triangles;
    for (std::size_t i = 0; i + 2 < mesh.indices.size(); i += 3) {
        auto const three = {mesh.indices[i], mesh.indices[i + 1], mesh.indices[i + 2]};
        if (std::max(three) >= mesh.vertices.size())
            continue;
        auto & corners = triangles.emplace_back();
        std::transform(three.begin(), three.end(), corners.begin(), [&](std::uint16_t index) {
            return Corner{mesh.vertices[index], {}};
        });
    }
    return triangles;
}

// From the least to the greatest value, with the middles of the first and the last of so many pixels at its
// ends: what stands on an edge shows the colour there and nothing from beyond.
class Extent {
public:
    explicit Extent(unsigned int pixels) : pixels(static_cast<float>(pixels)) {}

    void Add(float value) {
        least = std::min(least, value);
        greatest = std::max(greatest, value);
    }

    float PlaceOf(float value) const {
        float const part = greatest > least ? (value - least) / (greatest - least) : 0.5f;
        return (part * (pixels - 1.0f) + 0.5f) / pixels;
    }

private:
    float pixels;
    float least = FLT_MAX, greatest = -FLT_MAX;
};

void layOver(Triangles & triangles, Texture const & texture) {
    Extent across(texture.width), along(texture.height);
    for (auto const & corners : triangles)
        for (Corner const & corner : corners) {
            across.Add(corner.position.x);
            along.Add(corner.position.z);
        }
    for (auto & corners : triangles)
        for (Corner & corner : corners)
            corner.place = {across.PlaceOf(corner.position.x), along.PlaceOf(corner.position.z)};
}

// Six times the volume, below 0 when the normals point inside.
float volumeOf(Triangles const & triangles) {
    float volume = 0.0f;
    for (auto const & [a, b, c] : triangles) {
        Vector3f const & origin = triangles[0][0].position;
        volume += Dot(a.position - origin, Cross(b.position - origin, c.position - origin));
    }
    return volume;
}

} // namespace

CopiedMesh::CopiedMesh(MathPrim::Mesh const & mesh, Math::Matrix43f const & transform,
                       MathPrim::Colour colour, std::shared_ptr<Texture const> worn)
    : triangles(trianglesOf(mesh)), colour(colour), texture(std::move(worn)) {
    if (texture)
        layOver(triangles, *texture);
    for (auto & corners : triangles)
        for (Corner & corner : corners)
            corner.position = placed(corner.position, transform);
    if (volumeOf(triangles) < 0.0f)
        for (auto & corners : triangles)
            std::swap(corners[1], corners[2]);
}

std::string_view ShownText(char const * text) {
    return text ? std::string_view(text, strnlen(text, c_longestText)) : std::string_view("");
}
