#pragma once

// Floating-point numbers as integers, defined for every value.

#include <limits>

// Cuts the fraction; what is beyond an end of Int gives that end, NaN gives 0.
template <class Int>
constexpr Int SaturateTo(double value) {
    using Limits = std::numeric_limits<Int>;
    if (value != value)
        return 0;
    if (value <= static_cast<double>(Limits::min()))
        return Limits::min();
    // The upper end of 64 bits rounds up to a power of two, and the double below that fits.
    return value >= static_cast<double>(Limits::max()) ? Limits::max() : static_cast<Int>(value);
}
