#pragma once

// The chunks of a chunk file, and what every byte of it means, as far as damage lets them be told.

#include "Cross/engine/filesystem/Chunky.h"

#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

// A chunk, or a piece of the file that cannot be read as chunks.
struct ChunkEntry {
    unsigned int End() const { return chunk.bodyOffset + chunk.bodySize; }

    // With its header.
    unsigned int Size() const { return End() - chunk.headerOffset; }

    bool IsFolder() const { return isChunk && chunk.kind == Chunky::CK_FOLDER; }

    unsigned int depth; // number of folders around it
    bool isChunk;
    Chunky::ChunkInfo chunk; // its size is what is there; of a piece only the offsets, all of it body
    std::string damage;      // what is wrong with its header; empty for a good chunk
};

struct ChunkList {
    std::size_t CountChunks() const;
    std::size_t CountDamages() const;

    unsigned int fileSize = 0;
    std::optional<PlatformType> platform; // as the file has it; empty when its header cannot be read
    std::vector<ChunkEntry> entries;      // in the order of the file
};

// Lists a file to its end. A chunk that is larger than what is left is listed with what is there of it. What
// follows behind other damage is a piece to the end of its folder; behind the folder it goes on.
ChunkList ListChunks(ByteStream & stream);

// The letters of an id, or its number when it has others.
std::string ChunkIdText(std::uint32_t id);

// What a chunk file's reader found wrong, without the place that its message names.
std::string ChunkReason(std::runtime_error const & error, ByteStream const & stream);

// Some bytes and what they mean. None, with a size of 0, where a thing is told of the place itself.
struct ByteNote {
    unsigned int offset, size;
    std::string meaning;
};

// Gives notes that cover the file from its first byte to its last, each byte once. `note` may move the
// stream.
void AnnotateChunks(ByteStream & stream, ChunkList const & list,
                    std::function<void(ByteNote const &)> const & note);
