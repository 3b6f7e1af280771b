#include "tools/TableFile.h"

#include "tools/ChunkList.h"
#include "tools/InputFile.h"
#include "tools/NumberText.h"

#include "Cross/Util/BinaryConfigIO.h"
#include "Cross/engine/core/Text.h"
#include "Cross/engine/core/Types.h"
#include "Cross/engine/filesystem/Chunky.h"

#include <zlib.h>

#include <algorithm>
#include <cstdarg>

namespace {

constexpr std::uint32_t c_chunkId = FourCC("AEGD");
constexpr std::uint32_t c_chunkVersion = 1;

// The words `crc` and `size` in front of the image.
constexpr unsigned int c_prefixSize = 8;

// Where a chunk file names its platform, and the first platform whose words are swapped.
constexpr unsigned int c_platformOffset = 12;
constexpr std::uint32_t c_firstForeignPlatform = 2;

// Checks one open file and collects what is wrong with it.
class FileCheck {
public:
    FileCheck(ByteStream & stream, std::vector<std::string> & findings)
        : stream(stream), findings(findings) {}

    TableState Run() {
        try {
            checkFile();
        } catch (std::runtime_error const & error) {
            // The chunk layer leaves the stream where the damage begins.
            find(stream.GetPos(), "%s", ChunkReason(error, stream).c_str());
        }
        if (isForeign)
            return TableState::failed;
        return findings.empty() ? TableState::good : TableState::damaged;
    }

private:
    void checkFile() {
        Chunky chunky(&stream, 0);
        Chunky::ChunkInfo chunk;
        if (!chunky.PeekChunk(chunk))
            return find(stream.GetLen(), "the file ends where the table should begin");
        if (!checkHeader(chunk))
            return;
        chunky.ReadDataChunk(c_chunkId, c_chunkVersion);
        checkBody(chunky, chunk);
        checkEnd(chunk);
    }

    bool checkHeader(Chunky::ChunkInfo const & chunk) {
        if (chunk.kind != Chunky::CK_DATA || chunk.id != c_chunkId)
            find(chunk.headerOffset, "a chunk of another kind stands in the table's place");
        else if (chunk.version != c_chunkVersion)
            find(chunk.headerOffset, "the table has version %u, not 1", chunk.version);
        else if (chunk.bodySize < c_prefixSize)
            find(chunk.bodyOffset, "the chunk has %s, too few for crc and size",
                 CountText(chunk.bodySize, "byte", "bytes").c_str());
        else
            return true;
        return false;
    }

    void checkBody(Chunky & chunky, Chunky::ChunkInfo const & chunk) {
        std::uint32_t crc = 0;
        std::uint32_t size = 0;
        chunky.Read(crc);
        chunky.Read(size);
        unsigned int const room = chunk.bodySize - c_prefixSize;
        if (size != room)
            find(chunk.bodyOffset + 4, "the size is %u, but the chunk holds an image of %u bytes", size,
                 room);
        std::vector<char> image(std::min(size, room));
        chunky.ReadBytes(image.data(), static_cast<unsigned int>(image.size()));
        checkCRC(image, crc, chunk.bodyOffset);
        checkImage(image, chunk.bodyOffset + c_prefixSize);
    }

    void checkCRC(std::vector<char> const & image, std::uint32_t stored, unsigned int offset) {
        auto const bytes = reinterpret_cast<Bytef const *>(image.data());
        auto const crc = static_cast<std::uint32_t>(crc32(0, bytes, static_cast<uInt>(image.size())));
        if (crc != stored)
            find(offset, "the crc is 0x%08X, but the image has 0x%08X", stored, crc);
    }

    void checkImage(std::vector<char> const & image, unsigned int imageOffset) {
        std::uint32_t const platform = readPlatform();
        if (platform >= c_firstForeignPlatform) {
            isForeign = findings.empty();
            return find(c_platformOffset, "written for platform %u, whose byte order is not this machine's",
                        platform);
        }
        BinaryConfigIO::VerifyError error;
        if (!BinaryConfigIO::Verify(image.data(), static_cast<unsigned int>(image.size()), &error))
            find(imageOffset + error.offset, "%s", error.reason);
    }

    // The word is in native order whatever the platform.
    std::uint32_t readPlatform() {
        ByteStreamAdapter header(&stream, nullptr);
        header.SetStreamPos(c_platformOffset);
        std::uint32_t platform = 0;
        header.Read(platform);
        return platform;
    }

    void checkEnd(Chunky::ChunkInfo const & chunk) {
        unsigned int const end = chunk.bodyOffset + chunk.bodySize;
        if (stream.GetLen() > end)
            find(end, "%s behind the table",
                 CountText(stream.GetLen() - end, "byte follows", "bytes follow").c_str());
    }

    void find(unsigned int offset, char const * format, ...) CROSS_PRINTF_FORMAT(3, 4) {
        std::string what;
        std::va_list arguments;
        va_start(arguments, format);
        text::VPrintf(what, format, arguments);
        va_end(arguments);
        std::string place;
        text::Printf(place, ": offset 0x%X: ", offset);
        findings.push_back(stream.GetStreamName() + place + what);
    }

    ByteStream & stream;
    std::vector<std::string> & findings;
    bool isForeign = false;
};

} // namespace

TableState OpenTableFile(std::string const & path, BinaryConfig & config,
                         std::vector<std::string> & findings) {
    ByteStreamProxy const stream = OpenForReading(path, findings);
    if (!stream)
        return TableState::failed;
    TableState const state = FileCheck(*stream, findings).Run();
    if (state != TableState::good)
        return state;
    stream->SetPos(0);
    if (BinaryConfigIO::Load(stream.Get(), config))
        return TableState::good;
    findings.push_back(path + ": cannot be loaded");
    return TableState::failed;
}
