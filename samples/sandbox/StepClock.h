#pragma once

// A clock for runs that must repeat to the bit: it stands still but for Advance, and each look at the cycle
// counter takes a microsecond. It stands in place of the real clock while it lives; one at a time.

#include "Cross/engine/platform/Time.h"

class StepClock {
public:
    StepClock();
    StepClock(StepClock const &) = delete;
    StepClock & operator=(StepClock const &) = delete;
    ~StepClock();

    void Advance(float seconds);

private:
    std::int64_t cycle = 0; // microseconds
    Plat::Time::ClockSource previous;
};
