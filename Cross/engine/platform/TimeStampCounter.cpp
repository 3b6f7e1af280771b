#include "Cross/engine/platform/TimeStampCounter.h"

#if defined(__x86_64__) && defined(__linux__)

#include <cpuid.h>
#include <ctime>
#include <fstream>
#include <string>
#include <x86intrin.h>

namespace Plat {

namespace {

constexpr unsigned int c_powerManagementLeaf = 0x80000007;
constexpr unsigned int c_invariantCounter = 1u << 8;
constexpr char const * c_clockSourceFile = "/sys/devices/system/clocksource/clocksource0/current_clocksource";
constexpr std::timespec c_pause = {0, 2'000'000};

bool isInvariant() {
    unsigned int eax = 0, ebx = 0, ecx = 0, edx = 0;
    return __get_cpuid(c_powerManagementLeaf, &eax, &ebx, &ecx, &edx) != 0 && (edx & c_invariantCounter) != 0;
}

bool isTheSystemsClock() {
    std::ifstream file(c_clockSourceFile);
    std::string name;
    return file >> name && name == "tsc";
}

// Nanoseconds of a clock that nobody adjusts.
std::int64_t rawClock() {
    std::timespec now = {};
    clock_gettime(CLOCK_MONOTONIC_RAW, &now);
    return now.tv_sec * std::int64_t{1'000'000'000} + now.tv_nsec;
}

// Both clocks at one moment.
struct Reading {
    std::int64_t count = 0;
    std::int64_t nanoseconds = 0;
};

// The closest of a few tries: an interruption between the two clocks drives them apart.
Reading readBoth() {
    Reading closest;
    std::int64_t smallestGap = 0;
    for (int i = 0; i < 10; ++i) {
        std::int64_t const before = TimeStampCounter::Read();
        std::int64_t const nanoseconds = rawClock();
        std::int64_t const gap = TimeStampCounter::Read() - before;
        if (i == 0 || gap < smallestGap) {
            smallestGap = gap;
            closest = {before + gap / 2, nanoseconds};
        }
    }
    return closest;
}

} // namespace

bool TimeStampCounter::IsTrusted() { return isInvariant() && isTheSystemsClock(); }

std::int64_t TimeStampCounter::Read() { return static_cast<std::int64_t>(__rdtsc()); }

std::int64_t TimeStampCounter::MeasureFrequency() {
    Reading const first = readBoth();
    Reading last;
    do {
        nanosleep(&c_pause, nullptr); // a signal may cut it short
        last = readBoth();
    } while (last.nanoseconds - first.nanoseconds < c_pause.tv_nsec);
    double const seconds = static_cast<double>(last.nanoseconds - first.nanoseconds) * 1e-9;
    return static_cast<std::int64_t>(static_cast<double>(last.count - first.count) / seconds);
}

} // namespace Plat

#else

namespace Plat {

bool TimeStampCounter::IsTrusted() { return false; }

std::int64_t TimeStampCounter::Read() { return 0; }

std::int64_t TimeStampCounter::MeasureFrequency() { return 0; }

} // namespace Plat

#endif
