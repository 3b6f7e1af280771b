#include "Cross/Util/BinaryConfigIO.h"

#include "Cross/Util/BinaryConfigAccess.h"
#include "Cross/Util/BinaryConfigFlatten.h"
#include "Cross/engine/core/Text.h"
#include "Cross/engine/core/Types.h"
#include "Cross/engine/diagnostics/Trace.h"
#include "Cross/engine/filesystem/Chunky.h"
#include "Cross/engine/filesystem/FilePath.h"
#include "Cross/engine/filesystem/FilePathHDRaw.h"

#include <algorithm>
#include <cinttypes>
#include <exception>
#include <stdexcept>
#include <string>
#include <zlib.h>

namespace BinaryConfigIO {

namespace {

using BCInternal::Access;

constexpr std::uint32_t c_chunkId = FourCC("AEGD");
constexpr std::uint32_t c_chunkVersion = 1;
constexpr unsigned int c_smallestImage = 4; // the count of an empty root

std::uint32_t crcOf(void const * image, unsigned int size) {
    return static_cast<std::uint32_t>(crc32(0, static_cast<Bytef const *>(image), size));
}

ByteStream & requireOpen(ByteStreamProxy const & stream) {
    if (!stream)
        throw std::runtime_error("Unable to open file!");
    return *stream;
}

void requireImageSize(unsigned int size, std::uint64_t bytesLeft, ByteStream const & stream) {
    if (size >= c_smallestImage && size <= bytesLeft)
        return;
    std::string message;
    text::Printf(message, "%s: an image of %u bytes in a chunk with %" PRIu64 " bytes left",
                 stream.GetStreamName(), size, bytesLeft);
    throw std::runtime_error(message);
}

void readChunk(ByteStream * stream, BinaryConfig & config) {
    Chunky chunky(stream, 0);
    Chunky::ChunkInfo chunk{};
    chunky.PeekChunk(chunk);
    chunky.ReadDataChunk(c_chunkId, c_chunkVersion);
    std::uint32_t size = 0;
    chunky.Read(Access::CRC(config));
    chunky.Read(size);
    requireImageSize(size, std::uint64_t{chunk.bodyOffset} + chunk.bodySize - chunky.GetStreamPos(), *stream);
    ast::scoped_array<char> image(new char[size]);
    chunky.ReadBytes(image.get(), size);
    Access::SetData(config, image, size);
    Access::SetFilename(config, stream->GetStreamName());
    chunky.PopChunk();
}

void writeImage(Chunky & chunky, std::uint32_t crc, void const * image, unsigned int size) {
    chunky.Write(crc);
    chunky.Write(size);
    chunky.WriteBytes(image, size);
}

void writeContents(Chunky & chunky, BinaryConfig const & config, PlatformType) {
    writeImage(chunky, config.GetCRC(), config.GetBinaryConfigData(), config.GetBinaryConfigDataSize());
}

void writeContents(Chunky & chunky, BinaryConfigCreator const & creator, PlatformType platform) {
    BCInternal::FlatImage image;
    BCInternal::Flatten(creator, platform, image);
    writeImage(chunky, crcOf(image.bytes.get(), image.size), image.bytes.get(), image.size);
}

// A failure leaves a file that stood there before as it was.
template <class Table>
void writeFile(char const * filename, Table const & table, PlatformType platform) {
    ByteStreamProxy const proxy = FilePath::OpenStream(filename, c_streamWrite);
    ByteStream & stream = requireOpen(proxy);
    try {
        Chunky chunky(&stream, platform);
        chunky.WriteDataChunk(c_chunkId, c_chunkVersion, -1);
        writeContents(chunky, table, platform);
        chunky.PopChunk();
        if (!stream.Flush())
            throw std::runtime_error("Unable to write file!");
    } catch (...) {
        stream.Discard();
        throw;
    }
}

void requireImage(BinaryConfig const & config) {
    if (!config.GetBinaryConfigData())
        throw std::runtime_error("There is no image to save!");
}

} // namespace

bool Load(char const * filename, BinaryConfig & config) {
    try {
        ByteStreamProxy const stream = FilePath::OpenStream(filename, c_streamRead);
        return Load(&requireOpen(stream), config);
    } catch (std::exception const & error) {
        dbTimeStampedTracefAux("UTIL -- Failed to Load BinaryConfig file: '%s', error: '%s'", filename,
                               error.what());
        return false;
    }
}

bool Load(ByteStream * stream, BinaryConfig & config) {
    try {
        readChunk(stream, config);
        return true;
    } catch (std::exception const & error) {
        dbTimeStampedTracefAux("UTIL -- Failed to read BinaryConfig stream, error: '%s'", error.what());
        return false;
    }
}

bool LoadUnAliased(char const * filename, BinaryConfig & config) {
    try {
        ByteStreamProxy const stream(FilePathHDRaw::UnaliasedFileOpen(filename, c_streamRead, false));
        return Load(&requireOpen(stream), config);
    } catch (std::exception const & error) {
        dbTimeStampedTracefAux("UTIL -- Failed to Load UnAliased BinaryConfig file: '%s', error: '%s'",
                               filename, error.what());
        return false;
    }
}

bool LoadCRCOnly(char const * filename, std::uint32_t & crc) {
    try {
        ByteStreamProxy const stream = FilePath::OpenStream(filename, c_streamRead);
        Chunky chunky(&requireOpen(stream), 0);
        chunky.ReadDataChunk(c_chunkId, c_chunkVersion);
        std::uint32_t stored = 0;
        chunky.Read(stored);
        crc = stored;
        return true;
    } catch (std::exception const &) {
        return false;
    }
}

bool Save(char const * filename, BinaryConfig const & config, unsigned int platform) {
    try {
        requireImage(config);
        writeFile(filename, config, platform);
        return true;
    } catch (std::exception const & error) {
        dbTimeStampedTracefAux("UTIL -- Failed to Save BinaryConfig to file: '%s', error: '%s'", filename,
                               error.what());
        return false;
    }
}

bool Save(char const * filename, BinaryConfigCreator const & creator, unsigned int platform) {
    try {
        writeFile(filename, creator, platform);
        return true;
    } catch (std::exception const & error) {
        dbTimeStampedTracefAux("UTIL -- Failed to Save BinaryConfigCreator to file: '%s', error: '%s'",
                               filename, error.what());
        return false;
    }
}

bool CreateBinaryConfig(BinaryConfigCreator const & creator, BinaryConfig & config, unsigned int platform) {
    BCInternal::FlatImage image;
    BCInternal::Flatten(creator, platform, image);
    Access::CRC(config) = crcOf(image.bytes.get(), image.size);
    Access::SetData(config, image.bytes, image.size);
    Access::SetFilename(config, "InMemoryFile");
    return true;
}

} // namespace BinaryConfigIO
