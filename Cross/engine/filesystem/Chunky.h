#pragma once

// Chunk files: a tree of chunks, each with a four-letter id, a version, an optional name and a size, so that
// readers find and skip what they do not know. A chunk is a folder, which holds chunks, or a data chunk,
// which holds bytes; typed reads and writes go into the data chunk that is open.
//
// The file: 8 magic bytes 'X' 'C' 'H' 'K' CR LF 0x1A LF, then two little-endian 32-bit words: format (1),
// platform. A chunk: five words: kind (1 folder, 2 data), id, version, body size, name length; then the bytes
// of the name, then the body. The words of chunks and typed values are in the byte order of the platform.
// docs/formats.md shows a file with all its bytes.
//
// A file may begin anywhere in a stream and reaches to the stream's end. Whether a Chunky reads or writes
// shows at its first operation. Any failure throws an exception derived from std::exception that names the
// stream and the offset; a writer that failed takes no more.
//
// Threads: those of the stream. Lifetime: the proxy form takes the stream over, the pointer form borrows it,
// and nobody else moves the stream meanwhile. A saver that has to know whether the bytes reached the file
// uses the pointer form and flushes the stream behind the last PopChunk.

#include "Cross/engine/core/Types.h"
#include "Cross/engine/filesystem/ByteStreamAdapter.h"

#include <memory>
#include <string>

class CROSS_ENGINE_API Chunky : public ByteStreamAdapter {
public:
    // What the file says of a chunk that was entered.
    class CROSS_ENGINE_API ChunkHeader {
    public:
        std::uint32_t GetVersion() const { return version; }

    private:
        friend class Chunky;
        std::uint32_t version = 0;
    };

    enum ChunkKind : std::uint32_t { CK_FOLDER = 1, CK_DATA = 2 };

    // A chunk as it stands in the file. Offsets count bytes from the start of the stream, as the positions of
    // the adapter do.
    struct ChunkInfo {
        ChunkKind kind = CK_FOLDER;
        std::uint32_t id = 0;
        std::uint32_t version = 0;
        std::string name;
        unsigned int headerOffset = 0;
        unsigned int bodyOffset = 0;
        unsigned int bodySize = 0;
    };

    // For writing, `platform` is the one the file is for; 0 writes the native one, 1. For reading, 0 takes
    // the one the file was written for, and a different explicit one throws at the first read. An empty proxy
    // or a null stream throws.
    Chunky(ByteStreamProxy & stream, PlatformType platform);
    Chunky(ByteStream * stream, PlatformType platform);

    // A writer that still has a chunk open, or that failed, discards its stream, so that no half file takes a
    // good one's place. Never throws.
    ~Chunky();

    // Begin a chunk in the file or in the open folder. What is written through the adapter goes into the data
    // chunk that is open, and SetStreamPos moves inside what was written of it. `sizeHint` may be any value,
    // -1 when unknown; it is not stored. A null name is no name.
    void WriteDataChunk(std::uint32_t id, std::uint32_t version, int sizeHint);
    void WriteDataChunkName(std::uint32_t id, std::uint32_t version, char const * name, int sizeHint);
    void WriteFolderChunkName(std::uint32_t id, std::uint32_t version, char const * name);

    // Enter the next chunk, which must be of that kind and id and no newer than `version`; an older one is
    // entered too. After an exception the position is what it was before. Reads through the adapter, and
    // SetStreamPos, do not leave the chunk: one that would throws before it reads.
    ChunkHeader ReadDataChunk(std::uint32_t id, std::uint32_t version);
    ChunkHeader ReadFolderChunk(std::uint32_t id, std::uint32_t version);

    // Tells the next chunk of the open folder, or of the file, without entering it. False at the end; damage
    // throws. In both cases `info` stays as it was.
    bool PeekChunk(ChunkInfo & info);

    // Ends the chunk entered or begun last. A reader stands behind the chunk afterwards, however much of it
    // was read.
    void PopChunk();

private:
    class BoundedStream;

    explicit Chunky(std::unique_ptr<BoundedStream> newStream);
    void begin(ChunkKind kind, std::uint32_t id, std::uint32_t version, char const * name);
    ChunkHeader enter(ChunkKind kind, std::uint32_t id, std::uint32_t version);

    std::unique_ptr<BoundedStream> bounded;
};
