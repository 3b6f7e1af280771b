#include "tools/ChunkList.h"

#include "tools/ChunkValues.h"
#include "tools/NumberText.h"

#include "Cross/engine/core/Text.h"

#include <algorithm>

namespace {

// Where the header of a file names its platform.
constexpr unsigned int c_platformOffset = 12;
constexpr unsigned int c_fileHeaderSize = 16;

// The words in front of a chunk, in their order in the file.
enum HeaderWord { HW_KIND, HW_ID, HW_VERSION, HW_SIZE, HW_NAME_LENGTH, HW_COUNT };

// REQUIRES: the header of the file is there. The word is little-endian whatever the platform.
PlatformType readPlatform(ByteStream & stream) {
    unsigned char bytes[4];
    stream.SetPos(c_platformOffset);
    ByteStreamAdapter(&stream, nullptr).ReadBytes(bytes, sizeof(bytes));
    return bytes[0] | static_cast<PlatformType>(bytes[1]) << 8 | static_cast<PlatformType>(bytes[2]) << 16 |
           static_cast<PlatformType>(bytes[3]) << 24;
}

// Why the header of a file cannot be read; empty when it can.
std::string headerDamage(ByteStream & stream) {
    stream.SetPos(0);
    Chunky chunky(&stream, 0);
    try {
        Chunky::ChunkInfo first;
        chunky.PeekChunk(first);
    } catch (std::runtime_error const & error) {
        if (chunky.GetStreamPos() == 0) // else it is about the first chunk
            return ChunkReason(error, stream);
    }
    return {};
}

// Lists what Chunky would read, and goes on where it stops.
class Lister {
public:
    Lister(ByteStream & stream, unsigned int fileSize, PlatformType platform)
        : values(stream, platform), position(c_fileHeaderSize), ends{fileSize} {}

    std::vector<ChunkEntry> Run() {
        while (!ends.empty())
            step();
        return std::move(entries);
    }

private:
    void step() {
        values.Enter(position, ends.back());
        if (values.Left() == 0)
            ends.pop_back();
        else
            addNext();
    }

    void addNext() {
        std::uint32_t words[HW_COUNT];
        if (!values.Read(words, HW_COUNT))
            return addPiece("the " + CountText(values.Left(), "byte left is", "bytes left are") +
                            " too few for a chunk");
        if (words[HW_KIND] != Chunky::CK_FOLDER && words[HW_KIND] != Chunky::CK_DATA)
            return addPiece("kind " + std::to_string(words[HW_KIND]) + " is neither folder nor data");
        if (words[HW_NAME_LENGTH] > values.Left())
            return addPiece(exceedingText("name length", words[HW_NAME_LENGTH]));
        addChunk(words);
    }

    // A chunk that is too large ends where the folder does.
    void addChunk(std::uint32_t const (&words)[HW_COUNT]) {
        ChunkEntry entry = makeEntry(true);
        Chunky::ChunkInfo & chunk = entry.chunk;
        chunk.kind = static_cast<Chunky::ChunkKind>(words[HW_KIND]);
        chunk.id = words[HW_ID];
        chunk.version = words[HW_VERSION];
        chunk.name.resize(words[HW_NAME_LENGTH]);
        values.Read(chunk.name.data(), words[HW_NAME_LENGTH]);
        chunk.bodyOffset = values.Position();
        chunk.bodySize = std::min(words[HW_SIZE], values.Left());
        if (chunk.bodySize < words[HW_SIZE])
            entry.damage = exceedingText("size", words[HW_SIZE]);
        position = chunk.bodyOffset;
        if (chunk.kind == Chunky::CK_FOLDER)
            ends.push_back(entry.End());
        else
            position = entry.End();
        entries.push_back(std::move(entry));
    }

    // All that is left of the folder, or of the file.
    void addPiece(std::string reason) {
        ChunkEntry piece = makeEntry(false);
        piece.chunk.bodyOffset = position;
        piece.chunk.bodySize = ends.back() - position;
        piece.damage = std::move(reason);
        position = ends.back();
        entries.push_back(std::move(piece));
    }

    ChunkEntry makeEntry(bool isChunk) const {
        ChunkEntry entry{static_cast<unsigned int>(ends.size()) - 1, isChunk, {}, {}};
        entry.chunk.headerOffset = position;
        return entry;
    }

    std::string exceedingText(char const * what, std::uint32_t size) const {
        return std::string(what) + ' ' + std::to_string(size) + " exceeds the " +
               CountText(values.Left(), "byte", "bytes") + " left";
    }

    ChunkValues values;
    unsigned int position;
    std::vector<unsigned int> ends; // of the file and of the open folders
    std::vector<ChunkEntry> entries;
};

} // namespace

std::size_t ChunkList::CountChunks() const {
    return static_cast<std::size_t>(std::count_if(entries.begin(), entries.end(),
                                                  [](ChunkEntry const & entry) { return entry.isChunk; }));
}

std::size_t ChunkList::CountDamages() const {
    return static_cast<std::size_t>(std::count_if(
        entries.begin(), entries.end(), [](ChunkEntry const & entry) { return !entry.damage.empty(); }));
}

ChunkList ListChunks(ByteStream & stream) {
    ChunkList list;
    list.fileSize = stream.GetLen();
    if (std::string damage = headerDamage(stream); !damage.empty()) {
        list.entries.push_back({0, false, {}, std::move(damage)});
        list.entries.back().chunk.bodySize = list.fileSize;
        return list;
    }
    list.platform = readPlatform(stream);
    list.entries = Lister(stream, list.fileSize, *list.platform).Run();
    return list;
}

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
