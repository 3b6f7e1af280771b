// Lists of meshes from a chunk file, beside one fread of the whole file and a copy: of its bytes where
// loading makes about as many, of the loaded meshes where their triangles are several times that.

#include "Cross/Util/BasicMeshIO.h"
#include "Cross/Util/Random.h"
#include "Cross/engine/filesystem/FilePath.h"
#include "bench/Ratio.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

namespace {

using Meshes = std::vector<BasicMeshIO::MeshInfo>;

void demand(bool holds, char const * what) {
    if (holds)
        return;
    std::fprintf(stderr, "%s\n", what);
    std::exit(2);
}

constexpr std::size_t c_meshes = 50;
constexpr unsigned int c_vertices = 20'000;

// Meshes with so many triangles per thousand vertices: a closed surface has about 2000, triangles that share
// no vertex are 333.
Meshes meshesWith(unsigned int density) {
    Random random(1);
    Meshes meshes(c_meshes);
    for (BasicMeshIO::MeshInfo & info : meshes) {
        info.name = "surface";
        info.mesh.vertices.resize(c_vertices);
        for (Math::Vector3f & vertex : info.mesh.vertices)
            vertex = {static_cast<float>(random.GetBits(20)), static_cast<float>(random.GetBits(20)), 1.0f};
        unsigned int const triangles = c_vertices * density / 1000;
        for (unsigned int corner = 0; corner < 3 * triangles; ++corner)
            info.mesh.indices.push_back(static_cast<std::uint16_t>(
                (corner / 3 * c_vertices / triangles + random.GetBits(4)) % c_vertices));
    }
    return meshes;
}

// A list in a file that goes with the object.
class ListFile {
public:
    explicit ListFile(Meshes const & meshes)
        : path(std::filesystem::temp_directory_path() /
               ("crossutil-bench-" + std::to_string(meshes[0].mesh.indices.size()) + ".mesh")) {
        ByteStreamProxy const stream = FilePath::OpenStream(Name().c_str(), c_streamWrite);
        demand(static_cast<bool>(stream), "the list cannot be written");
        Chunky file(stream.Get(), 0);
        BasicMeshIO::SaveList(file, meshes);
        demand(stream->Flush(), "the list cannot be written");
        size = stream->GetLen();
    }

    ListFile(ListFile const &) = delete;
    ListFile & operator=(ListFile const &) = delete;

    ~ListFile() { std::filesystem::remove(path); }

    std::string Name() const { return path.string(); }

    std::size_t size = 0;

private:
    std::filesystem::path path;
};

Meshes loaded(ListFile const & list) {
    ByteStreamProxy stream = FilePath::OpenStream(list.Name().c_str(), c_streamRead);
    Chunky file(stream, 0);
    Meshes meshes;
    BasicMeshIO::LoadList(file, meshes);
    demand(meshes.size() == c_meshes, "the list does not load");
    return meshes;
}

void loadList(benchmark::State & state, ListFile const & list) {
    for (auto _ : state)
        benchmark::DoNotOptimize(loaded(list).data());
}

std::vector<char> bytesOf(ListFile const & list) {
    std::FILE * const file = std::fopen(list.Name().c_str(), "rb");
    std::vector<char> bytes(list.size);
    demand(file && std::fread(bytes.data(), 1, bytes.size(), file) == bytes.size(), "the list is not read");
    std::fclose(file);
    return bytes;
}

void readAndCopyBytes(benchmark::State & state, ListFile const & list) {
    for (auto _ : state) {
        std::vector<char> const bytes = bytesOf(list);
        std::vector<char> const copy = bytes;
        benchmark::DoNotOptimize(copy.data());
    }
}

void readAndCopyMeshes(benchmark::State & state, ListFile const & list) {
    Meshes const meshes = loaded(list);
    for (auto _ : state) {
        std::vector<char> const bytes = bytesOf(list);
        benchmark::DoNotOptimize(bytes.data());
        Meshes const copy = meshes;
        benchmark::DoNotOptimize(copy.data());
    }
}

} // namespace

int main(int argc, char ** argv) {
    ListFile const apart(meshesWith(333)), surfaces(meshesWith(2000));
    bench::AddPair(
        "50 meshes whose triangles share nothing, beside fread and a copy of the bytes", 1.5,
        [&](benchmark::State & state) { loadList(state, apart); },
        [&](benchmark::State & state) { readAndCopyBytes(state, apart); });
    bench::AddPair(
        "50 closed surfaces, beside fread and a copy of the meshes", 1.5,
        [&](benchmark::State & state) { loadList(state, surfaces); },
        [&](benchmark::State & state) { readAndCopyMeshes(state, surfaces); });
    bench::AddPair(
        "50 closed surfaces, beside fread and a copy of the bytes", 2.0,
        [&](benchmark::State & state) { loadList(state, surfaces); },
        [&](benchmark::State & state) { readAndCopyBytes(state, surfaces); });
    return bench::Run(argc, argv);
}
