// Any bytes as a chunk file that people want to see: whatever is wrong with it, every byte is told once, the
// entries nest, and good is what the library reads to the end. The check of meshes takes any bytes, too.

#include "tests/support/StreamBytes.h"
#include "tools/ChunkList.h"
#include "tools/MeshCheck.h"

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
        if (entry.IsFolder())
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

// Whether the library reads all headers of a file.
bool walks(ByteStream & stream) {
    stream.SetPos(0);
    Chunky chunky(&stream, 0);
    unsigned int depth = 0;
    try {
        for (Chunky::ChunkInfo chunk;;) {
            if (chunky.PeekChunk(chunk)) {
                if (chunk.kind == Chunky::CK_FOLDER) {
                    chunky.ReadFolderChunk(chunk.id, chunk.version);
                    ++depth;
                } else {
                    chunky.SetStreamPos(chunk.bodyOffset + chunk.bodySize);
                }
            } else if (depth-- > 0) {
                chunky.PopChunk();
            } else {
                return true;
            }
        }
    } catch (std::runtime_error const &) {
        return false;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const * data, std::size_t size) {
    FilledStream stream(std::string_view(reinterpret_cast<char const *>(data), size));
    ChunkList const list = ListChunks(stream);
    demandNesting(list);
    demandNotes(stream, list);
    CheckMeshes(stream);
    demand(walks(stream) == (list.CountDamages() == 0));
    return 0;
}
