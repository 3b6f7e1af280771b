#include "Cross/Util/BoundVolumeIO.h"

#include "Cross/engine/core/Types.h"

namespace {

constexpr std::uint32_t c_chunkId = FourCC("BVOL");
constexpr std::uint32_t c_sphereVersion = 1;
constexpr std::uint32_t c_chunkVersion = 2;

MathPrim::OBBf readBox(Chunky & file) {
    MathPrim::OBBf box;
    file.Read(&box.center.x, 3);
    file.Read(&box.extents.x, 3);
    file.Read(&box.rotation.rows[0].x, 9);
    return box;
}

void skipSphere(Chunky & file) {
    MathPrim::Spheref sphere;
    file.Read(&sphere.center.x, 3);
    file.Read(sphere.radius);
}

} // namespace

void BoundVolumeIO::Save(Chunky & file, BoundVolume const & volume) {
    file.WriteDataChunk(c_chunkId, c_chunkVersion, -1);
    file.Write(volume.IsValid());
    if (volume.IsValid()) {
        MathPrim::OBBf const & box = volume.GetOBB();
        file.Write(&box.center.x, 3);
        file.Write(&box.extents.x, 3);
        file.Write(&box.rotation.rows[0].x, 9);
    }
    file.PopChunk();
}

void BoundVolumeIO::Load(Chunky & file, BoundVolume & volume) {
    std::uint32_t const version = file.ReadDataChunk(c_chunkId, c_chunkVersion).GetVersion();
    bool hasSphere = false, isValid = false;
    if (version == c_sphereVersion)
        file.Read(hasSphere);
    file.Read(isValid);
    if (hasSphere)
        skipSphere(file);
    if (isValid)
        volume.SetOBB(readBox(file));
    file.PopChunk();
}
