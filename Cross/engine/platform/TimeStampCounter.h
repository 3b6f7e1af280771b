#pragma once

// The processor's time stamp counter, at less than half the price of the system's clock. Threads: any.

#include <cstdint>

namespace Plat {

class TimeStampCounter {
public:
    // Whether it counts at one rate in every state of the processor and the system itself keeps time by it,
    // which it does only where the counters of all processors agree. The others mean nothing where it is not.
    static bool IsTrusted();

    // Not ordered against the instructions around it, which may shift a reading by some nanoseconds.
    static std::int64_t Read();

    // Counts per second, measured against the system's clock for two milliseconds.
    static std::int64_t MeasureFrequency();
};

} // namespace Plat
