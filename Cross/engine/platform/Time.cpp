#include "Cross/engine/platform/Time.h"

#include "Cross/engine/platform/TimeStampCounter.h"

#include <chrono>
#include <ctime>

namespace Plat {

namespace {

using Steady = std::chrono::steady_clock;

constexpr std::int64_t c_nanoseconds = 1'000'000'000;

template <class Unit>
std::int64_t steadyCount() {
    return std::chrono::duration_cast<Unit>(Steady::now().time_since_epoch()).count();
}

Time::SystemTime localTime(std::time_t now) {
    std::tm local = {};
    localtime_r(&now, &local);
    auto const field = [](int value) { return static_cast<std::int16_t>(value); };
    return {field(local.tm_year + 1900), field(local.tm_mon + 1), field(local.tm_mday), field(local.tm_wday),
            field(local.tm_hour),        field(local.tm_min),     field(local.tm_sec)};
}

// Taken when the library loads.
Time::SystemTime const s_start = localTime(std::time(nullptr));
bool const s_hasCounter = TimeStampCounter::IsTrusted();

constinit Time::ClockSource s_source;

std::int64_t realFrequency() {
    static std::int64_t const frequency = s_hasCounter ? TimeStampCounter::MeasureFrequency() : c_nanoseconds;
    return frequency;
}

} // namespace

std::int64_t Time::GetCycle() {
    if (s_source.cycle)
        return s_source.cycle(s_source.context);
    return s_hasCounter ? TimeStampCounter::Read() : steadyCount<std::chrono::nanoseconds>();
}

std::int64_t Time::GetCycleFreq() {
    std::int64_t const frequency = s_source.cycleFreq ? s_source.cycleFreq(s_source.context) : 0;
    return frequency != 0 ? frequency : realFrequency();
}

std::uint32_t Time::GetTimeMilliseconds() {
    return s_source.milliseconds ? s_source.milliseconds(s_source.context)
                                 : static_cast<std::uint32_t>(steadyCount<std::chrono::milliseconds>());
}

void Time::TimeNow(SystemTime & time) {
    unsigned int milliseconds;
    TimeNow(time, milliseconds);
}

void Time::TimeNow(SystemTime & time, unsigned int & milliseconds) {
    if (s_source.now) {
        s_source.now(s_source.context, time);
        milliseconds = GetTimeMilliseconds() % 1000;
        return;
    }
    std::timespec now = {};
    std::timespec_get(&now, TIME_UTC);
    time = localTime(now.tv_sec);
    milliseconds = static_cast<unsigned int>(now.tv_nsec / 1'000'000);
}

void Time::TimeStart(SystemTime & time) { time = s_start; }

Time::ClockSource Time::SetClockSource(ClockSource const & source) {
    ClockSource const previous = s_source;
    s_source = source;
    return previous;
}

} // namespace Plat
