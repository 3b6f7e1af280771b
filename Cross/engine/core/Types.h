#pragma once

// Shared plain types and constants. Widths in stored data and in keys are fixed: 32-bit words are
// std::uint32_t and std::int32_t, units of wide text are char16_t.

#include <cstddef>
#include <cstdint>

// Size of a path buffer: a path has at most c_maxPath - 1 characters and its terminator.
inline constexpr std::size_t c_maxPath = 260;

// Target of stored data. 0 and 1 are the native format; every other value stores words with their bytes
// swapped.
using PlatformType = unsigned int;

// How a stream is opened: 1 for reading, 2 for writing. There are no other values.
using StreamMode = unsigned int;
inline constexpr StreamMode c_streamRead = 1;
inline constexpr StreamMode c_streamWrite = 2;

// Packs a code of exactly four letters, the first into the most significant byte, as chunk ids and warning
// categories are written: FourCC("BVOL") is 0x42564F4C.
constexpr std::uint32_t FourCC(char const (&letters)[5]) {
    std::uint32_t code = 0;
    for (int i = 0; i < 4; ++i)
        code = (code << 8) | static_cast<unsigned char>(letters[i]);
    return code;
}
