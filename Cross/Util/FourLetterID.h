#pragma once

// A four-letter code as a value, the first letter in the most significant byte: FourLetterID(FourCC("BVOL"))
// holds 0x42564F4C. The type is what sets a code apart from a plain number where a value is printed.

#include "Cross/engine/core/Export.h"

#include <cstdint>

class CROSS_UTIL_API FourLetterID {
public:
    constexpr FourLetterID(std::uint32_t code) : code(code) {}

    constexpr std::uint32_t GetValue() const { return code; }

private:
    std::uint32_t code;
};
