// Any bytes as a chunk file: walks the tree with Peek, Read and Pop and reads what the data chunks hold.
// Beside the sanitizers it checks that nothing leaves the chunk that is open, and that a refused chunk leaves
// the position.

#include "Cross/engine/filesystem/Chunky.h"
#include "Cross/engine/filesystem/RamStream.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <string>
#include <vector>

namespace {

void require(bool condition) {
    if (!condition)
        std::abort();
}

template <class T>
void readOne(Chunky & chunky) {
    T value{};
    chunky.Read(value);
}

// The first byte of the chunk says how its rest is read.
void readBody(Chunky & chunky) {
    std::uint8_t choice = 0;
    chunky.Read(choice);
    std::string text;
    char buffer[8];
    for (;;) {
        switch (choice++ % 8) {
        case 0:
            chunky.ReadString(text);
            break;
        case 1:
            chunky.ReadString(buffer, sizeof buffer);
            break;
        case 2:
            readOne<bool>(chunky);
            break;
        case 3:
            readOne<double>(chunky);
            break;
        case 4:
            readOne<float>(chunky);
            break;
        case 5:
            readOne<std::int16_t>(chunky);
            break;
        case 6:
            readOne<std::uint64_t>(chunky);
            break;
        default:
            chunky.ReadBytes(buffer, choice % sizeof buffer + 1);
            break;
        }
    }
}

void readData(Chunky & chunky, Chunky::ChunkInfo const & info) {
    require(chunky.ReadDataChunk(info.id, info.version).GetVersion() == info.version);
    unsigned int const end = info.bodyOffset + info.bodySize;
    require(chunky.GetStreamPos() == info.bodyOffset);
    try {
        readBody(chunky);
    } catch (std::exception const &) {
        // the end of the chunk, or a text that is longer than it
    }
    require(chunky.GetStreamPos() <= end);
    chunky.PopChunk();
    require(chunky.GetStreamPos() == end);
}

void refuse(Chunky & chunky, Chunky::ChunkInfo const & info) {
    try {
        chunky.ReadDataChunk(info.id + 1, info.version);
        std::abort();
    } catch (std::exception const &) {
        require(chunky.GetStreamPos() == info.headerOffset);
    }
}

void walk(Chunky & chunky) {
    std::vector<unsigned int> ends; // of the open folders
    for (;;) {
        Chunky::ChunkInfo info;
        if (chunky.PeekChunk(info)) {
            require(ends.empty() || info.bodyOffset + info.bodySize <= ends.back());
            refuse(chunky, info);
            if (info.kind == Chunky::CK_DATA) {
                readData(chunky, info);
            } else {
                chunky.ReadFolderChunk(info.id, info.version);
                ends.push_back(info.bodyOffset + info.bodySize);
            }
        } else if (ends.empty()) {
            return;
        } else {
            chunky.PopChunk();
            require(chunky.GetStreamPos() == ends.back());
            ends.pop_back();
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const * data, std::size_t size) {
    RamStream stream;
    stream.Open(0, c_streamWrite);
    stream.Write(data, static_cast<unsigned int>(size));
    stream.SetPos(0);
    Chunky chunky(&stream, 0);
    try {
        walk(chunky);
    } catch (std::exception const &) {
        // damage ends the walk
    }
    return 0;
}
