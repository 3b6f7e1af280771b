#pragma once

// Small chunk files to read.

#include "Cross/engine/filesystem/Chunky.h"
#include "tests/support/StreamBytes.h"

// The bytes of a file with what `write` puts in it.
template <class Write>
std::string ChunkFile(PlatformType platform, Write const & write) {
    FilledStream stream;
    Chunky file(stream, platform);
    write(file);
    return stream.Content();
}

inline void WriteData(Chunky & file, std::uint32_t id, std::uint32_t version, std::string const & bytes) {
    file.WriteDataChunk(id, version, -1);
    file.WriteBytes(bytes.data(), static_cast<unsigned int>(bytes.size()));
    file.PopChunk();
}
