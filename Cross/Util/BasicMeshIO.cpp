#include "Cross/Util/BasicMeshIO.h"

#include "Cross/engine/core/Text.h"
#include "Cross/engine/core/Types.h"
#include "Cross/engine/diagnostics/Letters.h"

#include <algorithm>
#include <cstdint>
#include <stdexcept>
#include <utility>

using Math::Vector3f;
using MathPrim::Mesh;

namespace {

constexpr std::uint32_t c_meshId = FourCC("BMSH");
constexpr std::uint32_t c_listId = FourCC("MSHL");
constexpr std::uint32_t c_listInfoId = FourCC("MSLI");
constexpr std::uint32_t c_meshInfoId = FourCC("MSHI");
constexpr std::uint32_t c_version = 1; // of all of them

constexpr unsigned int c_countSize = sizeof(std::int32_t);

// Enters a data chunk and tells of it.
Chunky::ChunkInfo enter(Chunky & file, std::uint32_t id) {
    Chunky::ChunkInfo chunk;
    file.PeekChunk(chunk);
    file.ReadDataChunk(id, c_version);
    return chunk;
}

// Leaves the chunk that was entered last and throws, unless what it needs is so.
void require(bool isSo, Chunky & file, Chunky::ChunkInfo const & chunk, char const * reason) {
    if (isSo)
        return;
    file.PopChunk();
    char letters[5];
    dbDecode4Letters(letters, chunk.id);
    std::string message;
    text::Printf(message, "chunk '%s' at offset %u of '%s': %s", letters, chunk.headerOffset,
                 file.GetStreamName(), reason);
    throw std::runtime_error(message);
}

std::int32_t readCount(Chunky & file) {
    std::int32_t count = 0;
    file.Read(count);
    return count;
}

// Reads `count` values of `T`, each made of numbers of a kind that the file converts.
template <class Number, class T>
void readAll(Chunky & file, std::vector<T> & values, std::int32_t count) {
    values.resize(static_cast<std::size_t>(count));
    std::size_t const bytes = values.size() * sizeof(T);
    file.Read(reinterpret_cast<Number *>(values.data()), static_cast<unsigned int>(bytes / sizeof(Number)));
}

// A plain loop takes many values at once, which std::max_element does not.
std::uint16_t largestOf(std::vector<std::uint16_t> const & indices) {
    std::uint16_t largest = 0;
    for (std::uint16_t const index : indices)
        largest = std::max(largest, index);
    return largest;
}

// The chunk of a mesh, without triangles.
Mesh readMesh(Chunky & file) {
    Chunky::ChunkInfo const chunk = enter(file, c_meshId);
    require(chunk.bodySize >= 2 * c_countSize, file, chunk, "it is too short for the counts of a mesh");
    std::int32_t const vertices = readCount(file);
    std::int32_t const indices = readCount(file);
    require(vertices >= 0 && indices >= 0, file, chunk, "a count of the mesh is negative");
    std::uint64_t const size = std::uint64_t{sizeof(Vector3f)} * static_cast<std::uint32_t>(vertices) +
                               std::uint64_t{sizeof(std::uint16_t)} * static_cast<std::uint32_t>(indices);
    require(size <= chunk.bodySize - 2 * c_countSize, file, chunk, "the mesh exceeds the chunk");
    require(indices % 3 == 0, file, chunk, "the indices of the mesh do not come in threes");

    Mesh mesh;
    readAll<float>(file, mesh.vertices, vertices);
    readAll<std::uint16_t>(file, mesh.indices, indices);
    require(indices == 0 || largestOf(mesh.indices) < vertices, file, chunk,
            "an index of the mesh is that of no vertex");
    file.PopChunk();
    return mesh;
}

void appendTriangles(Mesh const & from, std::vector<MathPrim::MeshTriangle> & triangles) {
    triangles.reserve(triangles.size() + from.indices.size() / 3);
    for (std::size_t i = 0; i < from.indices.size(); i += 3) {
        Vector3f const first = from.vertices[from.indices[i]];
        Vector3f const second = from.vertices[from.indices[i + 1]];
        Vector3f const third = from.vertices[from.indices[i + 2]];
        triangles.push_back({first, second - first, third - first});
    }
}

} // namespace

void BasicMeshIO::Save(Chunky & file, Mesh const & mesh) {
    file.WriteDataChunkName(c_meshId, c_version, "BasicMesh", -1);
    file.Write(static_cast<std::int32_t>(mesh.vertices.size()));
    file.Write(static_cast<std::int32_t>(mesh.indices.size()));
    for (Vector3f const & vertex : mesh.vertices)
        file.Write(&vertex.x, 3);
    for (std::uint16_t const index : mesh.indices)
        file.Write(index);
    file.PopChunk();
}

void BasicMeshIO::Load(Chunky & file, Mesh & mesh) {
    Mesh read = readMesh(file);
    appendTriangles(read, mesh.triangles);
    mesh.vertices = std::move(read.vertices);
    mesh.indices = std::move(read.indices);
}

void BasicMeshIO::SaveList(Chunky & file, std::vector<MeshInfo> const & meshes) {
    file.WriteFolderChunkName(c_listId, c_version, "BasicMeshList");
    file.WriteDataChunkName(c_listInfoId, c_version, "MeshListInfo", -1);
    file.Write(static_cast<std::int32_t>(meshes.size()));
    file.PopChunk();
    for (MeshInfo const & info : meshes) {
        file.WriteDataChunkName(c_meshInfoId, c_version, "MeshInfo", -1);
        file.WriteString(info.name.c_str());
        file.PopChunk();
        Save(file, info.mesh);
    }
    file.PopChunk();
}

void BasicMeshIO::LoadList(Chunky & file, std::vector<MeshInfo> & meshes) {
    file.ReadFolderChunk(c_listId, c_version);
    Chunky::ChunkInfo const list = enter(file, c_listInfoId);
    require(list.bodySize >= c_countSize, file, list, "it is too short for the number of meshes");
    std::int32_t const count = readCount(file);
    require(count >= 0, file, list, "the number of meshes is negative");
    file.PopChunk();
    for (std::int32_t i = 0; i < count; ++i) {
        MeshInfo info;
        file.ReadDataChunk(c_meshInfoId, c_version);
        file.ReadString(info.name);
        file.PopChunk();
        Load(file, info.mesh);
        meshes.push_back(std::move(info));
    }
    file.PopChunk();
}
