#include "Cross/engine/filesystem/Chunky.h"

#include "Cross/engine/core/Text.h"
#include "Cross/engine/diagnostics/Letters.h"
#include "Cross/engine/filesystem/EndianConvertor.h"

#include <algorithm>
#include <cstdarg>
#include <cstring>
#include <limits>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <vector>

namespace {

// The line ends and the end-of-file mark in the magic show a file that went through something that takes it
// for text.
constexpr unsigned char c_magic[8] = {'X', 'C', 'H', 'K', '\r', '\n', 0x1A, '\n'};
constexpr std::size_t c_magicLetters = 4;
constexpr std::uint32_t c_format = 1;
constexpr unsigned int c_fileHeaderSize = sizeof c_magic + 8;

// The words in front of a chunk, in their order in the file.
enum HeaderWord { HW_KIND, HW_ID, HW_VERSION, HW_SIZE, HW_NAME_LENGTH, HW_COUNT };

constexpr unsigned int c_wordSize = 4;
constexpr unsigned int c_chunkHeaderSize = HW_COUNT * c_wordSize;

// Stands for the size of a chunk that is still open: no reader takes it for a whole one.
constexpr std::uint32_t c_sizeUnknown = 0xFFFFFFFF;
constexpr unsigned int c_maxOffset = std::numeric_limits<unsigned int>::max();

std::uint32_t loadLittle(unsigned char const * bytes) {
    return bytes[0] | std::uint32_t{bytes[1]} << 8 | std::uint32_t{bytes[2]} << 16 |
           std::uint32_t{bytes[3]} << 24;
}

void storeLittle(unsigned char * bytes, std::uint32_t word) {
    for (unsigned int i = 0; i < c_wordSize; ++i)
        bytes[i] = static_cast<unsigned char>(word >> (8 * i));
}

[[noreturn]] CROSS_PRINTF_FORMAT(2, 3) void fail(std::string const & place, char const * format, ...) {
    std::string reason;
    std::va_list arguments;
    va_start(arguments, format);
    text::VPrintf(reason, format, arguments);
    va_end(arguments);
    throw std::runtime_error(place + ": " + reason);
}

std::string lettersOf(std::uint32_t id) {
    char letters[5];
    dbDecode4Letters(letters, id);
    return letters;
}

char const * nameOf(Chunky::ChunkKind kind) { return kind == Chunky::CK_FOLDER ? "folder" : "data chunk"; }

// A chunk that is entered or begun. The file itself is one too: a folder around all others.
struct OpenChunk {
    Chunky::ChunkKind kind = Chunky::CK_FOLDER;
    std::uint32_t id = 0;
    unsigned int headerOffset = 0;
    unsigned int bodyOffset = 0;
    unsigned int end = 0; // of what was written so far, when writing
};

struct PositionGuard {
    ByteStream & stream;
    unsigned int position;

    ~PositionGuard() { stream.SetPos(position); }
};

} // namespace

// The chunk file, and at the same time the stream that the adapter works on: the file's stream cut to the
// body of the open chunk.
class Chunky::BoundedStream final : public ByteStream {
public:
    BoundedStream(ByteStream & file, ByteStreamProxy const & owner, PlatformType platform);
    ~BoundedStream() override;

    bool IsOpen() const override { return file.IsOpen(); }

    unsigned int Read(void * buffer, unsigned int size) override;
    unsigned int Write(void const * buffer, unsigned int size) override;

    unsigned int GetLen() override { return current.end; }

    StreamMode GetMode() const override { return file.GetMode(); }

    bool Flush() override { return file.Flush(); }

    void SetPos(unsigned int newPosition) override;

    unsigned int GetPos() override { return position; }

    // The first call decides what is done with the file, and sets the converter of `values` that its platform
    // needs.
    void StartReading(ByteStreamAdapter & values);
    void StartWriting(ByteStreamAdapter & values);

    void Begin(ChunkKind kind, std::uint32_t id, std::uint32_t version, std::string_view name);
    std::uint32_t Enter(ChunkKind kind, std::uint32_t id, std::uint32_t version);
    bool Peek(ChunkInfo & info);
    void Pop();

private:
    enum class Direction { Undecided, Reading, Writing };

    PlatformType readFileHeader();
    void writeFileHeader();
    void setPlatform(PlatformType newPlatform, ByteStreamAdapter & values);
    void requireData(Direction wanted) const;
    void requireFolder() const;
    void requireSound() const;
    bool readNext(ChunkInfo & info, bool withName);
    void requireFits(std::uint32_t const (&words)[HW_COUNT], unsigned int left) const;
    void patchSize();

    std::string filePlace() const;
    std::string chunkPlace(std::uint32_t id, unsigned int offset) const;
    std::string currentPlace() const;

    ByteStream & file;
    PlatformType platform;
    std::optional<EndianConvertor> converter;
    ByteStreamAdapter headers;
    Direction direction = Direction::Undecided;
    bool failed = false; // while a write is under way, and for good when it failed
    unsigned int position;
    OpenChunk current;
    std::vector<OpenChunk> parents; // of `current`, the file first
    ByteStreamProxy owned;
};

Chunky::BoundedStream::BoundedStream(ByteStream & file, ByteStreamProxy const & owner, PlatformType platform)
    : ByteStream(file.GetStreamName()),
      file(file),
      platform(platform),
      headers(&file, nullptr),
      position(file.GetPos()),
      owned(owner) {
    current.headerOffset = current.bodyOffset = current.end = position;
}

Chunky::BoundedStream::~BoundedStream() {
    if (direction == Direction::Writing && (failed || !parents.empty()))
        file.Discard();
}

unsigned int Chunky::BoundedStream::Read(void * buffer, unsigned int size) {
    requireData(Direction::Reading);
    if (size > current.end - position)
        fail(currentPlace(), "%u bytes at offset %u exceed the %u bytes left", size, position,
             current.end - position);
    unsigned int const done = file.Read(buffer, size);
    position += done;
    return done;
}

unsigned int Chunky::BoundedStream::Write(void const * buffer, unsigned int size) {
    requireData(Direction::Writing);
    requireSound();
    failed = true;
    if (size > c_maxOffset - position)
        fail(currentPlace(), "%u bytes at offset %u reach beyond 4 GiB", size, position);
    unsigned int const done = file.Write(buffer, size);
    failed = done != size;
    position += done;
    current.end = std::max(current.end, position);
    return done;
}

void Chunky::BoundedStream::SetPos(unsigned int newPosition) {
    // Between the chunks of a folder a reader may go back to one that it has seen; a writer only goes on.
    bool const fixed = direction == Direction::Writing && current.kind == CK_FOLDER;
    unsigned int const first = fixed ? current.end : current.bodyOffset;
    if (newPosition < first || newPosition > current.end)
        fail(currentPlace(), "position %u is not from %u to %u", newPosition, first, current.end);
    file.SetPos(newPosition);
    position = newPosition;
}

void Chunky::BoundedStream::StartReading(ByteStreamAdapter & values) {
    if (direction == Direction::Reading)
        return;
    if (direction == Direction::Writing)
        fail(filePlace(), "the chunk file is being written and cannot be read");
    setPlatform(readFileHeader(), values);
    direction = Direction::Reading;
    current.bodyOffset = position + c_fileHeaderSize;
    current.end = std::max(file.GetLen(), current.bodyOffset);
    SetPos(current.bodyOffset);
}

void Chunky::BoundedStream::StartWriting(ByteStreamAdapter & values) {
    requireSound();
    if (direction == Direction::Writing)
        return;
    if (direction == Direction::Reading)
        fail(filePlace(), "the chunk file is being read and cannot be written");
    direction = Direction::Writing;
    setPlatform(platform, values);
    writeFileHeader();
}

// Gives the platform. The position stays where it is.
PlatformType Chunky::BoundedStream::readFileHeader() {
    PositionGuard const putBack{file, position};
    unsigned char header[c_fileHeaderSize];
    unsigned int const size = file.Read(header, sizeof header);
    if (size != sizeof header)
        fail(filePlace(), "only %u of the %u bytes of a chunk file's header are there", size,
             c_fileHeaderSize);
    if (std::memcmp(header, c_magic, sizeof c_magic) != 0) {
        bool const mangled = std::memcmp(header, c_magic, c_magicLetters) == 0;
        fail(filePlace(), mangled ? "the chunk file was damaged by a conversion of its line ends"
                                  : "this is no chunk file");
    }
    std::uint32_t const format = loadLittle(header + sizeof c_magic);
    if (format != c_format)
        fail(filePlace(), "chunk file format %u is not known, only %u is", format, c_format);
    std::uint32_t const stored = loadLittle(header + sizeof c_magic + c_wordSize);
    if (platform != 0 && platform != stored)
        fail(filePlace(), "the chunk file was written for platform %u, not for platform %u", stored,
             platform);
    return stored;
}

void Chunky::BoundedStream::writeFileHeader() {
    unsigned char header[c_fileHeaderSize];
    std::memcpy(header, c_magic, sizeof c_magic);
    storeLittle(header + sizeof c_magic, c_format);
    storeLittle(header + sizeof c_magic + c_wordSize, platform);
    failed = true;
    headers.WriteBytes(header, sizeof header);
    failed = false;
    position += c_fileHeaderSize;
    current.bodyOffset = current.end = position;
}

void Chunky::BoundedStream::setPlatform(PlatformType newPlatform, ByteStreamAdapter & values) {
    platform = newPlatform == 0 ? c_nativePlatform : newPlatform;
    if (!EndianConvertor::IsSwapped(platform))
        return;
    converter.emplace(platform);
    headers.SetConverter(&*converter);
    values.SetConverter(&*converter);
}

void Chunky::BoundedStream::Begin(ChunkKind kind, std::uint32_t id, std::uint32_t version,
                                  std::string_view name) {
    requireFolder();
    failed = true;
    std::uint64_t const bodyOffset = std::uint64_t{position} + c_chunkHeaderSize + name.size();
    if (bodyOffset > c_maxOffset)
        fail(chunkPlace(id, position), "the chunk reaches beyond 4 GiB");
    auto const nameLength = static_cast<std::uint32_t>(name.size());
    std::uint32_t const words[HW_COUNT] = {kind, id, version, c_sizeUnknown, nameLength};
    headers.Write(words, HW_COUNT);
    headers.WriteBytes(name.data(), nameLength);
    parents.push_back(current);
    failed = false;
    current = {kind, id, position, static_cast<unsigned int>(bodyOffset),
               static_cast<unsigned int>(bodyOffset)};
    position = current.bodyOffset;
}

// Gives the version of the chunk.
std::uint32_t Chunky::BoundedStream::Enter(ChunkKind kind, std::uint32_t id, std::uint32_t version) {
    requireFolder();
    ChunkInfo next;
    if (!readNext(next, false))
        fail(filePlace(), "%s '%s' is expected, but nothing is left", nameOf(kind), lettersOf(id).c_str());
    if (next.kind != kind || next.id != id)
        fail(chunkPlace(next.id, next.headerOffset), "it is a %s, where %s '%s' is expected",
             nameOf(next.kind), nameOf(kind), lettersOf(id).c_str());
    if (next.version > version)
        fail(chunkPlace(next.id, next.headerOffset), "version %u is newer than %u, the newest known",
             next.version, version);
    parents.push_back(current);
    current = {kind, id, next.headerOffset, next.bodyOffset, next.bodyOffset + next.bodySize};
    SetPos(current.bodyOffset);
    return next.version;
}

bool Chunky::BoundedStream::Peek(ChunkInfo & info) {
    requireFolder();
    ChunkInfo next;
    if (!readNext(next, true))
        return false;
    info = std::move(next);
    return true;
}

// The header of the next chunk, once its sizes are known to fit; false at the end of the folder. The position
// stays where it is.
bool Chunky::BoundedStream::readNext(ChunkInfo & info, bool withName) {
    unsigned int const left = current.end - position;
    if (left == 0)
        return false;
    if (left < c_chunkHeaderSize)
        fail(filePlace(), "the %u bytes left are too few for a chunk", left);
    PositionGuard const putBack{file, position};
    std::uint32_t words[HW_COUNT];
    headers.Read(words, HW_COUNT);
    requireFits(words, left - c_chunkHeaderSize);

    info.kind = static_cast<ChunkKind>(words[HW_KIND]);
    info.id = words[HW_ID];
    info.version = words[HW_VERSION];
    info.headerOffset = position;
    info.bodyOffset = position + c_chunkHeaderSize + words[HW_NAME_LENGTH];
    info.bodySize = words[HW_SIZE];
    if (withName) {
        info.name.resize(words[HW_NAME_LENGTH]);
        headers.ReadBytes(info.name.data(), words[HW_NAME_LENGTH]);
    }
    return true;
}

void Chunky::BoundedStream::requireFits(std::uint32_t const (&words)[HW_COUNT], unsigned int left) const {
    std::uint32_t const id = words[HW_ID];
    std::uint32_t const nameLength = words[HW_NAME_LENGTH];
    if (words[HW_KIND] != CK_FOLDER && words[HW_KIND] != CK_DATA)
        fail(chunkPlace(id, position), "kind %u is neither folder nor data", words[HW_KIND]);
    if (nameLength > left)
        fail(chunkPlace(id, position), "name length %u exceeds the %u bytes left", nameLength, left);
    if (words[HW_SIZE] > left - nameLength)
        fail(chunkPlace(id, position), "size %u exceeds the %u bytes left", words[HW_SIZE],
             left - nameLength);
}

void Chunky::BoundedStream::Pop() {
    requireSound();
    if (parents.empty())
        fail(filePlace(), "there is no open chunk to end");
    if (direction == Direction::Writing)
        patchSize();
    file.SetPos(current.end);
    position = current.end;
    current = parents.back();
    parents.pop_back();
    if (direction == Direction::Writing)
        current.end = position;
}

void Chunky::BoundedStream::patchSize() {
    failed = true;
    file.SetPos(current.headerOffset + HW_SIZE * c_wordSize);
    headers.Write(static_cast<std::uint32_t>(current.end - current.bodyOffset));
    failed = false;
}

void Chunky::BoundedStream::requireData(Direction wanted) const {
    if (current.kind != CK_DATA)
        fail(currentPlace(), "no data chunk is open to read or write bytes in");
    if (direction != wanted)
        fail(currentPlace(), direction == Direction::Writing
                                 ? "the chunk is being written and cannot be read"
                                 : "the chunk is being read and cannot be written");
}

void Chunky::BoundedStream::requireFolder() const {
    if (current.kind != CK_FOLDER)
        fail(currentPlace(), "a data chunk holds no chunks");
}

void Chunky::BoundedStream::requireSound() const {
    if (failed)
        fail(filePlace(), "an earlier write failed, the chunk file is given up");
}

std::string Chunky::BoundedStream::filePlace() const {
    return std::string("'") + GetStreamName() + "' at offset " + std::to_string(position);
}

std::string Chunky::BoundedStream::chunkPlace(std::uint32_t id, unsigned int offset) const {
    return "chunk '" + lettersOf(id) + "' at offset " + std::to_string(offset) + " of '" + GetStreamName() +
           "'";
}

std::string Chunky::BoundedStream::currentPlace() const {
    return parents.empty() ? filePlace() : chunkPlace(current.id, current.headerOffset);
}

namespace {

ByteStream & required(ByteStream * stream) {
    if (!stream)
        throw std::invalid_argument("a chunk file needs an open stream");
    return *stream;
}

} // namespace

Chunky::Chunky(std::unique_ptr<BoundedStream> newStream)
    : ByteStreamAdapter(newStream.get(), nullptr), bounded(std::move(newStream)) {}

Chunky::Chunky(ByteStreamProxy & stream, PlatformType platform)
    : Chunky(std::make_unique<BoundedStream>(required(stream.Get()), stream, platform)) {}

Chunky::Chunky(ByteStream * stream, PlatformType platform)
    : Chunky(std::make_unique<BoundedStream>(required(stream), ByteStreamProxy(), platform)) {}

Chunky::~Chunky() = default;

void Chunky::WriteDataChunk(std::uint32_t id, std::uint32_t version, int) { begin(CK_DATA, id, version, ""); }

void Chunky::WriteDataChunkName(std::uint32_t id, std::uint32_t version, char const * name, int) {
    begin(CK_DATA, id, version, name);
}

void Chunky::WriteFolderChunkName(std::uint32_t id, std::uint32_t version, char const * name) {
    begin(CK_FOLDER, id, version, name);
}

Chunky::ChunkHeader Chunky::ReadDataChunk(std::uint32_t id, std::uint32_t version) {
    return enter(CK_DATA, id, version);
}

Chunky::ChunkHeader Chunky::ReadFolderChunk(std::uint32_t id, std::uint32_t version) {
    return enter(CK_FOLDER, id, version);
}

bool Chunky::PeekChunk(ChunkInfo & info) {
    bounded->StartReading(*this);
    return bounded->Peek(info);
}

void Chunky::PopChunk() { bounded->Pop(); }

void Chunky::begin(ChunkKind kind, std::uint32_t id, std::uint32_t version, char const * name) {
    bounded->StartWriting(*this);
    bounded->Begin(kind, id, version, name ? name : "");
}

Chunky::ChunkHeader Chunky::enter(ChunkKind kind, std::uint32_t id, std::uint32_t version) {
    bounded->StartReading(*this);
    ChunkHeader header;
    header.version = bounded->Enter(kind, id, version);
    return header;
}
