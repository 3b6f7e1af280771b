#include "tools/ChunkList.h"
#include "tools/ChunkValues.h"
#include "tools/NumberText.h"
#include "tools/Quote.h"
#include "tools/TableNotes.h"

#include "Cross/engine/core/Text.h"
#include "Cross/engine/core/Types.h"

#include <algorithm>

namespace {

constexpr unsigned int c_magicSize = 8, c_wordSize = 4;

std::string kindText(std::uint32_t kind) {
    switch (kind) {
    case Chunky::CK_FOLDER:
        return "folder";
    case Chunky::CK_DATA:
        return "data chunk";
    default:
        return "kind " + std::to_string(kind);
    }
}

std::string hexText(std::uint32_t value) {
    std::string text;
    text::Printf(text, "0x%08X", value);
    return text;
}

// Walks a file from its first byte to its last. The functions that give a bool note the next value of the
// piece that is entered; false, with nothing noted, when the piece ends inside of it.
class Annotator {
public:
    Annotator(ByteStream & stream, ChunkList const & list, std::function<void(ByteNote const &)> const & note)
        : list(list), values(stream, list.platform.value_or(c_nativePlatform)), note(note) {}

    void Run() {
        if (list.platform)
            noteFileHeader();
        for (ChunkEntry const & entry : list.entries) {
            values.Enter(entry.chunk.headerOffset, entry.End());
            if (!entry.damage.empty())
                note({values.Position(), 0, "damaged: " + entry.damage});
            if (entry.isChunk)
                noteChunk(entry.chunk);
            else
                notePiece();
        }
    }

private:
    void noteFileHeader() {
        note({0, c_magicSize, "magic"});
        note({c_magicSize, c_wordSize, "format 1"});
        note({c_magicSize + c_wordSize, c_wordSize, "platform " + std::to_string(*list.platform)});
    }

    void notePiece() {
        if (list.platform)
            noteChunkHeader();
        noteRest("not read");
    }

    void noteChunk(Chunky::ChunkInfo const & chunk) {
        noteChunkHeader();
        if (!chunk.name.empty())
            noteBytes(static_cast<unsigned int>(chunk.name.size()), "name " + Quote(chunk.name));
        if (chunk.kind == Chunky::CK_DATA)
            noteBody(chunk);
    }

    bool noteChunkHeader() {
        return noteWord(kindText) && noteWord([](std::uint32_t id) { return Quote(ChunkIdText(id)); }) &&
               noteNumber<std::uint32_t>("version") && noteNumber<std::uint32_t>("bytes of body") &&
               noteNumber<std::uint32_t>("bytes of name");
    }

    void noteBody(Chunky::ChunkInfo const & chunk) {
        for (Content const & content : c_contents)
            if (content.id == chunk.id && chunk.version <= content.newestVersion) {
                bool const isWhole = (this->*content.noteContent)(chunk.version);
                if (!isWhole)
                    note({values.Position(), 0, "ends early: the chunk is too short for its content"});
                return noteRest(isWhole ? "behind the content" : "not read");
            }
        noteRest("data");
    }

    bool noteVolume(std::uint32_t version) {
        bool hasSphere = false, isValid = false;
        return (version != 1 || noteFlag("has a sphere", hasSphere)) && noteFlag("is valid", isValid) &&
               (!hasSphere || (noteFloats("sphere centre", 3) && noteFloats("sphere radius", 1))) &&
               (!isValid ||
                (noteFloats("box centre", 3) && noteFloats("box extents", 3) && noteFloats("box axis", 3) &&
                 noteFloats("box axis", 3) && noteFloats("box axis", 3)));
    }

    bool noteMesh(std::uint32_t) {
        std::int32_t vertices = 0, indices = 0;
        if (!noteNumber("vertices", vertices) || !noteNumber("indices", indices))
            return false;
        for (std::int32_t i = 0; i < vertices; ++i)
            if (!noteFloats("vertex " + std::to_string(i), 3))
                return false;
        for (std::int32_t i = 0; i < indices; i += 3)
            if (!noteTriangle(i / 3, std::min(3, indices - i)))
                return false;
        return true;
    }

    bool noteTriangle(std::int32_t number, int count) {
        std::uint16_t corners[3];
        return noteValues("triangle " + std::to_string(number), corners, count,
                          [](std::uint16_t corner) { return std::to_string(corner); });
    }

    bool noteMeshCount(std::uint32_t) { return noteNumber<std::int32_t>("meshes"); }

    bool noteMeshName(std::uint32_t) { return noteText("mesh"); }

    bool noteDictionary(std::uint32_t) {
        std::uint32_t count = 0;
        if (!noteNumber("texts", count))
            return false;
        for (std::uint32_t i = 0; i < count; ++i)
            if (!noteWord([](std::uint32_t key) { return "key " + hexText(key); }) || !noteText("text"))
                return false;
        return true;
    }

    bool noteTable(std::uint32_t) {
        std::uint32_t size = 0;
        if (!noteWord([](std::uint32_t crc) { return "crc " + hexText(crc); }) ||
            !noteNumber("bytes of image", size) || size > values.Left())
            return false;
        unsigned int const begin = values.Position();
        std::string image(size, '\0');
        values.Read(image.data(), size);
        AnnotateTable(image, begin, note);
        return true;
    }

    template <class Text>
    bool noteWord(Text const & textOf) {
        std::uint32_t word = 0;
        return noteValues("", &word, 1, textOf);
    }

    template <class T>
    bool noteNumber(char const * name, T & value) {
        return noteValues(name, &value, 1, [](T number) { return std::to_string(number); });
    }

    template <class T>
    bool noteNumber(char const * name) {
        T value;
        return noteNumber(name, value);
    }

    bool noteFlag(char const * name, bool & flag) {
        return noteValues(name, &flag, 1, [](bool value) { return value ? "true" : "false"; });
    }

    bool noteFloats(std::string const & name, int count) {
        float numbers[3];
        return noteValues(name, numbers, count, FloatText<float>);
    }

    bool noteText(char const * name) {
        unsigned int const begin = values.Position();
        std::string text;
        if (!values.ReadText(text))
            return false;
        note({begin, c_wordSize, std::string(name) + " of " + CountText(text.size(), "byte", "bytes")});
        if (!text.empty())
            noteFrom(begin + c_wordSize, Quote(text));
        return true;
    }

    // `count` values, one behind the other, as one note.
    template <class T, class Text>
    bool noteValues(std::string const & name, T * read, int count, Text const & textOf) {
        unsigned int const begin = values.Position();
        if (!values.Read(read, static_cast<unsigned int>(count)))
            return false;
        std::string meaning = name;
        for (int i = 0; i < count; ++i)
            meaning += (meaning.empty() ? "" : " ") + std::string(textOf(read[i]));
        noteFrom(begin, meaning);
        return true;
    }

    void noteRest(char const * meaning) {
        if (values.Left() > 0)
            noteBytes(values.Left(), meaning);
    }

    void noteBytes(unsigned int size, std::string const & meaning) {
        unsigned int const begin = values.Position();
        values.Skip(size);
        noteFrom(begin, meaning);
    }

    // The bytes from `begin` to where the values stand now.
    void noteFrom(unsigned int begin, std::string const & meaning) {
        note({begin, values.Position() - begin, meaning});
    }

    struct Content {
        std::uint32_t id, newestVersion;
        bool (Annotator::*noteContent)(std::uint32_t version);
    };

    // What the library itself keeps in chunks.
    static constexpr Content c_contents[] = {
        {FourCC("AEGD"), 1, &Annotator::noteTable},    {FourCC("BMSH"), 1, &Annotator::noteMesh},
        {FourCC("BVOL"), 2, &Annotator::noteVolume},   {FourCC("DICT"), 1, &Annotator::noteDictionary},
        {FourCC("MSHI"), 1, &Annotator::noteMeshName}, {FourCC("MSLI"), 1, &Annotator::noteMeshCount},
    };

    ChunkList const & list;
    ChunkValues values;
    std::function<void(ByteNote const &)> const & note;
};

} // namespace

void AnnotateChunks(ByteStream & stream, ChunkList const & list,
                    std::function<void(ByteNote const &)> const & note) {
    Annotator(stream, list, note).Run();
}
