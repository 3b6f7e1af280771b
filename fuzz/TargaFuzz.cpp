// Pictures from outside: loading gives all pixels or none, and those that it gives are the same after they
// were saved.

#include "Cross/Util/TGAIO.h"
#include "Cross/engine/diagnostics/Trace.h"

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

void demand(bool holds) {
    if (!holds)
        std::abort();
}

// One file for all runs of this process.
struct ScratchFile {
    ~ScratchFile() { std::filesystem::remove(path); }

    std::string const path =
        (std::filesystem::temp_directory_path() / ("fuzz-targa-" + std::to_string(getpid()) + ".tga"))
            .string();
};

// Has exactly the room that is asked for, so that a byte too much is seen, and none for very large pictures.
class Room : public TGAIO::LoadAdapter {
public:
    void Resize(unsigned int newWidth, unsigned int newHeight) override {
        constexpr std::size_t c_most = std::size_t{1} << 22;
        width = newWidth;
        height = newHeight;
        demand(width > 0 && height > 0);
        pixels.clear();
        if (std::size_t{width} * height <= c_most)
            pixels.resize(std::size_t{width} * height);
    }

    void Clear() override { pixels.clear(); }

    MathPrim::Colour * GetData() override { return pixels.empty() ? nullptr : pixels.data(); }

    unsigned int width = 0, height = 0;
    std::vector<MathPrim::Colour> pixels;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const * data, std::size_t size) {
    static ScratchFile const file;
    dbTraceSetSink([](char const *, void *) {}, nullptr);
    std::ofstream(file.path, std::ios::binary)
        .write(reinterpret_cast<char const *>(data), static_cast<std::streamsize>(size));
    Room room, again;
    bool const loaded = TGAIO::Load(file.path.c_str(), room);
    demand(loaded == !room.pixels.empty());
    if (!loaded)
        return 0;
    std::filesystem::remove(file.path); // a save over a file waits for the disk
    auto const bytes = static_cast<unsigned int>(room.pixels.size() * sizeof(MathPrim::Colour));
    demand(TGAIO::Save(file.path.c_str(), room.width, room.height, 32, bytes, room.pixels.data()));
    demand(TGAIO::Load(file.path.c_str(), again));
    demand(again.width == room.width && again.pixels == room.pixels);
    return 0;
}
