#include "Cross/Util/BasicMeshIO.h"
#include "tests/support/ChunkFiles.h"
#include "tests/support/ReasonOf.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using BasicMeshIO::MeshInfo;
using MathPrim::Mesh;
using Meshes = std::vector<MeshInfo>;

constexpr std::uint32_t c_nextId = FourCC("NEXT");

// Two triangles of a square; vertices and indices only.
Mesh square() { return {{{1, 1, 0}, {3, 1, 0}, {3, 4, 0}, {1, 4, 5}}, {0, 1, 2, 2, 3, 0}, {}}; }

std::vector<MathPrim::MeshTriangle> const c_squareTriangles = {{{1, 1, 0}, {2, 0, 0}, {2, 3, 0}},
                                                               {{3, 4, 0}, {-2, 0, 5}, {-2, -3, 0}}};

void expectMesh(Mesh const & mesh, Mesh const & want, std::vector<MathPrim::MeshTriangle> const & triangles) {
    EXPECT_EQ(mesh.vertices, want.vertices);
    EXPECT_EQ(mesh.indices, want.indices);
    EXPECT_EQ(mesh.triangles, triangles);
}

// A file with a mesh chunk of this body and an empty chunk behind it.
std::string fileOf(std::string const & body) {
    return ChunkFile(0, [&](Chunky & file) {
        WriteData(file, FourCC("BMSH"), 1, body);
        WriteData(file, c_nextId, 1, "");
    });
}

std::string listBytes(Meshes const & meshes, PlatformType platform) {
    return ChunkFile(platform, [&](Chunky & file) { BasicMeshIO::SaveList(file, meshes); });
}

constexpr char const * c_loads = "no exception";

// Loads a list of some bytes; the reason why it could not, or c_loads.
std::string load(std::string const & bytes, Meshes & meshes) {
    FilledStream stream(bytes);
    Chunky file(stream, 0);
    std::string const reason = ReasonOf([&] { BasicMeshIO::LoadList(file, meshes); });
    Chunky::ChunkInfo next;
    EXPECT_TRUE(reason != c_loads || !file.PeekChunk(next)) << "the file stands behind the list";
    return reason;
}

// The example of docs/formats.md.
char const * const c_exampleBytes = "5843484B 0D0A1A0A 01000000 01000000"
                                    "01000000 4C48534D 01000000 96000000 0D000000 42617369634D6573684C697374"
                                    "02000000 494C534D 01000000 04000000 0C000000 4D6573684C697374496E666F"
                                    "01000000"
                                    "02000000 4948534D 01000000 07000000 08000000 4D657368496E666F"
                                    "03000000 747269"
                                    "02000000 48534D42 01000000 32000000 09000000 42617369634D657368"
                                    "03000000 03000000"
                                    "00000000 00000000 00000000 0000803F 00000000 00000000"
                                    "00000000 00000040 00000000"
                                    "0000 0100 0200";

} // namespace

TEST(BasicMeshIO, ExactBytesOfTheDocumentation) {
    Meshes const example = {{{{{0, 0, 0}, {1, 0, 0}, {0, 2, 0}}, {0, 1, 2}, {}}, "tri"}};
    EXPECT_EQ(listBytes(example, 1), FromHex(c_exampleBytes));
    EXPECT_EQ(listBytes({}, 1), FromHex("5843484B 0D0A1A0A 01000000 01000000"
                                        "01000000 4C48534D 01000000 24000000 0D000000"
                                        "42617369634D6573684C697374"
                                        "02000000 494C534D 01000000 04000000 0C000000"
                                        "4D6573684C697374496E666F 00000000"));
}

TEST(BasicMeshIO, ListsAreAppended) {
    Meshes const saved = {{square(), "square"}, {{}, ""}, {square(), "again"}};
    for (PlatformType const platform : {1u, 2u}) {
        Meshes meshes = {{{}, "before"}};
        EXPECT_EQ(load(listBytes({}, platform), meshes), c_loads);
        ASSERT_EQ(meshes.size(), 1u);
        EXPECT_EQ(load(listBytes(saved, platform), meshes), c_loads);
        ASSERT_EQ(meshes.size(), 4u);
        EXPECT_EQ(meshes[0].name + "," + meshes[1].name + "," + meshes[2].name + "," + meshes[3].name,
                  "before,square,,again");
        expectMesh(meshes[1].mesh, square(), c_squareTriangles);
        expectMesh(meshes[2].mesh, {}, {});
        expectMesh(meshes[3].mesh, square(), c_squareTriangles);
    }
}

TEST(BasicMeshIO, TrianglesAreAddedToThoseThatAreThere) {
    FilledStream stream;
    Chunky writer(stream, 0);
    BasicMeshIO::Save(writer, square());
    stream->SetPos(0);
    Chunky reader(stream, 0);
    Mesh mesh = {{{9, 9, 9}}, {0, 0, 0}, {{{9, 9, 9}, {}, {}}}};
    BasicMeshIO::Load(reader, mesh);
    expectMesh(mesh, square(), {{{9, 9, 9}, {}, {}}, c_squareTriangles[0], c_squareTriangles[1]});
}

TEST(BasicMeshIO, LyingChunksAreLeftAndTold) {
    std::string const vertex = "0000803F 00000040 00004040";

    struct {
        std::string body;
        char const * says;
    } const c_cases[] = {
        {"00000000 00000000", c_loads},
        {"01000000 03000000" + vertex + "0000 0000 0000", c_loads},
        // more than is read is no harm
        {"01000000 00000000" + vertex + "FF", c_loads},
        // counts that are cut, negative, or more than the chunk holds, also where their size wraps in 32 bits
        {"01000000 030000", "it is too short for the counts of a mesh"},
        {"", "it is too short"},
        {"FFFFFFFF 00000000" + vertex, "a count of the mesh is negative"},
        {"00000000 00000080", "a count of the mesh is negative"},
        {"01000000 03000000" + vertex + "0000 0000 00", "the mesh exceeds the chunk"},
        {"02000000 00000000" + vertex, "exceeds"},
        {"00000000 03000000 0000", "exceeds"},
        {"56555515 00000000" + vertex, "exceeds"},
        {"FFFFFF7F FFFFFF7F" + vertex, "exceeds"},
        // indices that are not in threes, and those of no vertex
        {"01000000 02000000" + vertex + "0000 0000", "the indices of the mesh do not come in threes"},
        {"01000000 03000000" + vertex + "0000 0100 0000", "an index of the mesh is that of no vertex"},
        {"00000000 03000000 0000 0000 0000", "no vertex"},
        {"01000000 03000000" + vertex + "0000 0000 FFFF", "no vertex"},
    };

    for (auto const & [body, says] : c_cases) {
        FilledStream stream(fileOf(FromHex(body)));
        Chunky file(stream, 0);
        Mesh mesh = square();
        std::string const reason = ReasonOf([&] { BasicMeshIO::Load(file, mesh); });
        EXPECT_NE(reason.find(says), std::string::npos) << body << ": " << reason;
        if (reason != c_loads) {
            EXPECT_NE(reason.find("chunk 'BMSH' at offset 16"), std::string::npos) << reason;
            expectMesh(mesh, square(), {});
        }
        EXPECT_NO_THROW(file.ReadDataChunk(c_nextId, 1)) << "the file stands behind the chunk";
    }
}

TEST(BasicMeshIO, ListsThatAreCutOrLie) {
    std::string const whole = listBytes({{square(), "one"}, {square(), "two"}}, 1);
    Meshes meshes;
    for (std::size_t size = 0; size < whole.size(); ++size)
        EXPECT_NE(load(whole.substr(0, size), meshes), c_loads) << size;
    EXPECT_EQ(meshes.size(), 0u) << "the folder's size tells of the cut";

    std::size_t const count = 16 + 20 + 13 + 20 + 12;

    std::tuple<char const *, char const *, std::size_t> const c_cases[] = {
        {"01000000", c_loads, 1},
        {"02000000", c_loads, 2},
        {"03000000", "'MSHI' is expected, but nothing is left", 2},
        {"FFFFFF7F", "nothing is left", 2},
        {"FFFFFFFF", "the number of meshes is negative", 0},
    };
    for (auto const & [told, says, loaded] : c_cases) {
        meshes.clear();
        std::string const reason = load(std::string(whole).replace(count, 4, FromHex(told)), meshes);
        EXPECT_NE(reason.find(says), std::string::npos) << reason;
        EXPECT_EQ(meshes.size(), loaded) << told;
    }

    std::string const cut = ChunkFile(0, [](Chunky & file) {
        file.WriteFolderChunkName(FourCC("MSHL"), 1, nullptr);
        WriteData(file, FourCC("MSLI"), 1, "abc");
        file.PopChunk();
    });
    EXPECT_NE(load(cut, meshes).find("too short for the number of meshes"), std::string::npos);
}
