#include "Cross/engine/platform/Time.h"

#include "Cross/engine/platform/Window.h"
#include "tests/support/HandClock.h"

#include <chrono>
#include <cstring>
#include <ctime>
#include <gtest/gtest.h>

using Plat::Time;

// The inner of two stretches is never the longer one, but for what the system adjusts its own clock by.
TEST(Time, CyclesAgreeWithTheSystemsClock) {
    using Clock = std::chrono::steady_clock;
    auto const secondsSince = [](Clock::time_point start) {
        return std::chrono::duration<double>(Clock::now() - start).count();
    };
    auto const cycleSecondsSince = [](std::int64_t start) {
        return static_cast<double>(Time::GetCycle() - start) / static_cast<double>(Time::GetCycleFreq());
    };
    Time::GetCycleFreq(); // measured now, if need be
    std::int64_t const outerCycle = Time::GetCycle();
    Clock::time_point const outer = Clock::now();
    std::int64_t const innerCycle = Time::GetCycle();
    Clock::time_point const inner = Clock::now();
    std::uint32_t const milliseconds = Time::GetTimeMilliseconds();
    Plat::Window::Sleep(30);
    EXPECT_GE(Time::GetTimeMilliseconds() - milliseconds, 30u);
    double const innerSeconds = secondsSince(inner);
    double const innerCycleSeconds = cycleSecondsSince(innerCycle);
    EXPECT_LE(innerCycleSeconds, secondsSince(outer) * 1.001);
    EXPECT_LE(innerSeconds, cycleSecondsSince(outerCycle) * 1.001);
}

TEST(Time, NowIsTheLocalTime) {
    using Clock = std::chrono::system_clock; // std::time may lag behind it
    std::time_t const before = Clock::to_time_t(Clock::now());
    Time::SystemTime now;
    unsigned int milliseconds;
    Time::TimeNow(now, milliseconds);
    std::time_t const after = Clock::to_time_t(Clock::now());
    std::tm local = {};
    local.tm_year = now.year - 1900;
    local.tm_mon = now.month - 1;
    local.tm_mday = now.day;
    local.tm_hour = now.hour;
    local.tm_min = now.minute;
    local.tm_sec = now.second;
    local.tm_isdst = -1; // an hour that daylight saving repeats has two instants; the C library picks one
    std::time_t const instant = std::mktime(&local);
    EXPECT_LE(before, instant);
    EXPECT_LE(instant, after);
    EXPECT_EQ(now.dayOfWeek, local.tm_wday);
    EXPECT_LT(milliseconds, 1000u);
}

TEST(Time, AClockCanBeReplacedButNotTheStart) {
    Time::SystemTime start, now;
    Time::TimeStart(start);
    HandClock clock;
    clock.frequency = 0;
    EXPECT_NE(Time::GetCycleFreq(), 0) << "whatever a source says";
    {
        HandClock inner;
        inner.cycle = 8;
        EXPECT_EQ(Time::GetCycle(), 8);
    }
    EXPECT_EQ(Time::GetCycle(), 0) << "the clock before is back";
    Time::TimeStart(now);
    EXPECT_EQ(std::memcmp(&now, &start, sizeof(now)), 0);
}
