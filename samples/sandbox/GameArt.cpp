#include "samples/sandbox/GameArt.h"

#include "Cross/Util/BasicMeshIO.h"
#include "Cross/Util/BoundVolumeIO.h"
#include "Cross/Util/TGAIO.h"
#include "Cross/engine/diagnostics/Trace.h"
#include "Cross/engine/filesystem/FilePath.h"
#include "samples/sandbox/Files.h"
#include "tools/Verbs.h"

#include <cstdint>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <vector>

namespace {

// A part behind what is there; indices beyond 65,535 vertices would not fit.
void append(MathPrim::Mesh & whole, MathPrim::Mesh const & part) {
    std::size_t const first = whole.vertices.size();
    if (first + part.vertices.size() > 65'536)
        throw std::length_error("too many vertices for one mesh");
    whole.vertices.insert(whole.vertices.end(), part.vertices.begin(), part.vertices.end());
    for (std::uint16_t const index : part.indices)
        whole.indices.push_back(static_cast<std::uint16_t>(first + index));
}

// As an artist does it: with the tool.
bool importModel(std::string & error) {
    std::string const from = RealPath(std::string("DATA:") + c_tankName + ".obj");
    std::string const to = RealPath(std::string("GENERIC:") + c_tankName + ".mesh");
    char const * const arguments[] = {"crosstool", "mesh", "import", from.c_str(), to.c_str()};
    std::ostringstream out, err;
    bool const good = RunCrosstool(static_cast<int>(std::size(arguments)), arguments, out, err) == exitGood;
    error = err.str();
    return good;
}

} // namespace

bool BuildArt(std::string & error) {
    for (char const * const name : c_skinNames) {
        std::string const file = std::string(name) + ".tga";
        std::string const picture = ReadWholeFile(("DATA:" + file).c_str());
        if (picture.empty() || !WriteWholeFile(("GENERIC:" + file).c_str(), picture)) {
            error = file + " cannot be copied";
            return false;
        }
    }
    return importModel(error);
}

std::unique_ptr<Skin> ReadSkin(std::string const & path) {
    Texture::Image image;
    auto skin = std::make_unique<Skin>();
    if (TGAIO::Load(path.c_str(), image))
        skin->texture = Texture::Of(image);
    if (skin->texture)
        return skin;
    dbTimeStampedTracefAux("SANDBOX -- no picture: %s", path.c_str());
    return nullptr;
}

std::unique_ptr<Model> ReadModel(std::string const & path) {
    ByteStreamProxy const stream = FilePath::OpenStream(path.c_str(), c_streamRead);
    if (!stream) {
        dbTimeStampedTracefAux("SANDBOX -- no model: %s", path.c_str());
        return nullptr;
    }
    try {
        auto model = std::make_unique<Model>();
        Chunky file(stream.Get(), 0);
        BoundVolumeIO::Load(file, model->bounds);
        std::vector<BasicMeshIO::MeshInfo> parts;
        BasicMeshIO::LoadList(file, parts);
        for (BasicMeshIO::MeshInfo const & part : parts)
            append(model->mesh, part.mesh);
        return model;
    } catch (std::exception const & error) {
        dbTimeStampedTracefAux("SANDBOX -- no model: %s: %s", path.c_str(), error.what());
        return nullptr;
    }
}
