#include "tools/ChunkList.h"

#include "Cross/engine/core/Text.h"

#include <algorithm>

namespace {

// Where the header of a file names its platform.
constexpr unsigned int c_platformOffset = 12;
constexpr unsigned int c_fileHeaderSize = 16;

// REQUIRES: the header of the file is there. The word is little-endian whatever the platform.
PlatformType readPlatform(ByteStream & stream) {
    unsigned char bytes[4];
    stream.SetPos(c_platformOffset);
    ByteStreamAdapter(&stream, nullptr).ReadBytes(bytes, sizeof(bytes));
    return bytes[0] | static_cast<PlatformType>(bytes[1]) << 8 | static_cast<PlatformType>(bytes[2]) << 16 |
           static_cast<PlatformType>(bytes[3]) << 24;
}

class Lister {
public:
    explicit Lister(ByteStream & stream) : stream(stream), chunky(&stream, 0) {
        list.fileSize = stream.GetLen();
        ends.push_back(list.fileSize);
    }

    ChunkList Run() {
        while (!ends.empty())
            step();
        if (!isHeaderBad)
            list.platform = readPlatform(stream);
        return std::move(list);
    }

private:
    unsigned int depth() const { return static_cast<unsigned int>(ends.size()) - 1; }

    void step() {
        Chunky::ChunkInfo chunk;
        try {
            if (!chunky.PeekChunk(chunk))
                return leaveFolder();
        } catch (std::runtime_error const & error) {
            addDamage(ChunkReason(error, stream));
            return leaveFolder();
        }
        list.entries.push_back({depth(), chunk, {}});
        if (chunk.kind == Chunky::CK_FOLDER) {
            chunky.ReadFolderChunk(chunk.id, chunk.version);
            ends.push_back(chunk.bodyOffset + chunk.bodySize);
        } else {
            chunky.SetStreamPos(chunk.bodyOffset + chunk.bodySize);
        }
    }

    void leaveFolder() {
        if (depth() > 0)
            chunky.PopChunk();
        ends.pop_back();
    }

    // What is left of the folder, or of the file.
    void addDamage(std::string reason) {
        ChunkEntry piece{depth(), {}, std::move(reason)};
        piece.chunk.headerOffset = piece.chunk.bodyOffset = chunky.GetStreamPos();
        piece.chunk.bodySize = ends.back() - piece.chunk.bodyOffset;
        isHeaderBad = piece.chunk.headerOffset < c_fileHeaderSize;
        list.entries.push_back(std::move(piece));
    }

    ByteStream & stream;
    Chunky chunky;
    ChunkList list;
    std::vector<unsigned int> ends; // of the file and of the open folders
    bool isHeaderBad = false;
};

} // namespace

std::size_t ChunkList::CountDamages() const {
    return static_cast<std::size_t>(std::count_if(
        entries.begin(), entries.end(), [](ChunkEntry const & entry) { return !entry.damage.empty(); }));
}

ChunkList ListChunks(ByteStream & stream) { return Lister(stream).Run(); }

std::string ChunkIdText(std::uint32_t id) {
    std::string letters;
    for (int shift = 24; shift >= 0; shift -= 8)
        letters += static_cast<char>(id >> shift);
    bool const arePlain = std::all_of(letters.begin(), letters.end(), [](char letter) {
        return letter > ' ' && letter <= '~' && letter != '"' && letter != '\\';
    });
    if (!arePlain)
        text::Printf(letters, "0x%08X", id);
    return letters;
}

std::string ChunkReason(std::runtime_error const & error, ByteStream const & stream) {
    std::string const message = error.what(), name = std::string("'") + stream.GetStreamName() + "'";
    std::size_t const place = message.find(name);
    if (place == std::string::npos)
        return message;
    std::size_t const colon = message.find(": ", place + name.size());
    return colon == std::string::npos ? message : message.substr(colon + 2);
}
