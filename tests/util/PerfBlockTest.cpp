#include "Cross/Util/PerfBlock.h"

#include "tests/support/GraphSink.h"
#include "tests/support/HandClock.h"

#include <gtest/gtest.h>

#include <limits>
#include <map>
#include <type_traits>

static_assert(!std::is_copy_constructible_v<PerfBlock> && !std::is_copy_assignable_v<PerfBlock>);

namespace {

using Ticks = std::numeric_limits<std::int64_t>;

class PerfBlockTest : public testing::Test {
protected:
    // A counter at its end goes on at its other end.
    void PassTime(std::int64_t ticks) {
        clock.cycle = static_cast<std::int64_t>(static_cast<std::uint64_t>(clock.cycle) +
                                                static_cast<std::uint64_t>(ticks));
    }

    void Measure(PerfBlock & block, std::int64_t ticks) {
        block.Start();
        PassTime(ticks);
        block.Stop();
    }

    HandClock clock; // 1000 ticks per second
    PerfBlock unnamed;
};

} // namespace

// Each letter is a call, with 1, 10, 100, ... ticks after the first, the second, ... of them.
TEST_F(PerfBlockTest, StretchesAddUpToOneMeasurement) {
    struct Case {
        char const * calls; // b Start, p Pause, r Resume, e Stop
        std::int64_t last;
        std::int64_t average;
    };

    Case const c_cases[] = {
        {"be", 1, 1},
        {"bpre", 101, 101},
        // only the first of two pauses counts, and a stop after a pause adds nothing
        {"bppre", 1001, 1001},
        // what runs is thrown away by a start, and a resume loses its stretch
        {"bbe", 10, 10},
        {"bpbe", 100, 100},
        {"bre", 10, 10},
        // a pause is no end, and a start begins at 0
        {"bp", 1, 0},
        {"beb", 0, 1},
        // nothing runs: the last measurement counts again
        {"e", 0, 0},
        {"p", 0, 0},
        {"bebpbee", 10000, 6667},
        {"bere", 101, 51},
    };
    std::map<char, void (PerfBlock::*)()> const operations = {{'b', &PerfBlock::Start},
                                                              {'p', &PerfBlock::Pause},
                                                              {'r', &PerfBlock::Resume},
                                                              {'e', &PerfBlock::Stop}};
    for (std::int64_t const start : {std::int64_t{5}, Ticks::max() - 3, std::int64_t{-1000}})
        for (Case const & test : c_cases) {
            PerfBlock block;
            clock.cycle = start;
            std::int64_t ticks = 1;
            for (char const * call = test.calls; *call; ++call, ticks *= 10) {
                (block.*operations.at(*call))();
                PassTime(ticks);
            }
            EXPECT_EQ(block.GetLastTicks(), test.last) << test.calls << " from " << start;
            EXPECT_EQ(block.GetAverageTicks(), test.average) << test.calls << " from " << start;
        }

    // a first reading of 0 still counts as running, as 1
    clock.cycle = 0;
    Measure(unnamed, 10);
    EXPECT_EQ(unnamed.GetLastTicks(), 9);
}

TEST_F(PerfBlockTest, TheAverageIsThatOfTheLastEight) {
    clock.cycle = 1;
    Measure(unnamed, 10);
    Measure(unnamed, 0);
    EXPECT_EQ(unnamed.GetAverageTicks(), 5);
    Measure(unnamed, -2000); // a clock may go backwards
    EXPECT_EQ(unnamed.GetAverageTicks(), -663) << "cut towards 0";
    EXPECT_FLOAT_EQ(unnamed.GetAverageTime(), -0.663f);
    EXPECT_EQ(unnamed.GetLastTime(), -2.0f);
    for (int i = 1; i <= 8; ++i)
        Measure(unnamed, i);
    EXPECT_EQ(unnamed.GetAverageTicks(), 36 / 8);
    Measure(unnamed, 100);
    EXPECT_EQ(unnamed.GetAverageTicks(), 135 / 8) << "the first has left";
}

TEST_F(PerfBlockTest, TheHistoryCanBeSet) {
    unnamed.SetTime(2.5f);
    EXPECT_EQ(unnamed.GetAverageTime(), 2.5f);
    EXPECT_EQ(unnamed.GetLastTicks(), 0);
    clock.cycle = 1;
    Measure(unnamed, 2508);
    EXPECT_EQ(unnamed.GetAverageTicks(), 2501);
    unnamed.Start();
    PassTime(7);
    unnamed.SetTicks(0);
    unnamed.Stop();
    EXPECT_EQ(unnamed.GetLastTicks(), 7) << "what runs goes on";
    EXPECT_EQ(unnamed.GetAverageTicks(), 7 / 8);
    for (int i = 0; i < 7; ++i)
        Measure(unnamed, 15);
    EXPECT_EQ(unnamed.GetAverageTicks(), 112 / 8) << "the ring began anew";

    float const infinity = std::numeric_limits<float>::infinity();
    std::pair<float, std::int64_t> const c_cases[] = {
        {infinity, Ticks::max()},
        {-infinity, Ticks::min()},
        {std::numeric_limits<float>::quiet_NaN(), 0},
        {-0.0019f, -1},
    };
    for (auto const & [seconds, ticks] : c_cases) {
        unnamed.SetTime(seconds);
        EXPECT_EQ(unnamed.GetAverageTicks(), ticks) << seconds;
    }
    unnamed.SetTicks(Ticks::max());
    for (int i = 0; i < 8; ++i)
        Measure(unnamed, 10);
    EXPECT_EQ(unnamed.GetAverageTicks(), 10) << "nothing of the large ones is left";
}

TEST_F(PerfBlockTest, ANamedBlockSleepsUntilItIsEnabledOrAsked) {
    clock.cycle = 1;
    PerfBlock enabled("Perf.Enabled"), asked("perf.asked");
    Measure(enabled, 10);
    Measure(asked, 10);
    EXPECT_EQ(enabled.GetAverageTicks() + asked.GetAverageTicks(), 0);

    StatGraph::ChannelEnable("perf.enabled", true);
    EXPECT_EQ(asked.GetLastTime(), 0.0f);
    Measure(enabled, 10);
    Measure(asked, 10);
    EXPECT_EQ(enabled.GetAverageTicks(), 10);
    EXPECT_EQ(asked.GetAverageTicks(), 10);

    // an average does not keep a block awake
    StatGraph::ChannelEnable("perf.enabled", false);
    Measure(enabled, 1000);
    Measure(asked, 1000);
    EXPECT_EQ(enabled.GetAverageTicks(), 10);
    EXPECT_EQ(asked.GetLastTicks(), 1000);

    // what it was told while it slept did nothing
    enabled.Start();
    enabled.Pause();
    enabled.Resume();
    PassTime(100);
    StatGraph::ChannelEnable("perf.enabled", true);
    enabled.Stop();
    EXPECT_EQ(enabled.GetAverageTicks(), 10);
}

TEST_F(PerfBlockTest, AChannelGetsEachMeasurementInUnits) {
    GraphSink sink;
    {
        clock.cycle = 1;
        PerfBlock block("Perf");
        PerfBlock const nameless(nullptr);
        StatGraph::Update();
        ASSERT_EQ(sink.channels.size(), 1u);
        StatGraph::Channel const & channel = *sink.channels[0];
        EXPECT_EQ(channel.name, "perf");
        StatGraph::ChannelEnable("PERF", true);
        Measure(block, 2);
        EXPECT_EQ(channel.LatestSample(), 2000.0f) << "microseconds";
        block.SetResolution(1000.0f);
        EXPECT_EQ(block.GetResolution(), 1000.0f);
        Measure(block, 4);
        EXPECT_EQ(channel.LatestSample(), 4.0f) << "milliseconds";
        EXPECT_EQ(block.GetLastTime(), 0.004f);
        EXPECT_EQ(block.GetAverageTime(), 0.003f);
        block.Stop();
        EXPECT_EQ(channel.index, 3u) << "a stop is a sample, whatever ran";
        StatGraph::ChannelEnable("perf", false);
        Measure(block, 5);
        EXPECT_EQ(channel.LatestSample(), 5.0f) << "also of a block that was asked";
    }
    StatGraph::Update();
    EXPECT_TRUE(sink.channels.empty());
}
