#include "Cross/Util/PerfBlock.h"

#include "Cross/engine/core/Saturate.h"
#include "Cross/engine/platform/Time.h"

namespace {

// Ticks wrap instead of overflowing, so that a sum is right again once what was too large has left it.
std::int64_t wrappedSum(std::int64_t left, std::int64_t right) {
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(left) + static_cast<std::uint64_t>(right));
}

std::int64_t wrappedDifference(std::int64_t left, std::int64_t right) {
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(left) - static_cast<std::uint64_t>(right));
}

// The present moment as the start of a stretch, where 0 has another meaning.
std::int64_t startOfStretch() {
    std::int64_t const now = Plat::Time::GetCycle();
    return now != 0 ? now : 1;
}

double secondsOf(std::int64_t ticks) {
    return static_cast<double>(ticks) / static_cast<double>(Plat::Time::GetCycleFreq());
}

} // namespace

PerfBlock::PerfBlock(char const * name) {
    if (name && name[0] != '\0')
        channel = StatGraph::ChannelCreate(name);
    else
        keepActive = true;
}

PerfBlock::~PerfBlock() {
    if (channel)
        StatGraph::ChannelDestroy(channel);
}

std::int64_t PerfBlock::GetLastTicks() const {
    keepActive = true;
    return lastTicks;
}

float PerfBlock::GetLastTime() const { return static_cast<float>(secondsOf(GetLastTicks())); }

float PerfBlock::GetAverageTime() const { return static_cast<float>(secondsOf(average)); }

void PerfBlock::SetTicks(std::int64_t ticks) {
    history.fill(ticks);
    sum = static_cast<std::int64_t>(static_cast<std::uint64_t>(ticks) * c_historySize);
    average = ticks;
    count = c_historySize;
    next = 0;
}

void PerfBlock::SetTime(float seconds) {
    double const ticks = static_cast<double>(seconds) * static_cast<double>(Plat::Time::GetCycleFreq());
    SetTicks(SaturateTo<std::int64_t>(ticks));
}

void PerfBlock::InternalStart() {
    lastTicks = 0;
    InternalResume();
}

void PerfBlock::InternalResume() { startTicks = startOfStretch(); }

void PerfBlock::InternalPause() {
    if (startTicks == 0)
        return;
    lastTicks = wrappedSum(lastTicks, wrappedDifference(Plat::Time::GetCycle(), startTicks));
    startTicks = 0;
}

void PerfBlock::InternalStop() {
    InternalPause();
    addMeasurement();
    if (channel)
        StatGraph::ChannelSubmit(channel,
                                 static_cast<float>(secondsOf(lastTicks) * static_cast<double>(resolution)));
}

void PerfBlock::addMeasurement() {
    // Entries that are not in use are 0.
    sum = wrappedSum(wrappedDifference(sum, history[next]), lastTicks);
    history[next] = lastTicks;
    next = (next + 1) % c_historySize;
    if (count < c_historySize)
        ++count;
    average = sum / count;
}
