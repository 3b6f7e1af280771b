// Any bytes as a chunk file that people want to see: whatever is wrong with it, every byte is told once, the
// entries nest, and what is called good can be walked by the library.

#include "tests/support/StreamBytes.h"
#include "tools/ChunkList.h"

#include <cstdint>
#include <cstdlib>

namespace {

void demand(bool holds) {
    if (!holds)
        std::abort();
}

void demandNesting(ChunkList const & list) {
    std::vector<unsigned int> ends{list.fileSize};
    for (ChunkEntry const & entry : list.entries) {
        demand(entry.depth < ends.size());
        ends.resize(entry.depth + 1);
        demand(entry.chunk.headerOffset <= entry.chunk.bodyOffset && entry.End() <= ends.back());
        demand(entry.damage.empty() || entry.End() == ends.back());
        if (entry.damage.empty() && entry.chunk.kind == Chunky::CK_FOLDER)
            ends.push_back(entry.End());
    }
}

void demandNotes(ByteStream & stream, ChunkList const & list) {
    std::uint64_t next = 0;
    AnnotateChunks(stream, list, [&next](ByteNote const & note) {
        demand(note.offset == next);
        next += note.size;
    });
    demand(next == list.fileSize);
}

// REQUIRES: the list has no damage.
void demandWalk(ByteStream & stream, ChunkList const & list) {
    stream.SetPos(0);
    Chunky chunky(&stream, 0);
    Chunky::ChunkInfo chunk;
    for (ChunkEntry const & entry : list.entries)
        if (entry.depth == 0) {
            demand(chunky.PeekChunk(chunk) && chunk.headerOffset == entry.chunk.headerOffset);
            chunky.SetStreamPos(entry.End());
        }
    demand(!chunky.PeekChunk(chunk));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const * data, std::size_t size) {
    FilledStream stream(std::string_view(reinterpret_cast<char const *>(data), size));
    ChunkList const list = ListChunks(stream);
    demandNesting(list);
    demandNotes(stream, list);
    if (list.CountDamages() == 0)
        demandWalk(stream, list);
    return 0;
}
