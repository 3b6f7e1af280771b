#pragma once

// Clocks: a fine cycle counter, a running clock in milliseconds, and local wall time. Tests can put a clock
// of their own in place of the real one.
//
// Threads: reads may come from any thread; SetClockSource must not run beside them.

#include "Cross/engine/core/Export.h"

#include <cstdint>

namespace Plat {

class CROSS_ENGINE_API Time {
public:
    // Local time. Fields in this order; month and day count from 1, dayOfWeek from 0 (Sunday).
    struct SystemTime {
        std::int16_t year;
        std::int16_t month;
        std::int16_t day;
        std::int16_t dayOfWeek;
        std::int16_t hour;
        std::int16_t minute;
        std::int16_t second;
    };

    // Each null member means the real clock; `context` is handed to the others.
    struct ClockSource {
        std::int64_t (*cycle)(void *) = nullptr;
        std::int64_t (*cycleFreq)(void *) = nullptr;
        std::uint32_t (*milliseconds)(void *) = nullptr;
        void (*now)(void *, SystemTime &) = nullptr;
        void * context = nullptr;
    };

    // A counter that runs forward, and its ticks per second, which is never 0 and the same at each call. What
    // two threads see at one moment may differ by some nanoseconds. Where it is the processor's own counter,
    // the first call of GetCycleFreq takes two milliseconds to measure it.
    static std::int64_t GetCycle();
    static std::int64_t GetCycleFreq();

    // A monotonic clock in milliseconds, cut to 32 bits: it wraps after some 49 days.
    static std::uint32_t GetTimeMilliseconds();

    // The present local time, and the milliseconds of its second, 0 to 999. With a clock source for `now`
    // these are the last three digits of its `milliseconds`.
    static void TimeNow(SystemTime & time);
    static void TimeNow(SystemTime & time, unsigned int & milliseconds);

    // The local time at which the engine library was loaded; the same at each call, whatever the clock
    // source.
    static void TimeStart(SystemTime & time);

    // Puts a clock in place and returns the one that stood before.
    static ClockSource SetClockSource(ClockSource const & source);
};

} // namespace Plat
