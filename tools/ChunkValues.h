#pragma once

// Values from a piece of a chunk file, whatever wrote them, in the byte order of the file's platform. Others
// may move the stream between the reads.

#include "Cross/engine/filesystem/ByteStreamAdapter.h"
#include "Cross/engine/filesystem/EndianConvertor.h"

#include <algorithm>
#include <string>

class ChunkValues {
public:
    ChunkValues(ByteStream & stream, PlatformType platform)
        : stream(stream), converter(platform), adapter(&stream, &converter) {}

    // The piece to read from: bytes of the stream from `begin` to in front of `newEnd`.
    void Enter(unsigned int begin, unsigned int newEnd) {
        position = begin;
        end = newEnd;
    }

    unsigned int Position() const { return position; }

    unsigned int Left() const { return end - position; }

    void Skip(unsigned int size) { position += std::min(size, Left()); }

    // False, with nothing read, when the piece ends in front of their end.
    template <StreamValue T>
    bool Read(T * values, unsigned int count) {
        if (Left() / sizeof(T) < count)
            return false;
        stream.SetPos(position);
        adapter.Read(values, count);
        position += count * static_cast<unsigned int>(sizeof(T));
        return true;
    }

    // A text as ByteStreamAdapter::WriteString stores it.
    bool ReadText(std::string & text) {
        unsigned int const begin = position;
        std::uint32_t length = 0;
        if (Read(&length, 1) && length <= Left()) {
            text.resize(length);
            return Read(text.data(), length);
        }
        position = begin;
        return false;
    }

private:
    ByteStream & stream;
    EndianConvertor converter;
    ByteStreamAdapter adapter;
    unsigned int position = 0, end = 0;
};
