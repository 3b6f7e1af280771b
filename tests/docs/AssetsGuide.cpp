#include "Cross/Util/BasicMeshIO.h"
#include "Cross/Util/BoundVolumeIO.h"
#include "Cross/Util/TGAIO.h"
#include "Cross/engine/filesystem/FilePath.h"
#include "tests/support/AliasedFolder.h"

#include <gtest/gtest.h>

using Math::Vector3f;

TEST(AssetsGuide, Picture) {
    AliasedFolder const folder("ART");
    unsigned char const pixels[] = {1, 2, 3, 4, 5, 6, 7, 8};
    TGAIO::Save("ART:tank.tga", 2, 1, 32, sizeof(pixels), pixels);
    // [picture]
    Array2D<MathPrim::Colour, Array2DNewAllocator<MathPrim::Colour>> image;
    if (!TGAIO::Load("ART:tank.tga", image)) // tells why in the trace
        image.Resize(1, 1);
    MathPrim::Colour & bottomLeft = image.data[0];
    bottomLeft.alpha = 128;
    bool const saved = TGAIO::Save("ART:tank.tga", image.width, image.height, 32,
                                   image.width * image.height * 4, image.data);
    // [picture]
    EXPECT_TRUE(saved);
    EXPECT_EQ(folder.ReadFile("tank.tga").substr(18), std::string("\1\2\3\x80\5\6\7\10"));
}

TEST(AssetsGuide, Bounds) {
    // [bounds]
    Vector3f const corners[] = {{0, 0, 0}, {4, 0, 3}, {2, 2.5f, 1.5f}};
    BoundVolume hut;
    hut.Build(corners, 3); // the box around them, along the axes of the world

    BoundVolume village = hut;
    hut.Transform(Math::Matrix43f{{{0, 0, -1}, {0, 1, 0}, {1, 0, 0}, {10, 0, 0}}}); // a quarter turn, a step
    village += hut;

    Vector3f hit;
    bool const isHit = village.Intersect(MathPrim::Rayf{{-5, 1, 1}, {1, 0, 0}}, hit); // enters at 0 1 1
    // [bounds]
    EXPECT_TRUE(isHit);
    EXPECT_EQ(hit, (Vector3f{0, 1, 1}));
    EXPECT_EQ(village.GetOBB().center, (Vector3f{6.5f, 1.25f, -0.5f}));
}

TEST(AssetsGuide, Meshes) {
    AliasedFolder const folder("ART");
    {
        // [mesh-save]
        MathPrim::Mesh roof;
        roof.vertices = {{0, 0, 0}, {4, 0, 0}, {2, 2.5f, 1.5f}};
        roof.indices = {0, 1, 2}; // three per triangle
        BoundVolume bounds;
        bounds.Build(roof.vertices.data(), 3);

        ByteStreamProxy const stream = FilePath::OpenStream("ART:hut.msh", c_streamWrite);
        Chunky file(stream.Get(), 1); // throws when the file did not open, as every failure does
        BoundVolumeIO::Save(file, bounds);
        BasicMeshIO::SaveList(file, {{roof, "roof"}});
        bool const saved = stream->Flush(); // until here the old file stands
        // [mesh-save]
        EXPECT_TRUE(saved);
    }
    // [mesh-load]
    ByteStreamProxy stream = FilePath::OpenStream("ART:hut.msh", c_streamRead);
    Chunky file(stream, 0); // for whatever platform the file was written
    BoundVolume bounds;
    BoundVolumeIO::Load(file, bounds);
    std::vector<BasicMeshIO::MeshInfo> meshes;
    BasicMeshIO::LoadList(file, meshes); // makes the triangles, too
    // [mesh-load]
    EXPECT_EQ(bounds.GetOBB().extents, (Vector3f{2, 1.25f, 0.75f}));
    ASSERT_EQ(meshes.size(), 1u);
    EXPECT_EQ(meshes[0].mesh.triangles.size(), 1u);
}
