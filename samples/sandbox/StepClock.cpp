#include "samples/sandbox/StepClock.h"

namespace {

constexpr std::int64_t c_perSecond = 1'000'000;

} // namespace

StepClock::StepClock() {
    Plat::Time::ClockSource source;
    source.cycle = [](void * clock) { return ++static_cast<StepClock *>(clock)->cycle; };
    source.cycleFreq = [](void *) { return c_perSecond; };
    source.milliseconds = [](void * clock) {
        return static_cast<std::uint32_t>(static_cast<StepClock *>(clock)->cycle * 1000 / c_perSecond);
    };
    source.context = this;
    previous = Plat::Time::SetClockSource(source);
}

StepClock::~StepClock() { Plat::Time::SetClockSource(previous); }

void StepClock::Advance(float seconds) {
    cycle += static_cast<std::int64_t>(static_cast<double>(seconds) * c_perSecond);
}
