#include "Cross/Util/BoundVolumeIO.h"
#include "tests/support/ReasonOf.h"
#include "tests/support/StreamBytes.h"

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

// A chunk file with this chunk and an empty one behind it.
void fill(ByteStream & stream, std::uint32_t version, std::string const & body) {
    Chunky file(&stream, 0);
    file.WriteDataChunk(c_id, version, -1);
    file.WriteBytes(body.data(), static_cast<unsigned int>(body.size()));
    file.PopChunk();
    file.WriteDataChunk(c_nextId, 1, -1);
    file.PopChunk();
    stream.SetPos(0);
}

std::string saved(BoundVolume const & volume, PlatformType platform) {
    FilledStream stream;
    Chunky file(stream, platform);
    BoundVolumeIO::Save(file, volume);
    return stream.Content();
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
    struct Case {
        std::uint32_t version;
        char const * flags;
        bool hasSphere, hasBox;
    };

    Case const c_cases[] = {
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
    for (Case const & test : c_cases) {
        std::string const body =
            FromHex(std::string(test.flags) + (test.hasSphere ? "00001041 00001041 00001041 00001041" : "") +
                    (test.hasBox ? c_boxBytes : ""));
        for (std::size_t size = 0; size <= body.size(); ++size) {
            FilledStream stream;
            fill(stream, test.version, body.substr(0, size));
            Chunky file(stream, 0);
            BoundVolume read = volumeOf(c_otherBox);
            bool const isWhole = size == body.size() && test.version <= 2;
            bool const loads = ReasonOf([&] { BoundVolumeIO::Load(file, read); }) == "no exception";
            EXPECT_EQ(loads, isWhole) << test.version << ' ' << test.flags << ' ' << size;
            EXPECT_EQ(read.GetOBB(), isWhole && test.hasBox ? c_box : c_otherBox);
            EXPECT_EQ(read.GetSphere().radius, volumeOf(read.GetOBB()).GetSphere().radius);
            if (isWhole) {
                EXPECT_NO_THROW(file.ReadDataChunk(c_nextId, 1)) << "the file stands behind the chunk";
            }
        }
    }
}
