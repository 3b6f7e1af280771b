#include "Cross/Util/TGAIO.h"
#include "Cross/Util/Random.h"
#include "Cross/engine/filesystem/FileStream.h"
#include "tests/support/AliasedFolder.h"
#include "tests/support/HeapLimit.h"
#include "tests/support/SlotOf.h"
#include "tests/support/StreamBytes.h"
#include "tests/support/TraceCapture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <stb_image.h>
#include <string>
#include <sys/mman.h>
#include <vector>

namespace {

using MathPrim::Colour;
using Picture = Array2D<Colour, Array2DNewAllocator<Colour>>;

constexpr char const * c_path = "PICTURES:picture.tga";
constexpr char c_plain = 2, c_packed = 10, c_topFirst = 0x20;

std::string targa(char type, char bits, char descriptor, unsigned int width, unsigned int height,
                  std::string const & pixels, std::string const & id = "") {
    std::string file(18, '\0');
    file[0] = static_cast<char>(id.size());
    file[2] = type;
    file[12] = static_cast<char>(width);
    file[13] = static_cast<char>(width >> 8);
    file[14] = static_cast<char>(height);
    file[15] = static_cast<char>(height >> 8);
    file[16] = bits;
    file[17] = descriptor;
    return file + id + pixels;
}

std::string bytesOf(Picture const & picture) {
    return {reinterpret_cast<char const *>(picture.data), picture.width * picture.height * sizeof(Colour)};
}

// Notes what it is asked for; gives exactly the memory that is needed, or none.
class Notes : public TGAIO::LoadAdapter {
public:
    explicit Notes(bool hasRoom = true) : hasRoom(hasRoom) {}

    void Resize(unsigned int width, unsigned int height) override {
        calls += std::to_string(width) + "x" + std::to_string(height) + ";";
        if (hasRoom)
            pixels.resize(std::size_t{width} * height);
    }

    void Clear() override { calls += "clear;"; }

    Colour * GetData() override { return hasRoom ? pixels.data() : nullptr; }

    std::string calls;
    std::vector<Colour> pixels;

private:
    bool hasRoom;
};

// Gives 4 GiB without a page behind them, and counts at the end of a failed load those that have got one.
struct Mapped : TGAIO::LoadAdapter {
    static constexpr std::size_t c_size = std::size_t{1} << 32;

    ~Mapped() override { munmap(data, c_size); }

    void Resize(unsigned int, unsigned int) override { isAsked = true; }

    void Clear() override {
        std::vector<unsigned char> pages(c_size / 4096);
        EXPECT_EQ(mincore(data, c_size, pages.data()), 0);
        used = std::count_if(pages.begin(), pages.end(), [](unsigned char page) { return page & 1; });
    }

    Colour * GetData() override { return static_cast<Colour *>(data); }

    void * const data =
        mmap(nullptr, c_size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    bool isAsked = false;
    std::ptrdiff_t used = -1;
};

class TGAIOTest : public testing::Test {
protected:
    // Loads these bytes as a file.
    template <class Target>
    bool Load(std::string const & bytes, Target & target) {
        folder.WriteFile("picture.tga", bytes);
        trace.lines.clear();
        return TGAIO::Load(c_path, target);
    }

    bool Says(std::string const & text) const {
        return trace.lines.size() == 1 && trace.lines[0].find("TGAIO -- " + text) != std::string::npos;
    }

    AliasedFolder folder{"PICTURES"};
    TraceCapture trace;
};

} // namespace

TEST_F(TGAIOTest, PixelsComeInFourBytesBottomRowFirst) {
    struct Case {
        char type, bits, descriptor;
        unsigned int width, height;
        char const *pixels, *want;
    };

    Case const c_cases[] = {
        // 32 bits as they stand; of the descriptor only the bit for the top row counts
        {2, 32, 0, 2, 1, "01020304 05060708", "01020304 05060708"},
        {2, 32, char(0xDF), 1, 2, "01020304 05060708", "01020304 05060708"},
        // 24 bits are opaque
        {2, 24, 0, 3, 1, "010203 040506 070809", "010203FF 040506FF 070809FF"},
        // rows from the top are turned round; a middle one stays
        {2, 32, c_topFirst, 2, 2, "00000001 00000002 00000003 00000004",
         "00000003 00000004 00000001 00000002"},
        {2, 24, c_topFirst, 1, 3, "010101 020202 030303", "030303FF 020202FF 010101FF"},
        // a run and single pixels, ending on the last pixel
        {10, 24, 0, 2, 2, "81 010203 01 040506 070809", "010203FF 010203FF 040506FF 070809FF"},
        {10, 32, 0, 3, 1, "00 01020304 81 05060708", "01020304 05060708 05060708"},
        // a packet beyond the end is cut there, and need not be whole
        {10, 32, 0, 3, 1, "00 01020304 FF 05060708", "01020304 05060708 05060708"},
        {10, 24, 0, 2, 1, "7F 010203 040506", "010203FF 040506FF"},
    };
    for (Case const & test : c_cases) {
        Picture picture;
        std::string const file = targa(test.type, test.bits, test.descriptor, test.width, test.height,
                                       FromHex(test.pixels), std::string(255, 'i'));
        EXPECT_TRUE(Load(file, picture)) << test.pixels;
        EXPECT_EQ(bytesOf(picture), FromHex(test.want)) << test.pixels;
        if (test.type == c_packed)
            EXPECT_TRUE(Says("TGA file 'PICTURES:picture.tga' is RLE compressed. For optimal speed, please "
                             "re-save uncompressed."));
        else
            EXPECT_TRUE(trace.lines.empty());
    }
}

TEST_F(TGAIOTest, EveryByteOfTheHeaderCounts) {
    std::string const good = targa(c_plain, 24, 0, 1, 1, std::string(4 * 70000, 'p'));
    for (unsigned int place = 0; place < 18; ++place)
        for (unsigned int const value : {0u, 1u, 3u, 9u, 15u, 16u, 27u, 128u, 255u}) {
            std::string bytes = good;
            bytes[place] = static_cast<char>(value);
            bool const isNotZero = value > 0 && place > 0 && place < 12 && place != 2 && place != 7;
            bool const isNoSize = place == 16 || (value == 0 && (place == 12 || place == 14));
            std::string refusal;
            if (isNotZero)
                refusal = "of unsupported header format at bit " + std::to_string(place) +
                          ". Found: " + std::to_string(value) + ", expected 0.";
            if (place == 2)
                refusal = "it is an unsupported image type (" + std::to_string(value) + ").";
            if (isNotZero) // only the first wrong byte is told, and no wrong type
                std::fill(bytes.begin() + place + 1, bytes.begin() + 12, '\5');
            if (!refusal.empty()) // an ID that is not there comes after that
                bytes.replace(0, std::string::npos, "\1" + bytes.substr(1, 17));
            Notes notes;
            bool const loads = refusal.empty() && !isNoSize;
            EXPECT_EQ(Load(bytes, notes), loads) << place << ' ' << value;
            EXPECT_EQ(notes.calls.empty(), !loads);
            EXPECT_TRUE(refusal.empty()
                            ? trace.lines.empty()
                            : Says("Could not load TGA file 'PICTURES:picture.tga' because " + refusal))
                << place << ' ' << value;
        }
}

TEST_F(TGAIOTest, CutFilesGiveTheMemoryBack) {
    std::string const packets = FromHex("82 01020304 01 05060708 090A0B0C 00 0D0E0F10");
    for (std::string const & whole : {targa(c_plain, 24, 0, 3, 2, std::string(18, 'p'), "id"),
                                      targa(c_plain, 32, 0, 3, 2, std::string(24, 'p')),
                                      targa(c_packed, 32, c_topFirst, 3, 2, packets, "some id")}) {
        std::size_t const pixelsBegin = 18u + static_cast<unsigned char>(whole[0]);
        for (std::size_t size = 0; size < whole.size(); ++size) {
            Notes notes;
            EXPECT_FALSE(Load(whole.substr(0, size), notes)) << size;
            EXPECT_EQ(notes.calls, size < pixelsBegin ? "" : "3x2;clear;") << size;
        }
        Notes notes, noRoom(false);
        EXPECT_TRUE(Load(whole, notes));
        EXPECT_EQ(notes.calls, "3x2;");
        EXPECT_FALSE(Load(whole, noRoom));
        EXPECT_EQ(noRoom.calls, "3x2;");
        EXPECT_TRUE(trace.lines.empty());
    }
    Notes notes;
    EXPECT_FALSE(TGAIO::Load("PICTURES:none.tga", notes));
    EXPECT_EQ(notes.calls, "");
}

// A file of 19 bytes that claims sides: what is too large is not even asked for, of the rest no page is used
// that the file has no bytes for.
TEST_F(TGAIOTest, ClaimedSizesCostNothing) {
    for (char const type : {c_plain, c_packed})
        for (char const bits : {char(24), char(32)}) {
            Mapped largest, above;
            ASSERT_NE(largest.data, MAP_FAILED);
            EXPECT_FALSE(Load(targa(type, bits, c_topFirst, 65535, 16384, "p"), largest));
            EXPECT_TRUE(largest.isAsked);
            EXPECT_GE(largest.used, 0);
            EXPECT_LE(largest.used, 1);
            EXPECT_FALSE(Load(targa(type, bits, 0, 65535, 65535, "p"), above));
            EXPECT_FALSE(Load(targa(type, bits, 0, 32768, 32768, "p"), above)) << "4 GiB";
            EXPECT_FALSE(above.isAsked);
        }
}

TEST_F(TGAIOTest, AnArrayOfTheSizeKeepsItsBlock) {
    Picture picture;
    ASSERT_TRUE(Load(targa(c_plain, 32, 0, 2, 2, std::string(16, 'a')), picture));
    Colour const * const block = picture.data;
    ASSERT_TRUE(Load(targa(c_plain, 24, 0, 2, 2, std::string(12, 'b')), picture));
    EXPECT_EQ(picture.data, block);
    EXPECT_FALSE(Load(targa(c_plain, 8, 0, 2, 2, std::string(12, 'c')), picture));
    EXPECT_EQ(bytesOf(picture), FromHex("626262FF626262FF626262FF626262FF")) << "another kind leaves it";
    EXPECT_TRUE(Load(targa(c_plain, 32, 0, 1, 3, std::string(12, 'd')), picture));
    EXPECT_EQ(picture.width * 10 + picture.height, 13u);
    EXPECT_FALSE(Load(targa(c_plain, 32, 0, 1, 3, std::string(11, 'd')), picture));
    EXPECT_EQ(picture.data, nullptr);
    EXPECT_EQ(picture.width + picture.height, 0u);
    folder.WriteFile("picture.tga", targa(c_plain, 32, 0, 200, 200, std::string(160'000, 'e')));
    HeapLimit const limit(100'000);
    EXPECT_FALSE(TGAIO::Load(c_path, picture));
    EXPECT_EQ(picture.width + picture.height, 0u) << "no room, no size";
}

// The same pixels as another reader of the format finds, for files made at random.
TEST_F(TGAIOTest, ReadsAsAnotherReaderDoes) {
    Random random(1);
    auto const noise = [&](std::size_t size) {
        std::string bytes(size, '\0');
        std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<char>(random.GetBits(8)); });
        return bytes;
    };
    for (unsigned int i = 0; i < 200; ++i) {
        char const type = i % 2 ? c_packed : c_plain, bits = i % 4 < 2 ? 24 : 32;
        unsigned int const width = random.GetBits(8) + 1, height = random.GetBits(i < 160 ? 4 : 8) + 1;
        std::string pixels;
        if (type == c_plain)
            pixels = noise(width * height * static_cast<unsigned int>(bits) / 8);
        for (std::size_t left = width * height; type == c_packed && left > 0;) {
            std::size_t const length = std::min<std::size_t>(random.GetBits(7) + 1, left);
            bool const isRun = random.GetBits(1);
            pixels += static_cast<char>((isRun ? 128 : 0) + length - 1);
            pixels += noise((isRun ? 1 : length) * static_cast<unsigned int>(bits) / 8);
            left -= length;
        }
        char const descriptor = random.GetBits(1) ? c_topFirst : 0;
        Picture picture;
        ASSERT_TRUE(
            Load(targa(type, bits, descriptor, width, height, pixels, noise(random.GetBits(8))), picture));

        int peerWidth = 0, peerHeight = 0, channels = 0;
        stbi_uc * const peer =
            stbi_load((folder / "picture.tga").c_str(), &peerWidth, &peerHeight, &channels, 4);
        ASSERT_TRUE(peer) << i;
        ASSERT_EQ(picture.width, static_cast<unsigned int>(peerWidth));
        ASSERT_EQ(picture.height, static_cast<unsigned int>(peerHeight));
        std::string want;
        for (unsigned int y = height; y-- > 0;)
            for (unsigned int x = 0; x < width; ++x) {
                stbi_uc const * const pixel = peer + 4 * (y * width + x);
                for (unsigned int const channel : {2u, 1u, 0u, 3u})
                    want += static_cast<char>(pixel[channel]);
            }
        stbi_image_free(peer);
        ASSERT_TRUE(bytesOf(picture) == want) << i;
    }
}

TEST_F(TGAIOTest, SavesWhatLoadsAgain) {
    std::string const pixels = FromHex("01020304 05060708 090A0B0C 0D0E0F10 11121314 15161718");
    auto const save = [&](unsigned int width, unsigned int height, unsigned int bits, std::size_t size) {
        return TGAIO::Save(c_path, width, height, bits, static_cast<unsigned int>(size), pixels.data());
    };
    ASSERT_TRUE(save(0xFFFF, 0x102, 24, 9));
    EXPECT_EQ(folder.ReadFile("picture.tga"),
              FromHex("00 00 02 0000 0000 00 0000 0000 FFFF 0201 18 00") + pixels.substr(0, 9));
    ASSERT_TRUE(save(3, 2, 32, 24));
    std::string const whole = folder.ReadFile("picture.tga");
    EXPECT_EQ(whole, FromHex("00 00 02 0000 0000 00 0000 0000 0300 0200 20 08") + pixels);
    Picture picture;
    ASSERT_TRUE(TGAIO::Load(c_path, picture));
    EXPECT_EQ(bytesOf(picture), pixels);

    // what cannot be saved leaves the file that is there, and makes none
    EXPECT_FALSE(save(65536, 1, 32, 4));
    EXPECT_FALSE(save(1, 65536, 32, 4));
    EXPECT_FALSE(save(1, 1, 28, 4));
    EXPECT_FALSE(save(3, 2, 32, 0));
    for (std::string const & data : {pixels, std::string(FileBuffer::c_size, 'p')}) { // gathered, and at once
        FileFaults::Instance().failingWrite = 1;
        EXPECT_FALSE(TGAIO::Save(c_path, 3, 1, 32, static_cast<unsigned int>(data.size()), data.data()));
        FileFaults::Instance().Clear();
    }
    EXPECT_EQ(folder.ReadFile("picture.tga"), whole);
    EXPECT_EQ(folder.CountEntries(), 1u);
    EXPECT_FALSE(TGAIO::Save("PICTURES:new.tga", 65536, 1, 32, 4, pixels.data()));
    EXPECT_FALSE(TGAIO::Save("NOWHERE:new.tga", 1, 1, 32, 4, pixels.data()));
    EXPECT_EQ(folder.CountEntries(), 1u);
}

#if defined(__x86_64__)
TEST_F(TGAIOTest, AdaptersAreCalledByPlace) {
    using Adapter = TGAIO::LoadAdapter;
    EXPECT_TRUE(
        FollowTheDestructor({SlotOf(&Adapter::Resize), SlotOf(&Adapter::Clear), SlotOf(&Adapter::GetData)}));
}
#endif
