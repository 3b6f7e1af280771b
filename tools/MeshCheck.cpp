#include "tools/MeshCheck.h"

#include "tools/ChunkList.h"
#include "tools/ChunkValues.h"
#include "tools/NumberText.h"
#include "tools/Quote.h"

#include "Cross/engine/core/Text.h"
#include "Cross/engine/core/Types.h"

#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <utility>

using Math::Vector3f;

namespace {

constexpr std::uint32_t c_volumeId = FourCC("BVOL");
constexpr std::uint32_t c_meshId = FourCC("BMSH");
constexpr std::uint32_t c_listId = FourCC("MSHL");
constexpr std::uint32_t c_listInfoId = FourCC("MSLI");
constexpr std::uint32_t c_meshInfoId = FourCC("MSHI");

constexpr float c_axisTolerance = 1e-3f;
constexpr float c_boundTolerance = 1e-5f; // of the size and the distance of a box

struct Kind {
    std::uint32_t id;
    Chunky::ChunkKind kind;
    std::uint32_t newestVersion;
};

constexpr Kind c_kinds[] = {
    {c_volumeId, Chunky::CK_DATA, 2},   {c_meshId, Chunky::CK_DATA, 1},     {c_listId, Chunky::CK_FOLDER, 1},
    {c_listInfoId, Chunky::CK_DATA, 1}, {c_meshInfoId, Chunky::CK_DATA, 1},
};

std::string idText(std::uint32_t id) { return Quote(ChunkIdText(id)); }

bool isFinite(Vector3f const & vector) {
    return std::isfinite(vector.x) && std::isfinite(vector.y) && std::isfinite(vector.z);
}

// Rows of length 1 at right angles.
bool isRotation(Math::Matrix3f const & matrix) {
    for (int i = 0; i < 3; ++i)
        for (int j = i; j < 3; ++j)
            if (!(std::fabs(Math::Dot(matrix.rows[i], matrix.rows[j]) - (i == j ? 1.0f : 0.0f)) <=
                  c_axisTolerance))
                return false;
    return true;
}

// Several things of a kind that are wrong in a like way.
struct Tally {
    void Count(std::size_t number) {
        if (count++ == 0)
            first = number;
    }

    std::size_t first = 0, count = 0;
};

class MeshCheck {
public:
    explicit MeshCheck(ByteStream & stream)
        : list(ListChunks(stream)), values(stream, list.platform.value_or(c_nativePlatform)) {}

    MeshReport Run() {
        for (std::size_t i = 0; i < list.entries.size(); ++i)
            checkEntry(i);
        if (report.meshes.empty() && report.volumes.empty() && report.findings.empty() && !hasList)
            find(list.fileSize, "the file has neither a mesh nor a bound volume");
        checkBounds();
        std::stable_sort(report.findings.begin(), report.findings.end(),
                         [](auto const & left, auto const & right) { return left.offset < right.offset; });
        return std::move(report);
    }

private:
    void checkEntry(std::size_t index) {
        ChunkEntry const & entry = list.entries[index];
        Chunky::ChunkInfo const & chunk = entry.chunk;
        if (!entry.damage.empty())
            return find(chunk.headerOffset, "%s", entry.damage.c_str());
        auto const kind = std::find_if(std::begin(c_kinds), std::end(c_kinds),
                                       [&](Kind const & known) { return known.id == chunk.id; });
        if (kind == std::end(c_kinds)) {
            ++report.otherChunks;
            return;
        }
        if (kind->kind != chunk.kind)
            return find(chunk.headerOffset, "%s is a %s, not a %s", idText(chunk.id).c_str(),
                        kindText(chunk.kind), kindText(kind->kind));
        if (chunk.version > kind->newestVersion)
            return find(chunk.headerOffset, "%s has version %u, newer than %u, the newest known",
                        idText(chunk.id).c_str(), chunk.version, kind->newestVersion);
        values.Enter(chunk.bodyOffset, entry.End());
        checkContent(index);
    }

    static char const * kindText(Chunky::ChunkKind kind) {
        return kind == Chunky::CK_FOLDER ? "folder" : "data chunk";
    }

    void checkContent(std::size_t index) {
        Chunky::ChunkInfo const & chunk = list.entries[index].chunk;
        switch (chunk.id) {
        case c_volumeId:
            return checkVolume(chunk.version);
        case c_meshId:
            return checkMesh();
        case c_listId:
            return checkList(index);
        case c_meshInfoId:
            return checkName();
        default:
            return;
        }
    }

    void checkVolume(std::uint32_t version) {
        bool hasSphere = false, isValid = false;
        float sphere[4];
        MathPrim::OBBf box = {};
        unsigned int const begin = values.Position();
        bool const isWhole = (version != 1 || values.Read(&hasSphere, 1)) && values.Read(&isValid, 1) &&
                             (!hasSphere || values.Read(sphere, 4)) &&
                             (!isValid || (values.Read(&box.center.x, 3) && values.Read(&box.extents.x, 3) &&
                                           values.Read(&box.rotation.rows[0].x, 9)));
        if (!isWhole)
            return find(begin, "the bound volume exceeds its chunk");
        checkEnd("the bound volume");
        BoundVolume volume;
        if (isValid) {
            if (!checkBox(box, values.Position() - static_cast<unsigned int>(sizeof(box))))
                return;
            volume.SetOBB(box);
        }
        report.volumes.push_back(volume);
    }

    bool checkBox(MathPrim::OBBf const & box, unsigned int offset) {
        std::size_t const before = report.findings.size();
        constexpr unsigned int c_extents = sizeof(Vector3f), c_rotation = 2 * sizeof(Vector3f);
        if (!isFinite(box.center))
            find(offset, "the centre of the box is not finite");
        if (!isFinite(box.extents) || std::min({box.extents.x, box.extents.y, box.extents.z}) < 0)
            find(offset + c_extents, "the extents of the box are not finite numbers from 0 up");
        if (!isRotation(box.rotation))
            find(offset + c_rotation, "the axes of the box are not of length 1 and at right angles");
        return report.findings.size() == before;
    }

    void checkMesh() {
        unsigned int const begin = values.Position();
        std::int32_t vertices = 0, indices = 0;
        MeshReport::Mesh read{std::exchange(nextName, ""), {}, 0};
        if (!values.Read(&vertices, 1) || !values.Read(&indices, 1))
            return find(begin, "the counts of the mesh exceed its chunk");
        if (vertices < 0 || indices < 0)
            return find(begin, "a count of the mesh is negative: %d vertices, %d indices", vertices, indices);
        std::uint64_t const size = std::uint64_t{sizeof(Vector3f)} * static_cast<std::uint32_t>(vertices) +
                                   std::uint64_t{sizeof(std::uint16_t)} * static_cast<std::uint32_t>(indices);
        if (size > values.Left())
            return find(begin, "%d vertices and %d indices take %llu bytes, but %u are left", vertices,
                        indices, static_cast<unsigned long long>(size), values.Left());
        if (indices % 3 != 0)
            find(begin + 4, "%d indices are not three per triangle", indices);
        readMesh(read, static_cast<std::uint32_t>(vertices), static_cast<std::uint32_t>(indices));
        checkEnd("the mesh");
        report.meshes.push_back(std::move(read));
    }

    // REQUIRES: the vertices and indices are there.
    void readMesh(MeshReport::Mesh & read, std::uint32_t vertices, std::uint32_t indices) {
        read.vertexOffset = values.Position();
        read.mesh.vertices.resize(vertices);
        values.Read(reinterpret_cast<float *>(read.mesh.vertices.data()), 3 * vertices);
        unsigned int const indexOffset = values.Position();
        read.mesh.indices.resize(indices);
        values.Read(read.mesh.indices.data(), indices);
        Tally notFinite, outOfRange;
        for (std::size_t i = 0; i < vertices; ++i)
            if (!isFinite(read.mesh.vertices[i]))
                notFinite.Count(i);
        for (std::size_t i = 0; i < indices; ++i)
            if (read.mesh.indices[i] >= vertices)
                outOfRange.Count(i);
        if (notFinite.count > 0)
            find(placeOf(read.vertexOffset, sizeof(Vector3f), notFinite), "vertex %zu is not finite%s",
                 notFinite.first, othersText(notFinite).c_str());
        if (outOfRange.count > 0)
            find(placeOf(indexOffset, sizeof(std::uint16_t), outOfRange),
                 "index %zu is %u, but there are %u vertices%s", outOfRange.first,
                 read.mesh.indices[outOfRange.first], vertices, othersText(outOfRange).c_str());
    }

    static unsigned int placeOf(unsigned int offset, std::size_t size, Tally const & tally) {
        return offset + static_cast<unsigned int>(size * tally.first);
    }

    static std::string othersText(Tally const & tally) {
        return tally.count == 1 ? "" : ", and " + std::to_string(tally.count - 1) + " more like it";
    }

    // The count, then a name and a mesh in turn.
    void checkList(std::size_t index) {
        hasList = true;
        ChunkEntry const & folder = list.entries[index];
        std::uint32_t children = 0;
        for (std::size_t i = index + 1; i < list.entries.size() && list.entries[i].depth > folder.depth;
             ++i) {
            ChunkEntry const & child = list.entries[i];
            if (child.depth > folder.depth + 1)
                continue;
            if (!child.damage.empty())
                return; // tells for itself
            std::uint32_t const expected = children == 0       ? c_listInfoId
                                           : children % 2 == 1 ? c_meshInfoId
                                                               : c_meshId;
            if (child.chunk.id != expected)
                return find(child.chunk.headerOffset, "%s stands in the list where %s is expected",
                            idText(child.chunk.id).c_str(), idText(expected).c_str());
            ++children;
        }
        if (children == 0)
            find(folder.End(), "the list ends in front of its MSLI");
        else
            checkCount(list.entries[index + 1], children - 1, folder.End());
    }

    void checkCount(ChunkEntry const & info, std::uint32_t chunks, unsigned int end) {
        if (chunks % 2 == 1)
            find(end, "the list ends in front of a BMSH");
        values.Enter(info.chunk.bodyOffset, info.End());
        std::int32_t count = 0;
        if (!values.Read(&count, 1))
            return find(info.chunk.bodyOffset, "the number of meshes exceeds its chunk");
        if (count < 0 || static_cast<std::uint32_t>(count) != chunks / 2)
            find(info.chunk.bodyOffset, "the list tells of %d meshes, but holds %u", count, chunks / 2);
        checkEnd("the number of meshes");
    }

    void checkName() {
        if (values.ReadText(nextName))
            checkEnd("the name of the mesh");
        else
            find(values.Position(), "the name of the mesh exceeds its chunk");
    }

    void checkEnd(char const * what) {
        if (values.Left() > 0)
            find(values.Position(), "%s behind %s",
                 CountText(values.Left(), "byte follows", "bytes follow").c_str(), what);
    }

    // Meshes that have one volume in their file lie in it.
    void checkBounds() {
        if (report.volumes.size() != 1 || !report.volumes.front().IsValid())
            return;
        BoundVolume const wider = widened(report.volumes.front());
        for (MeshReport::Mesh const & mesh : report.meshes) {
            Tally outside;
            for (std::size_t i = 0; i < mesh.mesh.vertices.size(); ++i)
                if (!wider.Intersect(mesh.mesh.vertices[i]))
                    outside.Count(i);
            if (outside.count > 0)
                find(placeOf(mesh.vertexOffset, sizeof(Vector3f), outside),
                     "vertex %zu lies outside of the bound volume%s", outside.first,
                     othersText(outside).c_str());
        }
    }

    // For what rounding took off.
    static BoundVolume widened(BoundVolume const & volume) {
        MathPrim::OBBf box = volume.GetOBB();
        float const size = volume.GetSphere().radius + std::sqrt(Math::Dot(box.center, box.center));
        float const slack = c_boundTolerance * size;
        box.extents = box.extents + Vector3f{slack, slack, slack};
        BoundVolume wider;
        wider.SetOBB(box);
        return wider;
    }

    void find(unsigned int offset, char const * format, ...) CROSS_PRINTF_FORMAT(3, 4) {
        std::string reason;
        std::va_list arguments;
        va_start(arguments, format);
        text::VPrintf(reason, format, arguments);
        va_end(arguments);
        report.findings.push_back({offset, reason});
    }

    ChunkList const list;
    ChunkValues values;
    MeshReport report;
    std::string nextName;
    bool hasList = false;
};

} // namespace

std::string MeshReport::Summary() const {
    std::size_t vertices = 0, triangles = 0;
    for (Mesh const & mesh : meshes) {
        vertices += mesh.mesh.vertices.size();
        triangles += mesh.mesh.indices.size() / 3;
    }
    return CountText(meshes.size(), "mesh", "meshes") + ", " + CountText(vertices, "vertex", "vertices") +
           ", " + CountText(triangles, "triangle", "triangles") + ", " +
           CountText(volumes.size(), "bound volume", "bound volumes") +
           (otherChunks > 0 ? ", " + CountText(otherChunks, "chunk", "chunks") + " of other kinds" : "");
}

std::vector<std::string> MeshReport::Lines(std::string const & file) const {
    std::vector<std::string> lines;
    for (Finding const & finding : findings)
        lines.push_back(file + ": offset " + std::to_string(finding.offset) + ": " + finding.reason);
    return lines;
}

MeshReport CheckMeshes(ByteStream & stream) { return MeshCheck(stream).Run(); }
