#include "tools/AddVerb.h"
#include "tools/ChunkList.h"
#include "tools/InputFile.h"
#include "tools/NumberText.h"
#include "tools/Quote.h"

#include "Cross/engine/core/Text.h"

#include <algorithm>
#include <iomanip>
#include <ostream>

namespace {

struct ListArguments {
    std::string file;
    bool asJson = false, asHex = false;
};

constexpr unsigned int c_bytesPerLine = 16;
constexpr unsigned int c_deepestIndent = 32; // deeper chunks tell their depth: a line stays short

std::string shareText(ChunkEntry const & entry, ChunkList const & list) {
    std::string share;
    text::Printf(share, "%.1f", 100.0 * entry.Size() / std::max(list.fileSize, 1u));
    return share;
}

char const * kindText(Chunky::ChunkInfo const & chunk) {
    return chunk.kind == Chunky::CK_FOLDER ? "folder" : "data";
}

std::string summary(ChunkList const & list) {
    std::size_t const damages = list.CountDamages();
    return CountText(list.CountChunks(), "chunk", "chunks") + ", " +
           CountText(list.fileSize, "byte", "bytes") +
           (list.platform ? ", platform " + std::to_string(*list.platform) : "") +
           (damages > 0 ? ", " + CountText(damages, "error", "errors") : "");
}

std::string entryText(ChunkEntry const & entry) {
    std::string const damage = entry.damage.empty() ? "" : "damaged: " + entry.damage;
    if (!entry.isChunk)
        return damage;
    std::string const name = entry.chunk.name.empty() ? "" : " " + Quote(entry.chunk.name);
    return std::string(kindText(entry.chunk)) + ' ' + Quote(ChunkIdText(entry.chunk.id)) + " version " +
           std::to_string(entry.chunk.version) + name + (damage.empty() ? "" : ", " + damage);
}

void printTree(ChunkList const & list, std::ostream & out) {
    out << "    offset      bytes       body  % of file  chunk\n";
    for (ChunkEntry const & entry : list.entries) {
        bool const isDeep = entry.depth > c_deepestIndent;
        out << std::setw(10) << entry.chunk.headerOffset << std::setw(11) << entry.Size() << std::setw(11)
            << entry.chunk.bodySize << std::setw(11) << shareText(entry, list) << "  "
            << std::string(4 * std::min(entry.depth, c_deepestIndent), ' ')
            << (isDeep ? "(depth " + std::to_string(entry.depth) + ") " : "") << entryText(entry) << '\n';
    }
}

void printJsonEntry(ChunkEntry const & entry, ChunkList const & list, std::ostream & out) {
    Chunky::ChunkInfo const & chunk = entry.chunk;
    out << "{\"offset\": " << chunk.headerOffset << ", \"bytes\": " << entry.Size()
        << ", \"percent\": " << shareText(entry, list);
    if (!entry.damage.empty())
        out << ", \"damage\": " << QuoteJson(entry.damage);
    if (!entry.isChunk)
        return;
    out << ", \"kind\": \"" << kindText(chunk) << "\", \"id\": " << QuoteJson(ChunkIdText(chunk.id))
        << ", \"version\": " << chunk.version << ", \"name\": " << QuoteJson(chunk.name)
        << ", \"body\": " << chunk.bodySize;
    if (entry.IsFolder())
        out << ", \"chunks\": [";
}

// Ends the entries that are open at a depth and below, by the texts that end them.
void closeTo(std::vector<char const *> & ends, unsigned int depth, std::ostream & out) {
    for (; ends.size() > depth; ends.pop_back())
        out << ends.back();
}

void printJson(ChunkList const & list, std::string const & file, std::ostream & out) {
    out << "{\"verdict\": \"" << (list.CountDamages() == 0 ? "good" : "damaged")
        << "\", \"file\": " << QuoteJson(file) << ", \"bytes\": " << list.fileSize
        << ", \"platform\": " << (list.platform ? std::to_string(*list.platform) : "null")
        << ", \"chunks\": [";
    std::vector<char const *> ends;
    for (ChunkEntry const & entry : list.entries) {
        bool const isFirst = ends.size() == entry.depth;
        closeTo(ends, entry.depth, out);
        out << (isFirst ? "\n" : ",\n");
        printJsonEntry(entry, list, out);
        ends.push_back(entry.IsFolder() ? "]}" : "}");
    }
    closeTo(ends, 0, out);
    out << "\n]}\n";
}

// "01 02 03" of bytes of a file.
std::string digitsAt(ByteStream & stream, unsigned int offset, unsigned int size) {
    unsigned char bytes[c_bytesPerLine];
    stream.SetPos(offset);
    ByteStreamAdapter(&stream, nullptr).ReadBytes(bytes, size);
    std::string digits, byte;
    for (unsigned int i = 0; i < size; ++i) {
        text::Printf(byte, i == 0 ? "%02X" : " %02X", bytes[i]);
        digits += byte;
    }
    return digits;
}

// The bytes of a note, some to a line, its meaning beside the first.
void printNote(ByteStream & stream, ByteNote const & note, std::ostream & out) {
    unsigned int done = std::min(note.size, c_bytesPerLine);
    out << std::setw(10) << note.offset << "  " << std::left << std::setw(3 * c_bytesPerLine + 1)
        << digitsAt(stream, note.offset, done) << std::right << note.meaning << '\n';
    while (done < note.size) {
        unsigned int const size = std::min(note.size - done, c_bytesPerLine);
        out << std::setw(10) << note.offset + done << "  " << digitsAt(stream, note.offset + done, size)
            << '\n';
        done += size;
    }
}

ExitCode list(ListArguments const & arguments, Output const & output) {
    Lines reasons;
    ByteStreamProxy const stream = OpenForReading(arguments.file, reasons);
    if (!stream)
        return Fail(output, reasons);
    ChunkList const list = ListChunks(*stream);
    bool const isGood = list.CountDamages() == 0;
    if (arguments.asJson) {
        printJson(list, arguments.file, output.out);
    } else {
        output.out << (isGood ? "good: " : "damaged: ") << arguments.file << ": " << summary(list) << '\n';
        if (arguments.asHex)
            AnnotateChunks(*stream, list,
                           [&](ByteNote const & note) { printNote(*stream, note, output.out); });
        else
            printTree(list, output.out);
    }
    return isGood ? exitGood : exitFinding;
}

} // namespace

void AddChunkVerbs(CLI::App & app, Job & job) {
    CLI::App & chunk = AddGroup(app, "chunk", "Chunk files of any content");
    CLI::App & verb =
        AddVerb(chunk, "list", "Print the tree of chunks, of damaged files as far as it goes; 1 for damage",
                "tank.msh --hex");
    auto const arguments = SetWork(verb, job, list);
    AddFile(verb, "FILE", arguments->file, "The chunk file");
    CLI::Option * const json = AddJson(verb, arguments->asJson);
    verb.add_flag("--hex", arguments->asHex, "Print every byte of the file and what it means")
        ->excludes(json);
}
