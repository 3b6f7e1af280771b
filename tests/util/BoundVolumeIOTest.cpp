#include "Cross/Util/BoundVolumeIO.h"
#include "tests/support/ChunkFiles.h"
#include "tests/support/ReasonOf.h"

#include <gtest/gtest.h>

#include <string>

namespace {

constexpr MathPrim::OBBf c_box = {{1, 2, 3}, {2, 3, 6}, {{{0, 1, 0}, {-1, 0, 0}, {0, 0, 1}}}};
constexpr MathPrim::OBBf c_otherBox = {{7, 8, 9}, {1, 1, 1}, {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}}};
constexpr std::uint32_t c_id = FourCC("BVOL"), c_nextId = FourCC("NEXT");

char const * const c_boxBytes = "0000803F 00000040 00004040" // centre
                                "00000040 00004040 0000C040" // extents
                                "00000000 0000803F 00000000 000080BF 00000000 00000000 00000000 00000000 "
                                "0000803F";

BoundVolume volumeOf(MathPrim::OBBf const & box) {
    BoundVolume volume;
    volume.SetOBB(box);
    return volume;
}

std::string saved(BoundVolume const & volume, PlatformType platform) {
    return ChunkFile(platform, [&](Chunky & file) { BoundVolumeIO::Save(file, volume); });
}

} // namespace

TEST(BoundVolumeIO, ExactBytes) {
    std::string const head = "5843484B 0D0A1A0A 01000000 01000000" // chunk file, platform 1
                             "02000000 4C4F5642 02000000";         // data chunk "BVOL", version 2
    EXPECT_EQ(saved(volumeOf(c_box), 1), FromHex(head + "3D000000 00000000 01" + c_boxBytes));
    EXPECT_EQ(saved(BoundVolume(), 1), FromHex(head + "01000000 00000000 00"));
}

TEST(BoundVolumeIO, TheBoxComesBackAndTheSphereFollowsFromIt) {
    BoundVolume ball;
    ball.SetSphere({{1, 2, 3}, 2});
    for (PlatformType const platform : {1u, 2u})
        for (BoundVolume const & volume : {volumeOf(c_box), ball}) {
            FilledStream stream(saved(volume, platform));
            Chunky file(stream, 0);
            BoundVolume read;
            BoundVolumeIO::Load(file, read);
            EXPECT_TRUE(read.IsValid());
            EXPECT_EQ(read.GetOBB(), volume.GetOBB());
            EXPECT_EQ(read.GetSphere(), volumeOf(volume.GetOBB()).GetSphere());
        }
}

// Both versions with every flag, an older and a newer one; each is also cut at every byte.
TEST(BoundVolumeIO, EveryVersionAndFlag) {
    std::tuple<std::uint32_t, char const *, bool, bool> const c_cases[] = {
        // version, flags, whether there is a sphere, a box
        {2, "00", false, false},
        {2, "01", false, true},
        {2, "80", false, true}, // any byte but 0 is true
        {0, "01", false, true},
        {3, "01", false, true}, // is refused
        // a sphere is read over, with a box behind it or without
        {1, "0000", false, false},
        {1, "0001", false, true},
        {1, "0100", true, false},
        {1, "0101", true, true},
        {1, "FF02", true, true},
    };
    for (auto const & [version, flags, hasSphere, hasBox] : c_cases) {
        std::string const body =
            FromHex(std::string(flags) + (hasSphere ? "00001041 00001041 00001041 00001041" : "") +
                    (hasBox ? c_boxBytes : ""));
        for (std::size_t size = 0; size <= body.size(); ++size) {
            FilledStream stream(ChunkFile(0, [&, version = version](Chunky & writer) {
                WriteData(writer, c_id, version, body.substr(0, size));
                WriteData(writer, c_nextId, 1, "");
            }));
            Chunky file(stream, 0);
            BoundVolume read = volumeOf(c_otherBox);
            bool const isWhole = size == body.size() && version <= 2;
            bool const loads = ReasonOf([&] { BoundVolumeIO::Load(file, read); }) == "no exception";
            EXPECT_EQ(loads, isWhole) << version << ' ' << flags << ' ' << size;
            EXPECT_EQ(read.GetOBB(), isWhole && hasBox ? c_box : c_otherBox);
            EXPECT_EQ(read.GetSphere().radius, volumeOf(read.GetOBB()).GetSphere().radius);
            if (isWhole) {
                EXPECT_NO_THROW(file.ReadDataChunk(c_nextId, 1)) << "the file stands behind the chunk";
            }
        }
    }
}
