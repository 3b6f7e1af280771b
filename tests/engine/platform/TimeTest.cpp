#include "Cross/engine/platform/Time.h"

#include "Cross/engine/platform/Window.h"

#include <cstring>
#include <ctime>
#include <gtest/gtest.h>

namespace {

using Plat::Time;

// A clock that tests set by hand, in place of the real one while it lives.
struct HandClock {
    std::int64_t cycle = 0;
    std::int64_t frequency = 1000;
    std::uint32_t milliseconds = 0;
    Time::SystemTime now = {};
    Time::ClockSource previous;

    HandClock() {
        Time::ClockSource source;
        source.cycle = [](void * clock) { return static_cast<HandClock *>(clock)->cycle; };
        source.cycleFreq = [](void * clock) { return static_cast<HandClock *>(clock)->frequency; };
        source.milliseconds = [](void * clock) { return static_cast<HandClock *>(clock)->milliseconds; };
        source.now = [](void * clock, Time::SystemTime & time) {
            time = static_cast<HandClock *>(clock)->now;
        };
        source.context = this;
        previous = Time::SetClockSource(source);
    }

    HandClock(HandClock const &) = delete;
    HandClock & operator=(HandClock const &) = delete;

    ~HandClock() { Time::SetClockSource(previous); }
};

// The instant of a local time. An hour that daylight saving repeats has two; the C library picks one.
std::time_t instantOf(Time::SystemTime const & time) {
    std::tm local = {};
    local.tm_year = time.year - 1900;
    local.tm_mon = time.month - 1;
    local.tm_mday = time.day;
    local.tm_hour = time.hour;
    local.tm_min = time.minute;
    local.tm_sec = time.second;
    local.tm_isdst = -1;
    return std::mktime(&local);
}

} // namespace

TEST(Time, RealClocksRun) {
    std::int64_t const cycle = Time::GetCycle();
    std::uint32_t const milliseconds = Time::GetTimeMilliseconds();
    Plat::Window::Sleep(0);
    Plat::Window::Sleep(3);
    EXPECT_GE((Time::GetCycle() - cycle) * 1000, 3 * Time::GetCycleFreq());
    EXPECT_GE(Time::GetTimeMilliseconds() - milliseconds, 3u);
    EXPECT_GT(Time::GetCycleFreq(), 0);
}

TEST(Time, NowIsTheLocalTime) {
    std::time_t const before = std::time(nullptr);
    Time::SystemTime now;
    Time::TimeNow(now);
    std::time_t const after = std::time(nullptr);
    std::time_t const instant = instantOf(now);
    EXPECT_LE(before, instant);
    EXPECT_LE(instant, after);
    std::tm local = {};
    localtime_r(&instant, &local);
    EXPECT_EQ(now.dayOfWeek, local.tm_wday);
}

TEST(Time, TheStartIsTheSameAtEachCallAndUnderEachClock) {
    Time::SystemTime first;
    Time::TimeStart(first);
    HandClock const clock;
    Time::SystemTime second;
    Time::TimeStart(second);
    EXPECT_EQ(std::memcmp(&first, &second, sizeof(first)), 0);
    EXPECT_LE(instantOf(first), std::time(nullptr));
    EXPECT_GT(first.year, 2000);
}

TEST(Time, AClockCanBeReplaced) {
    HandClock clock;
    EXPECT_EQ(Time::GetCycle(), 0);
    EXPECT_EQ(Time::GetCycleFreq(), 1000);
    clock.frequency = 0;
    EXPECT_NE(Time::GetCycleFreq(), 0) << "whatever a source says";

    clock.milliseconds = 0xFFFFFFFF;
    std::uint32_t const before = Time::GetTimeMilliseconds();
    clock.milliseconds += 2;
    EXPECT_EQ(Time::GetTimeMilliseconds() - before, 2u);

    clock.now = {2031, 12, 24, 3, 18, 5, 9};
    Time::SystemTime now;
    Time::TimeNow(now);
    EXPECT_EQ(std::memcmp(&now, &clock.now, sizeof(now)), 0);
    {
        HandClock inner;
        inner.cycle = 8;
        EXPECT_EQ(Time::GetCycle(), 8);
    }
    EXPECT_EQ(Time::GetCycle(), 0) << "the clock before is back";
}
