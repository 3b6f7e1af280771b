#pragma once

// Floating-point numbers as integers, defined for every value.

#include <limits>

// Cuts the fraction; what is beyond an end of Int gives that end, NaN gives 0. Int has at most 32 bits.
template <class Int>
constexpr Int SaturateTo(double value) {
    using Limits = std::numeric_limits<Int>;
    static_assert(Limits::digits <= 32); // so that both ends are exact doubles
    if (value != value)
        return 0;
    if (value <= static_cast<double>(Limits::min()))
        return Limits::min();
    return value >= static_cast<double>(Limits::max()) ? Limits::max() : static_cast<Int>(value);
}
