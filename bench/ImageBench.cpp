// Targa pictures of 4096 by 4096 from files, beside stb_image: into an image of that size that was loaded
// before, as a tool or a reload does, and into fresh memory.

#include "Cross/Util/Random.h"
#include "Cross/Util/TGAIO.h"
#include "Cross/engine/diagnostics/Trace.h"
#include "bench/Ratio.h"

#include <stb_image.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

using Picture = Array2D<MathPrim::Colour, Array2DNewAllocator<MathPrim::Colour>>;

constexpr unsigned int c_side = 4096;
constexpr std::size_t c_pixels = std::size_t{c_side} * c_side;

void demand(bool holds, char const * what) {
    if (holds)
        return;
    std::fprintf(stderr, "%s\n", what);
    std::exit(2);
}

std::string noise(Random & random, std::size_t size) {
    std::string bytes(size, '\0');
    for (char & byte : bytes)
        byte = static_cast<char>(random.GetBits(8));
    return bytes;
}

// As many pixels in runs as beside them, in packets of every length.
std::string packets(unsigned int pixelSize) {
    Random random(2);
    std::string bytes;
    for (std::size_t left = c_pixels; left > 0;) {
        bool const isRun = random.GetBits(1) != 0;
        std::size_t const length = std::min<std::size_t>(left, random.GetBits(7) + 1u);
        bytes += static_cast<char>((isRun ? 0x80 : 0) | (length - 1));
        bytes += noise(random, pixelSize * (isRun ? 1 : length));
        left -= length;
    }
    return bytes;
}

// A file that goes with the object.
class PictureFile {
public:
    PictureFile(char type, unsigned int bitsPerPixel, char descriptor, std::string const & pixels)
        : path(std::filesystem::temp_directory_path() /
               ("crossutil-bench-" + std::to_string(type) + "-" + std::to_string(bitsPerPixel) + "-" +
                std::to_string(descriptor) + ".tga")) {
        std::string header(18, '\0');
        header[2] = type;
        header[13] = header[15] = c_side >> 8;
        header[16] = static_cast<char>(bitsPerPixel);
        header[17] = descriptor;
        std::ofstream file(path, std::ios::binary);
        file << header << pixels;
        demand(file.good(), "a picture cannot be written");
    }

    PictureFile(PictureFile const &) = delete;
    PictureFile & operator=(PictureFile const &) = delete;

    ~PictureFile() { std::filesystem::remove(path); }

    std::string Name() const { return path.string(); }

private:
    std::filesystem::path path;
};

void loadFresh(benchmark::State & state, std::string const & name) {
    for (auto _ : state) {
        Picture picture;
        demand(TGAIO::Load(name.c_str(), picture), "the picture does not load");
        benchmark::DoNotOptimize(picture.data);
    }
}

void loadAgain(benchmark::State & state, std::string const & name) {
    Picture picture;
    demand(TGAIO::Load(name.c_str(), picture), "the picture does not load");
    for (auto _ : state) {
        demand(TGAIO::Load(name.c_str(), picture), "the picture does not load");
        benchmark::DoNotOptimize(picture.data);
    }
}

void loadPeer(benchmark::State & state, std::string const & name) {
    for (auto _ : state) {
        int width = 0, height = 0, channels = 0;
        stbi_uc * const pixels = stbi_load(name.c_str(), &width, &height, &channels, 4);
        demand(pixels && width == c_side && height == c_side, "stb_image does not load");
        benchmark::DoNotOptimize(pixels);
        stbi_image_free(pixels);
    }
}

using Loader = void (*)(benchmark::State &, std::string const &);

void addPair(std::string const & name, double limit, Loader ours, PictureFile const & file) {
    bench::AddPair(
        name, limit, [ours, &file](benchmark::State & state) { ours(state, file.Name()); },
        [&file](benchmark::State & state) { loadPeer(state, file.Name()); });
}

} // namespace

int main(int argc, char ** argv) {
    dbTraceSetSink([](char const *, void *) {}, nullptr);
    Random random(1);
    constexpr char c_topFirst = 0x20;
    std::string const pixels = noise(random, c_pixels * 4);
    PictureFile const plain32(2, 32, 0, pixels), plain24(2, 24, 0, pixels);
    PictureFile const top32(2, 32, c_topFirst, pixels);
    PictureFile const packed32(10, 32, 0, packets(4)), packed24(10, 24, 0, packets(3));
    addPair("plain, 32 bits", 0.4, loadAgain, plain32);
    addPair("plain, 32 bits, top row first", 0.4, loadAgain, top32);
    addPair("plain, 24 bits", 0.3, loadAgain, plain24);
    addPair("run-length, 32 bits", 0.2, loadAgain, packed32);
    addPair("run-length, 24 bits", 0.2, loadAgain, packed24);
    addPair("plain, 32 bits, fresh memory", 0.9, loadFresh, plain32);
    addPair("plain, 24 bits, fresh memory", 0.9, loadFresh, plain24);
    addPair("run-length, 32 bits, fresh memory", 0.9, loadFresh, packed32);
    return bench::Run(argc, argv);
}
