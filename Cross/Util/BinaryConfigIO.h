#pragma once

// BinaryConfigIO: carries attribute tables between builders, BinaryConfig and chunk files.
//
// The file is a chunk file with one data chunk, id "AEGD", version 1: the CRC-32 of the image, its size, both
// as 32-bit words in the byte order of the file's platform, and the image as it is. docs/formats.md tells the
// bytes.
//
// `platform` is a PlatformType: 0 and 1 store words in native byte order, every other value swaps them. An
// image can be read only where its byte order is native.
//
// Threads: those of the objects passed in; streams passed in stay the caller's.

#include "Cross/Util/BinaryConfig.h"
#include "Cross/Util/BinaryConfigCreator.h"
#include "Cross/engine/core/Export.h"

#include <cstdint>

class ByteStream;

namespace BinaryConfigIO {

// The loads replace the image of `config`, whose cursor must stand at its base, and the name that GetFilename
// gives becomes that of the stream. A failure gives false and one line in the trace, and the old image stays;
// its CRC may have become that of the file already.
//
// The image is trusted as it stands: only a size below 4 or beyond the chunk is refused. Verify what comes
// from outside.
CROSS_UTIL_API bool Load(char const * filename, BinaryConfig & config);
CROSS_UTIL_API bool Load(ByteStream * stream, BinaryConfig & config);

// Load by a plain path, without alias mapping.
CROSS_UTIL_API bool LoadUnAliased(char const * filename, BinaryConfig & config);

// Reads only the CRC stored in a file. False, without a trace and with `crc` untouched, when that fails.
CROSS_UTIL_API bool LoadCRCOnly(char const * filename, std::uint32_t & crc);

// Writes a finished image, unchanged whatever the platform, with the CRC it has. A failure gives false and
// one line in the trace, and a file that stood there before stays as it was.
CROSS_UTIL_API bool Save(char const * filename, BinaryConfig const & config, unsigned int platform);

// Flattens a builder into a file; failures as above.
CROSS_UTIL_API bool Save(char const * filename, BinaryConfigCreator const & creator, unsigned int platform);

// Flattens a builder straight into `config`, whose cursor must stand at its base; GetFilename gives
// "InMemoryFile". True. Throws std::bad_alloc, or std::length_error for an image of 4 GiB, and then `config`
// is as it was.
CROSS_UTIL_API bool CreateBinaryConfig(BinaryConfigCreator const & creator, BinaryConfig & config,
                                       unsigned int platform);

// What Verify objects to first: the place, in bytes from the start of the image, and the reason as a constant
// text.
struct VerifyError {
    unsigned int offset = 0;
    char const * reason = nullptr;
};

// Tables below the root that Verify follows at most.
inline constexpr unsigned int c_verifyDepth = 1000;

// Checks an image of native byte order from outside, so that nothing in a BinaryConfig that holds it can read
// beyond it: counts, offsets and text ends lie inside, values stand in the order of their fields, aligned,
// without overlap and with zero bytes between, types are known, bools are 0 or 1, keys ascend in sorted
// tables and differ in all, nesting is at most c_verifyDepth, and nothing follows the last value. The time is
// bounded by the size, whatever the content. True when all of it holds; otherwise false, and `error`, if
// given, tells the first fault.
CROSS_UTIL_API bool Verify(void const * image, unsigned int size, VerifyError * error = nullptr);

} // namespace BinaryConfigIO
