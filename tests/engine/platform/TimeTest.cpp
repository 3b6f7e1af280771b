#include "Cross/engine/platform/Time.h"

#include "Cross/engine/platform/Window.h"
#include "tests/support/HandClock.h"

#include <cstring>
#include <ctime>
#include <gtest/gtest.h>

using Plat::Time;

TEST(Time, RealClocksRun) {
    std::int64_t const cycle = Time::GetCycle();
    std::uint32_t const milliseconds = Time::GetTimeMilliseconds();
    Plat::Window::Sleep(3);
    EXPECT_GE((Time::GetCycle() - cycle) * 1000, 3 * Time::GetCycleFreq());
    EXPECT_GE(Time::GetTimeMilliseconds() - milliseconds, 3u);
}

TEST(Time, NowIsTheLocalTime) {
    std::time_t const before = std::time(nullptr);
    Time::SystemTime now;
    Time::TimeNow(now);
    std::time_t const after = std::time(nullptr);
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
}

TEST(Time, AClockCanBeReplacedButNotTheStart) {
    Time::SystemTime start;
    Time::TimeStart(start);
    HandClock clock;
    clock.frequency = 0;
    EXPECT_NE(Time::GetCycleFreq(), 0) << "whatever a source says";
    Time::SystemTime now;
    Time::TimeNow(now);
    EXPECT_EQ(std::memcmp(&now, &clock.now, sizeof(now)), 0);
    {
        HandClock inner;
        inner.cycle = 8;
        EXPECT_EQ(Time::GetCycle(), 8);
    }
    EXPECT_EQ(Time::GetCycle(), 0) << "the clock before is back";
    Time::TimeStart(now);
    EXPECT_EQ(std::memcmp(&now, &start, sizeof(now)), 0);
}
