// Chunk files from outside as a bound volume, a mesh and a list of meshes: loading ends in a result or an
// exception, a loaded mesh keeps its rules, and what was saved is the same after it was loaded again.

#include "Cross/Util/BasicMeshIO.h"
#include "Cross/Util/BoundVolumeIO.h"
#include "tests/support/StreamBytes.h"

#include <cstdint>
#include <cstdlib>
#include <exception>
#include <string>
#include <vector>

namespace {

using MathPrim::Mesh;
using Meshes = std::vector<BasicMeshIO::MeshInfo>;

void demand(bool holds) {
    if (!holds)
        std::abort();
}

void check(Mesh const & mesh) {
    demand(mesh.indices.size() == 3 * mesh.triangles.size());
    for (std::uint16_t const index : mesh.indices)
        demand(index < mesh.vertices.size());
}

void check(Meshes const & meshes) {
    for (BasicMeshIO::MeshInfo const & info : meshes)
        check(info.mesh);
}

void check(BoundVolume const &) {}

template <class T>
using Operation = void (*)(Chunky &, T);

template <class T>
std::string savedBytes(Operation<T const &> save, T const & value) {
    FilledStream stream;
    Chunky file(stream, 0);
    save(file, value);
    return stream.Content();
}

// Loads from the bytes; false when they hold no such thing.
template <class T>
bool load(Operation<T &> operation, std::string const & bytes, T & value) {
    FilledStream stream(bytes);
    Chunky file(stream, 0);
    try {
        operation(file, value);
    } catch (std::exception const &) {
        return false;
    }
    return true;
}

template <class T>
void run(std::string const & bytes, Operation<T &> operation, Operation<T const &> save) {
    T value, again;
    bool const loaded = load(operation, bytes, value);
    check(value);
    if (!loaded)
        return;
    std::string const saved = savedBytes(save, value);
    demand(load(operation, saved, again));
    demand(savedBytes(save, again) == saved);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const * data, std::size_t size) {
    std::string const bytes(reinterpret_cast<char const *>(data), size);
    run<BoundVolume>(bytes, BoundVolumeIO::Load, BoundVolumeIO::Save);
    run<Mesh>(bytes, BasicMeshIO::Load, BasicMeshIO::Save);
    run<Meshes>(bytes, BasicMeshIO::LoadList, BasicMeshIO::SaveList);
    return 0;
}
