#pragma once

#include "Cross/engine/platform/Time.h"

// A clock that tests set by hand, in place of the real one while it lives.
class HandClock {
public:
    HandClock() {
        Plat::Time::ClockSource source;
        source.cycle = [](void * clock) { return static_cast<HandClock *>(clock)->cycle; };
        source.cycleFreq = [](void * clock) { return static_cast<HandClock *>(clock)->frequency; };
        source.milliseconds = [](void * clock) { return static_cast<HandClock *>(clock)->milliseconds; };
        source.now = [](void * clock, Plat::Time::SystemTime & time) {
            time = static_cast<HandClock *>(clock)->now;
        };
        source.context = this;
        previous = Plat::Time::SetClockSource(source);
    }

    HandClock(HandClock const &) = delete;
    HandClock & operator=(HandClock const &) = delete;

    ~HandClock() { Plat::Time::SetClockSource(previous); }

    std::int64_t cycle = 0;
    std::int64_t frequency = 1000;
    std::uint32_t milliseconds = 0;
    Plat::Time::SystemTime now = {2031, 12, 24, 3, 18, 5, 9};

private:
    Plat::Time::ClockSource previous;
};
