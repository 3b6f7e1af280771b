#include "Cross/Util/TGAIO.h"
#include "tests/support/FailingStream.h"
#include "tests/support/ReasonOf.h"
#include "tests/support/StreamBytes.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TraceCapture.h"
#include "tests/tools/ToolRun.h"
#include "tools/TargaCheck.h"

#include <gtest/gtest.h>
#include <stb_image.h>
#include <stb_image_write.h>
#include <zlib.h>

#include <array>

namespace {

using Image = Array2D<MathPrim::Colour, Array2DNewAllocator<MathPrim::Colour>>;
using Bytes = std::vector<unsigned char>;

constexpr unsigned int c_width = 5, c_height = 3;

// A header for 5 x 3 pixels, by hexadecimal digits of type, bits and descriptor.
std::string header(char const * type, char const * bits, char const * descriptor) {
    return FromHex(std::string("0000") + type + "0000000000 00000000 0500 0300" + bits + descriptor);
}

// Different bytes, from `first` on.
Bytes someBytes(std::size_t count, unsigned char first) {
    Bytes bytes(count);
    for (std::size_t i = 0; i < count; ++i)
        bytes[i] = static_cast<unsigned char>(first + i * 37);
    return bytes;
}

// One of the corners as stb sees it, top row first, red first.
std::array<int, 4> pixelAt(Image const & image, unsigned int x, unsigned int rowFromTop) {
    MathPrim::Colour const & pixel = image.data[(image.height - 1 - rowFromTop) * image.width + x];
    return {pixel.red, pixel.green, pixel.blue, pixel.alpha};
}

void expectSame(Image const & image, unsigned char const * peer) {
    ASSERT_NE(peer, nullptr);
    for (unsigned int y = 0; y < image.height; ++y)
        for (unsigned int x = 0; x < image.width; ++x) {
            unsigned char const * const pixel = peer + 4 * (y * image.width + x);
            EXPECT_EQ(pixelAt(image, x, y), (std::array<int, 4>{pixel[0], pixel[1], pixel[2], pixel[3]}))
                << x << ',' << y;
        }
}

// What verify says of a file, without the name of the file.
std::string verified(TemporaryFolder const & folder, std::string const & file) {
    folder.WriteFile("case.tga", file);
    std::string text = RunTool({"tga", "verify", folder / "case.tga"}).out;
    std::string const name = (folder / "case.tga") + ": ";
    for (std::size_t place; (place = text.find(name)) != std::string::npos;)
        text.erase(place, name.size());
    return text;
}

} // namespace

TEST(TargaVerbs, InfoTellsEveryField) {
    TemporaryFolder const folder;
    folder.WriteFile("a.tga", FromHex("02 00 0A 0000 0000 07 0000 0000 0200 0100 18 30 6869 81 010203"));
    std::string const file = folder / "a.tga";
    ToolResult const result = RunTool({"tga", "info", file});
    EXPECT_EQ(result.code, 0);
    EXPECT_EQ(
        result.out,
        "good: " + file +
            ": 2 x 1 pixels of 24 bits, run-length encoded, top row first\n"
            "byte   field                    value  meaning\n"
            "0      ID length                    2  bytes of the ID field, which is skipped\n"
            "1      colour map type              0  as loading needs it\n"
            "2      image type                  10  true colour, run-length encoded: loading is slower, "
            "and traced\n"
            "3-4    first colour map entry       0  as loading needs it\n"
            "5-6    colour map length            0  as loading needs it\n"
            "7      colour map entry size        7  not looked at\n"
            "8-9    x origin                     0  as loading needs it\n"
            "10-11  y origin                     0  as loading needs it\n"
            "12-13  width                        2  pixels\n"
            "14-15  height                       1  pixels\n"
            "16     bits per pixel              24  blue, green, red; alpha becomes 255\n"
            "17     descriptor                  48  top row first: loading swaps the rows; 0 alpha "
            "bits, not looked at; right to left, not looked at\n");
    folder.WriteFile("a.tga", FromHex("00 01 03 0000 0000 00 0000 0000 0200 0100 18 00"));
    ToolResult const refused = RunTool({"tga", "info", file});
    EXPECT_EQ(refused.code, 1);
    EXPECT_NE(refused.out.find("; must be 2 or 10\nbyte"), std::string::npos);
    ToolResult const json = RunTool({"tga", "verify", file, "--json"});
    EXPECT_EQ(json.code, 1);
    EXPECT_EQ(
        json.out.find("{\"verdict\": \"does not load\", \"file\": \"" + file +
                      "\", \"findings\": [{\"offset\": 1, \"fatal\": true, \"reason\": \"colour map type is "
                      "1: must be 0\"}, "),
        0u);
    EXPECT_NE(
        json.out.find("\"fields\": [{\"offset\": 0, \"size\": 1, \"name\": \"ID length\", \"value\": 0, "
                      "\"meaning\": \""),
        std::string::npos);
    EXPECT_EQ(RunTool({"tga", "info", folder / "none.tga"}).code, 2);
}

TEST(TargaVerbs, KindsThatDoNotLoadAreNamed) {
    std::pair<char const *, char const *> const c_kinds[] = {
        {"00", "0: no image"},
        {"01", "1: colours from a map"},
        {"03", "3: shades of grey"},
        {"09", "9: colours from a map, run-length encoded"},
        {"0B", "11: shades of grey, run-length encoded"},
        {"20", "32: unknown"},
    };
    TemporaryFolder const folder;
    for (auto const & [type, meaning] : c_kinds)
        EXPECT_EQ(verified(folder, header(type, "18", "00")),
                  std::string("does not load: offset 2: image type is ") + meaning + "; must be 2 or 10\n");
    FilledStream memory(header("02", "18", "00"));
    FailingStream unreadable(memory, 0);
    EXPECT_EQ(ReasonOf([&] { CheckTarga(unreadable); }), "RamStream: cannot be read");
}

TEST(TargaVerbs, VerifyAgreesWithLoading) {
    std::string const pixels(45, 'p'), summary = "5 x 3 pixels of 24 bits, ";
    std::pair<std::string, std::string> const c_cases[] = {
        {header("02", "18", "00") + pixels, "good: " + summary + "plain, bottom row first\n"},
        // the footer of the second version, also with tables in front
        {header("02", "18", "00") + pixels + "tables" + std::string(8, '\0') + "TRUEVISION-XFILE." + '\0',
         "good: " + summary + "plain, bottom row first\n"},
        {header("02", "18", "00") + pixels + "x",
         "loads, but: offset 63: 1 byte follows behind the pixels\n"},
        {header("02", "18", "D0") + pixels,
         "loads, but: offset 17: the rows run from right to left, but load from left to right\n"
         "offset 17: the rows are interleaved, but load in the order of the file\n"},
        {header("02", "18", "00") + pixels.substr(1),
         "does not load: offset 62: only 44 of the 45 bytes of the pixels are there\n"},
        {header("0A", "18", "00") + FromHex("8E 010203"),
         "good: " + summary + "run-length encoded, bottom row first\n"},
        // a packet beyond the image, whose own bytes there need not be in the file
        {header("0A", "18", "00") + FromHex("8F 010203"),
         "loads, but: offset 18: the last packet reaches 1 pixel beyond the image, which loading cuts\n"},
        {header("0A", "18", "00") + FromHex("8C 010203 7F 010203 040506"),
         "loads, but: offset 22: the last packet reaches 126 pixels beyond the image, which loading cuts\n"},
        {header("0A", "18", "00") + FromHex("8D 010203"),
         "does not load: offset 22: the pixels end early, 1 is missing\n"},
        {header("0A", "18", "00") + FromHex("8D 010203 80 0102"),
         "does not load: offset 22: the pixels end early, 1 is missing\n"},
        {header("02", "10", "00") + pixels,
         "does not load: offset 16: bits per pixel is 16: must be 24 or 32\n"},
        {FromHex("05 00 02 0000 0000 00 0000 0100 0000 FFFF 20 08") + "id",
         "does not load: offset 10: y origin is 1: must be 0\n"
         "offset 12: width is 0: must not be 0\n"
         "offset 20: only 2 of the 5 bytes of the ID field are there\n"},
        {FromHex("00 00 02 0000 0000 00 0000 0000 FFFF FFFF 20 08"),
         "does not load: offset 12: 65535 x 65535 pixels take 4 GiB of memory or more\n"},
        {"short", "does not load: offset 5: only 5 of the 18 bytes of the header are there\n"},
    };
    TemporaryFolder const folder;
    for (auto const & [file, text] : c_cases) {
        EXPECT_EQ(verified(folder, file), text);
        bool const loads = text.find("does not load") != 0;
        TraceCapture const quiet;
        Image image;
        EXPECT_EQ(TGAIO::Load((folder / "case.tga").c_str(), image), loads) << text;
        EXPECT_EQ(RunTool({"tga", "verify", folder / "case.tga"}).code, text.find("good") == 0 ? 0 : 1);
    }
}

// What a peer reads from the PNG is what the library reads from the Targa image, and the other way round.
TEST(TargaVerbs, PixelsPassThroughPng) {
    TemporaryFolder const folder;
    for (unsigned int const size : {3u, 4u}) {
        std::string const a = folder / "a.tga", png = folder / "a.png", b = folder / "b.tga";
        Bytes const bytes = someBytes(c_width * c_height * size, 11);
        ASSERT_TRUE(TGAIO::Save(a.c_str(), c_width, c_height, size * 8,
                                static_cast<unsigned int>(bytes.size()), bytes.data()));
        ToolResult const there = RunTool({"tga", "topng", a, png});
        EXPECT_EQ(there.code, 0) << there.err;
        EXPECT_EQ(there.out, "good: " + png + ": 5 x 3 pixels of " + std::to_string(size * 8) + " bits\n");
        Image image;
        ASSERT_TRUE(TGAIO::Load(a.c_str(), image));
        int width, height, channels;
        unsigned char * peer = stbi_load(png.c_str(), &width, &height, &channels, 4);
        EXPECT_EQ(channels, static_cast<int>(size));
        expectSame(image, peer);
        stbi_image_free(peer);
        EXPECT_EQ(RunTool({"tga", "frompng", png, b}).code, 0);
        EXPECT_EQ(folder.ReadFile("b.tga"), folder.ReadFile("a.tga"));
    }
    // grey with alpha, from the peer's hand
    Bytes const grey = someBytes(c_width * c_height * 2, 3);
    std::string const png = folder / "grey.png", tga = folder / "grey.tga";
    stbi_write_png(png.c_str(), c_width, c_height, 2, grey.data(), c_width * 2);
    EXPECT_EQ(RunTool({"tga", "frompng", png, tga}).out, "good: " + tga + ": 5 x 3 pixels of 32 bits\n");
    Image image;
    ASSERT_TRUE(TGAIO::Load(tga.c_str(), image));
    EXPECT_EQ(pixelAt(image, 0, 0), (std::array<int, 4>{grey[0], grey[0], grey[0], grey[1]}));
    EXPECT_EQ(pixelAt(image, 4, 2), (std::array<int, 4>{grey[28], grey[28], grey[28], grey[29]}));
}

TEST(TargaVerbs, ResaveWritesPlainRowsFromTheBottom) {
    TemporaryFolder const folder;
    std::string const file = folder / "a.tga";
    folder.WriteFile("a.tga", FromHex("00 00 0A 0000 0000 00 0000 0000 0200 0200 18 20 81 010203 81 040506"));
    ToolResult const result = RunTool({"tga", "resave", file, file});
    EXPECT_EQ(result.code, 0);
    EXPECT_NE(result.err.find("trace: TGAIO -- TGA file"), std::string::npos);
    EXPECT_EQ(folder.ReadFile("a.tga"), FromHex("00 00 02 0000 0000 00 0000 0000 0200 0200 18 00"
                                                "040506 040506 010203 010203"));
}

TEST(TargaVerbs, BadFilesAreRefusedAndTheOldOnesStay) {
    TemporaryFolder const folder;
    std::string const png = folder / "a.png", tga = folder / "a.tga";
    Bytes const bytes = someBytes(c_width * c_height * 4, 3);
    stbi_write_png(png.c_str(), c_width, c_height, 4, bytes.data(), c_width * 4);
    std::string const good = folder.ReadFile("a.png");
    folder.WriteFile("a.tga", "old");
    // Cut in the last chunk, which is empty, nothing is missing.
    for (std::size_t size = 0; size + 12 < good.size(); ++size) {
        folder.WriteFile("a.png", good.substr(0, size));
        ToolResult const result = RunTool({"tga", "frompng", png, tga});
        EXPECT_EQ(result.code, 2) << size;
        EXPECT_EQ(result.err.find("failed: " + png + ": \""), 0u) << result.err;
    }
    // Headers that claim more than there can be, with a check value that is right.
    std::tuple<char const *, std::size_t, char const *> const c_claims[] = {
        // width, height, bits per channel and kind of colour; the size of the file; what is told
        {"0000FFFF 0000FFFF 08 06", 9000, "65535 x 65535 pixels are more than 9000 bytes can hold"},
        {"00010000 00000001 08 06", 9000, "65536 x 1 pixels are more than a Targa file can have"},
        {"00000001 00010000 08 06", 9000, "1 x 65536 pixels are more than a Targa file can have"},
        {"0000FFFF 0000FFFF 01 00", 600'000, "the pixels take 4 GiB or more"}, // they are one bit in the file
    };
    for (auto const & [fields, size, reason] : c_claims) {
        std::string claim = good;
        claim.replace(16, 10, FromHex(fields));
        auto const crc = static_cast<unsigned int>(crc32(0, reinterpret_cast<Bytef const *>(&claim[12]), 17));
        for (unsigned int i = 0; i < 4; ++i)
            claim[29 + i] = static_cast<char>(crc >> (24 - 8 * i));
        claim.resize(size);
        folder.WriteFile("a.png", claim);
        EXPECT_EQ(RunTool({"tga", "frompng", png, tga}).err, "failed: " + png + ": " + reason + "\n");
    }
    EXPECT_EQ(RunTool({"tga", "resave", tga, tga}).code, 2);
    EXPECT_EQ(folder.ReadFile("a.tga"), "old");
    EXPECT_EQ(RunTool({"tga", "topng", tga, tga}).err, "failed: " + tga + ": would overwrite the source\n");
    folder.WriteFile("c.tga", header("03", "18", "10")); // only what keeps it from loading is told
    EXPECT_EQ(RunTool({"tga", "topng", folder / "c.tga", png}).err,
              "failed: " + (folder / "c.tga") +
                  ": offset 2: image type is 3: shades of grey; must be 2 or 10\n");
    folder.WriteFile("c.tga", header("0A", "18", "00") + FromHex("8E 010203"));
    EXPECT_EQ(RunTool({"tga", "topng", folder / "c.tga", folder / "no/c.png"}).code, 2);
}
