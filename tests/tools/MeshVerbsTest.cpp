#include "Cross/Util/BoundVolumeIO.h"
#include "tests/support/ChunkFiles.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/tools/ToolRun.h"
#include "tools/MeshCheck.h"
#include "tools/ObjSource.h"
#include "tools/PolygonCut.h"

#include <gtest/gtest.h>

#include <cmath>

using Math::Vector3f;

namespace {

// What stands in a file of mesh import, read by the library; throws when it does not load.
struct Imported {
    explicit Imported(std::string const & bytes) {
        FilledStream stream(bytes);
        Chunky file(stream, 0);
        BoundVolumeIO::Load(file, volume);
        BasicMeshIO::LoadList(file, meshes);
    }

    BoundVolume volume;
    std::vector<BasicMeshIO::MeshInfo> meshes;
};

bool loads(std::string const & bytes) {
    try {
        Imported const read(bytes);
        return true;
    } catch (std::exception const &) {
        return false;
    }
}

MeshReport check(std::string const & bytes) {
    FilledStream stream(bytes);
    return CheckMeshes(stream);
}

// The findings as "offset: reason" lines.
std::string findings(std::string const & bytes) {
    std::string text;
    for (MeshReport::Finding const & finding : check(bytes).findings)
        text += std::to_string(finding.offset) + ": " + finding.reason + "\n";
    return text;
}

// A volume and a list of one triangle. The box begins at 37, the list at 97, the body of the mesh at 230.
std::string goodFile() {
    MathPrim::Mesh const mesh{{{0, 0, 0}, {1, 0, 0}, {0, 2, 0}}, {0, 1, 2}, {}};
    BoundVolume volume;
    volume.Build(mesh.vertices.data(), 3);
    return ChunkFile(1, [&](Chunky & file) {
        BoundVolumeIO::Save(file, volume);
        BasicMeshIO::SaveList(file, {{mesh, "tri"}});
    });
}

// The corners of a star of `count` corners around a middle, every second one near it, in the plane of two
// axes.
std::vector<Vector3f> star(unsigned int count, float middle, int first, int second) {
    std::vector<Vector3f> corners;
    for (unsigned int i = 0; i < count; ++i) {
        double const angle = 2 * M_PI * i / count, radius = i % 2 == 0 ? 1 : 0.3;
        float values[3] = {middle, middle, middle};
        values[first] += static_cast<float>(radius * std::cos(angle));
        values[second] += static_cast<float>(radius * std::sin(angle));
        corners.push_back({values[0], values[1], values[2]});
    }
    return corners;
}

Vector3f cross(Vector3f const & a, Vector3f const & b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

} // namespace

TEST(MeshVerbs, ImportsObjectsAndTheirBounds) {
    TemporaryFolder const folder;
    std::string const obj = folder / "a.obj", mesh = folder / "a.msh";
    folder.WriteFile("a.obj",
                     "# two objects\r\nmtllib none.mtl\r\no floor\r\nv 0 0 0\r\nv 2 0 0\r\nv 2 0 2\r\n"
                     "v 0 0 2.5 1\r\nvn 0 1 0\r\nusemtl grey\r\nf 1//1 2//1 3//1 4//1\r\n"
                     "o empty\r\ng roof left\r\nv +0.5 3e0 0\r\nf -1/1/1 1/1 2\r\n");
    ToolResult const result = RunTool({"mesh", "import", obj, mesh});
    EXPECT_EQ(result.code, 0) << result.err;
    EXPECT_EQ(result.out, "good: " + mesh + ": 2 meshes, 7 vertices, 3 triangles, 1 bound volume\n");
    Imported const read(folder.ReadFile("a.msh"));
    EXPECT_EQ(read.volume.GetOBB().center, (Vector3f{1, 1.5f, 1.25f}));
    EXPECT_EQ(read.volume.GetOBB().extents, (Vector3f{1, 1.5f, 1.25f}));
    ASSERT_EQ(read.meshes.size(), 2u);
    EXPECT_EQ(read.meshes[0].name, "floor");
    EXPECT_EQ(read.meshes[0].mesh.vertices.size(), 4u);
    EXPECT_EQ(read.meshes[0].mesh.indices.size(), 6u);
    EXPECT_EQ(read.meshes[1].name, "roof left");
    EXPECT_EQ(read.meshes[1].mesh.vertices, (std::vector<Vector3f>{{0.5f, 3, 0}, {0, 0, 0}, {2, 0, 0}}));
    EXPECT_EQ(read.meshes[1].mesh.indices, (std::vector<std::uint16_t>{0, 1, 2}));
    EXPECT_EQ(RunTool({"mesh", "info", mesh}).out,
              "good: " + mesh +
                  ": 2 meshes, 7 vertices, 3 triangles, 1 bound volume\n"
                  "bound volume: centre 1 1.5 1.25, extents 1 1.5 1.25\n"
                  "    axis 1 0 0\n    axis 0 1 0\n    axis 0 0 1\n"
                  "mesh \"floor\": 4 vertices, 2 triangles, from 0 0 0 to 2 0 2.5\n"
                  "mesh \"roof left\": 3 vertices, 1 triangle, from 0 0 0 to 2 3 0\n");
    ToolResult const verified = RunTool({"mesh", "verify", mesh, "--json"});
    EXPECT_EQ(verified.code, 0);
    EXPECT_EQ(verified.out, RunTool({"mesh", "info", mesh, "--json"}).out);
    EXPECT_EQ(verified.out,
              "{\"verdict\": \"good\", \"file\": \"" + mesh +
                  "\", \"findings\": [], \"volumes\": [{\"valid\": true, \"centre\": [1, 1.5, 1.25], "
                  "\"extents\": [1, 1.5, 1.25], \"axes\": [[1, 0, 0], [0, 1, 0], [0, 0, 1]]}], \"meshes\": "
                  "[{\"name\": \"floor\", \"vertices\": 4, \"triangles\": 2, \"coinciding\": 0}, "
                  "{\"name\": \"roof left\", \"vertices\": 3, \"triangles\": 1, \"coinciding\": 0}], "
                  "\"otherChunks\": 0}\n");
}

TEST(MeshVerbs, ImportTellsFileAndLine) {
    std::string const three = "v 0 0 0\nv 1 0 0\nv 0 1 0\n";
    std::string corners, faults;
    for (int i = 0; i < 257; ++i) {
        corners += " 1";
        faults += "v\n";
    }
    std::pair<std::string, std::string> const c_cases[] = {
        {three + "v 1 x 3\n", ":4: \"x\" is no coordinate\n"},
        {three + "v 1 2\n", ":4: \"\" is no coordinate\n"},
        {three + "v -1e18 1e19 0\n", ":4: \"1e19\" is no coordinate\n"},
        {three + "v 0 nan 0\n", ":4: \"nan\" is no coordinate\n"},
        // every end of line counts
        {"v 0 0 0\rv 1 0 0\r\n\nv 0 1 0\nf 1 2 4\n",
         ":5: the vertex 4 is none of the 3 in front of the face\n"},
        {three + "f 1 2 -4\n", ":4: the vertex -4 is none of the 3 in front of the face\n"},
        {three + "f 1 2 0\n", ":4: the vertex 0 is none of the 3 in front of the face\n"},
        {three + "f 1 2 3x\n", ":4: \"3x\" is no corner of a face\n"},
        {three + "f 1 2 3/1/1/1\n", ":4: \"3/1/1/1\" is no corner of a face\n"},
        {three + "f 1 2\nf\n", ":4: a face has 3 to 256 corners, not 2\n"},
        {three + "f" + corners + "\n", ":4: a face has 3 to 256 corners, not 257\n"},
        {three + "f 1 2 3\nface 1 2 3\n", ":5: the keyword \"face\" is not known\n"},
        {three + "v 1 1 0\nf 1 4 2 3\n", ":5: the face crosses itself or has no area\n"},
        {three, ": there are no faces in it\n"},
        {std::string("\xFF\0\x7F", 3), ":1: the keyword \"\\xFF\\u0000\\u007F\" is not known\n"},
    };
    TemporaryFolder const folder;
    std::string const obj = folder / "a.obj", mesh = folder / "a.msh";
    folder.WriteFile("a.msh", "old");
    for (auto const & [text, reason] : c_cases) {
        folder.WriteFile("a.obj", text);
        ToolResult const result = RunTool({"mesh", "import", obj, mesh});
        EXPECT_EQ(result.code, 2);
        EXPECT_EQ(result.err.substr(0, result.err.find('\n') + 1), "failed: " + obj + reason);
    }
    EXPECT_EQ(folder.ReadFile("a.msh"), "old");
    EXPECT_EQ(RunTool({"mesh", "import", obj, obj}).code, 2);
    Lines errors;
    ReadObj("a", faults, errors);
    EXPECT_EQ(errors.size(), 20u);
    folder.WriteFile("a.obj", three + "f 1 2 3\n");
    EXPECT_EQ(RunTool({"mesh", "import", obj, folder / "no/a.msh"}).code, 2);
}

TEST(MeshVerbs, MeshesHaveNoMoreVerticesThanAnIndexTellsApart) {
    std::string text;
    for (int i = 0; i < 65538; ++i)
        text += "v " + std::to_string(i) + " 0 1\n";
    std::string const before = text;
    for (int i = 1; i + 2 <= 65536; i += 2)
        text += "f " + std::to_string(i) + ' ' + std::to_string(i + 1) + ' ' + std::to_string(i + 2) + '\n';
    Lines errors;
    auto const meshes = ReadObj("a", text + "f 65536 1 2\n", errors);
    ASSERT_EQ(errors, Lines());
    EXPECT_EQ(meshes.front().mesh.vertices.size(), 65536u);
    EXPECT_TRUE(ReadObj("a", text + "f 65536 1 2\nf 1 65537 65538\nf 1 2 65537\n", errors).empty());
    EXPECT_EQ(errors, Lines{"a:98307: the mesh \"\" has more than 65536 vertices"});
}

TEST(PolygonCut, TrianglesFillPolygonsOfAnyShape) {
    constexpr int c_planes[][2] = {{0, 1}, {1, 0}, {1, 2}, {2, 1}, {2, 0}, {0, 2}};
    for (auto const & [first, second] : c_planes)
        for (float const middle : {-10.0f, 0.0f, 10.0f})
            for (unsigned int const count : {4u, 5u, 8u, 13u}) {
                std::vector<Vector3f> const corners = star(count, middle, first, second);
                auto const triangles = CutPolygon(corners);
                ASSERT_EQ(triangles.size(), count - 2);
                Vector3f whole = {}, parts = {};
                for (std::size_t i = 1; i + 1 < corners.size(); ++i)
                    whole = whole + cross(corners[i] - corners[0], corners[i + 1] - corners[0]);
                for (auto const & [a, b, c] : triangles) {
                    Vector3f const area = cross(corners[b] - corners[a], corners[c] - corners[a]);
                    EXPECT_GT(Math::Dot(area, whole), 0.0f) << "a triangle that looks to the other side";
                    parts = parts + area;
                }
                EXPECT_NEAR(std::sqrt(Math::Dot(parts, parts)), std::sqrt(Math::Dot(whole, whole)), 1e-4);
            }
    // a corner on a straight line is no reason to give up
    EXPECT_EQ(CutPolygon({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {2, 2, 0}, {0, 2, 0}}).size(), 3u);
}

TEST(MeshCheck, EachThingWrongHasItsPlace) {
    std::tuple<std::size_t, char const *, char const *> const c_cases[] = {
        // place in the good file, what stands there instead, what is found
        {0, "58", ""},
        {36, "00", "37: 60 bytes follow behind the bound volume\n"},
        {37, "0000C07F", "37: the centre of the box is not finite\n"},
        {49, "000080BF", "49: the extents of the box are not finite numbers from 0 up\n"},
        {49, "0000C07F", "49: the extents of the box are not finite numbers from 0 up\n"},
        {61, "00000000", "61: the axes of the box are not of length 1 and at right angles\n"},
        {24, "03", "16: \"BVOL\" has version 3, newer than 2, the newest known\n"},
        {97, "02", "97: \"MSHL\" is a data chunk, not a folder\n"},
        {130, "01",
         "130: \"MSLI\" is a folder, not a data chunk\n162: the 4 bytes left are too few for a chunk\n"},
        {162, "02", "162: the list tells of 2 meshes, but holds 1\n"},
        {194, "04", "194: the name of the mesh exceeds its chunk\n"},
        {194, "02", "200: 1 byte follows behind the name of the mesh\n"},
        {134, "4A", "130: \"MSLJ\" stands in the list where \"MSLI\" is expected\n"},
        {230, "FFFFFFFF", "230: a count of the mesh is negative: -1 vertices, 3 indices\n"},
        {230, "FFFFFF00", "230: 16777215 vertices and 3 indices take 201326586 bytes, but 42 are left\n"},
        {234, "02", "234: 2 indices are not three per triangle\n278: 2 bytes follow behind the mesh\n"},
        {242, "0000C07F", "238: vertex 0 is not finite\n"},
        {246, "0000C07F", "238: vertex 0 is not finite\n"},
        {250, "00004040", "250: vertex 1 lies outside of the bound volume\n"},
        {274, "03000300", "274: index 0 is 3, but there are 3 vertices, and 1 more like it\n"},
    };
    std::string const good = goodFile();
    for (auto const & [offset, digits, expected] : c_cases) {
        std::string const bytes = FromHex(digits);
        EXPECT_EQ(findings(std::string(good).replace(offset, bytes.size(), bytes)), expected) << offset;
    }
    EXPECT_EQ(findings(good.substr(0, 16)), "16: the file has neither a mesh nor a bound volume\n");
}

TEST(MeshCheck, ContentThatEndsEarlyIsFound) {
    std::tuple<std::uint32_t, std::uint32_t, std::size_t, char const *> const c_cases[] = {
        {FourCC("BVOL"), 1, 78, "36: the bound volume exceeds its chunk\n"},
        {FourCC("BVOL"), 2, 61, "36: the bound volume exceeds its chunk\n"},
        {FourCC("BMSH"), 1, 8, "36: the counts of the mesh exceed its chunk\n"},
    };
    for (auto const & [id, version, whole, expected] : c_cases)
        for (std::string bytes; bytes.size() < whole; bytes += '\1') {
            auto const write = [&, id = id, version = version](Chunky & file) {
                WriteData(file, id, version, bytes);
            };
            EXPECT_EQ(findings(ChunkFile(1, write)), expected) << bytes.size();
        }
}

TEST(MeshCheck, ListsHoldWhatTheyTell) {
    std::string const none(4, '\0');

    std::pair<std::vector<std::pair<std::uint32_t, std::string>>, char const *> const c_cases[] = {
        // what stands in the list, what is found
        {{}, "36: the list ends in front of its MSLI\n"},
        {{{FourCC("MSLI"), "no"}}, "56: the number of meshes exceeds its chunk\n"},
        {{{FourCC("MSLI"), none}, {FourCC("MSHI"), none}}, "84: the list ends in front of a BMSH\n"},
        {{{FourCC("MSLI"), none}}, ""},
    };
    std::string summary;
    for (auto const & [chunks, expected] : c_cases) {
        std::string const bytes = ChunkFile(1, [&chunks = chunks](Chunky & file) {
            file.WriteFolderChunkName(FourCC("MSHL"), 1, nullptr);
            for (auto const & [id, content] : chunks)
                WriteData(file, id, 1, content);
            file.PopChunk();
            WriteData(file, FourCC("ELSE"), 1, "");
        });
        EXPECT_EQ(findings(bytes), expected);
        summary = check(bytes).Summary();
    }
    EXPECT_EQ(summary, "0 meshes, 0 vertices, 0 triangles, 0 bound volumes, 1 chunk of other kinds");
}

// Whatever the library refuses is found, whichever byte is damaged, and what is good is loaded.
TEST(MeshCheck, AgreesWithLoading) {
    std::string const good = goodFile();
    EXPECT_EQ(findings(good), "");
    EXPECT_TRUE(loads(good));
    for (std::size_t i = 0; i < good.size(); ++i) {
        bool const isVolumeAlone = i == 97;
        EXPECT_EQ(findings(good.substr(0, i)).empty(), isVolumeAlone) << "cut at " << i;
        for (char const mask : {'\x01', '\x02', '\x80', '\xFF'}) {
            std::string damaged = good;
            damaged[i] = static_cast<char>(damaged[i] ^ mask);
            // A chunk with another id may be a good one of another kind.
            MeshReport const report = check(damaged);
            EXPECT_TRUE(loads(damaged) || !report.findings.empty() || report.otherChunks > 0) << "byte " << i;
        }
    }
}
