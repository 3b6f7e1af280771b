#include "Cross/Util/StatGraph.h"

#include "tests/support/GraphSink.h"
#include "tests/support/SlotOf.h"
#include "tests/support/WarningCapture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <memory>

namespace {

using Channel = StatGraph::Channel;
using Handle = StatGraph::Handle;
using Names = std::list<std::string>;

constexpr float c_infinity = std::numeric_limits<float>::infinity();
constexpr float c_nan = std::numeric_limits<float>::quiet_NaN();

class StatGraphTest : public testing::Test {
protected:
    ~StatGraphTest() override { ResetStatGraph(); }

    static Names List() {
        Names names{"left over"};
        StatGraph::ListChannels(names);
        return names;
    }

    // The record behind the newest channel of a name.
    static Channel const & Record(std::string_view name) {
        GraphSink sink;
        StatGraph::Update();
        for (Channel const * const channel : sink.channels)
            if (channel->name == name)
                return *channel;
        throw std::runtime_error("no such channel");
    }

    static void Submit(Handle const & handle, float value, int times) {
        for (int i = 0; i < times; ++i)
            StatGraph::ChannelSubmit(handle, value);
    }
};

} // namespace

TEST_F(StatGraphTest, NamesIgnoreCaseSortByBytesAndAreCut) {
    EXPECT_EQ(List(), Names());
    for (char const * const name : {"b", "FrameTime", "\xC3\x84", "B2", "", "a.B"})
        EXPECT_TRUE(StatGraph::ChannelCreate(name)) << name;
    EXPECT_EQ(List(), (Names{"", "a.b", "b", "b2", "frametime", "\xC3\x84"}));
    StatGraph::ChannelEnable("FRAMETIME", true);
    EXPECT_TRUE(StatGraph::ChannelEnabled("frameTime"));
    EXPECT_FALSE(StatGraph::ChannelEnabled("b"));
    for (char const * const name : {"FrameTIME", "\xC3\x84", "B2", "b", "A.b", ""})
        StatGraph::ChannelDestroy(name);
    EXPECT_EQ(List(), Names());

    std::string const longest(255, 'N'), stored(255, 'n');
    StatGraph::ChannelCreate((longest + "one").c_str());
    StatGraph::ChannelSubmit((longest + "other").c_str(), 3.0f);
    EXPECT_EQ(List(), Names{stored});
    EXPECT_EQ(Record(stored).sum, 3.0f);
}

TEST_F(StatGraphTest, UnknownNamesAndStaleHandlesDoNothing) {
    Handle known = StatGraph::ChannelCreate("known");
    EXPECT_FALSE(StatGraph::ChannelCreate(nullptr));
    for (char const * const name : {static_cast<char const *>(nullptr), "unknown", "know", "knownn", ""}) {
        StatGraph::ChannelEnable(name, true);
        StatGraph::ChannelSubmit(name, 1.0f);
        StatGraph::ChannelSetMax(name, 1.0f);
        StatGraph::ChannelSetRefresh(name, 1);
        StatGraph::ChannelDestroy(name);
        EXPECT_FALSE(StatGraph::ChannelEnabled(name));
    }
    EXPECT_EQ(List(), Names{"known"});
    EXPECT_EQ(Record("known").max, 0.0f);
    EXPECT_FALSE(StatGraph::ChannelEnabled(known));

    Handle stale = known, none;
    StatGraph::ChannelDestroy(known);
    EXPECT_TRUE(!known && stale) << "other copies are not told";
    StatGraph::ChannelDestroy(stale);
    StatGraph::ChannelEnable(none, true);
    EXPECT_FALSE(stale);
}

TEST_F(StatGraphTest, ANameTwiceIsWarnedOfAndGivesTheNewer) {
    WarningCapture const warnings(0x53544154);
    Handle const older = StatGraph::ChannelCreate("Twin");
    StatGraph::ChannelCreate("tWIN");
    EXPECT_EQ(warnings.texts, std::vector<std::string>{"Duplicate statgraph channel ignored"});
    StatGraph::ChannelSubmit("twin", 1.0f);
    StatGraph::ChannelSubmit(older, 2.0f);
    EXPECT_EQ(Record("twin").sum, 1.0f);
    StatGraph::ChannelDestroy("twin");
    EXPECT_EQ(Record("twin").sum, 2.0f) << "the newer goes first";
    EXPECT_EQ(List(), Names{"twin"});
}

// A new channel; each row is submitted in turn to a channel of its own.
TEST_F(StatGraphTest, TheFirstSample) {
    struct Case {
        float value, average, max;
        std::uint32_t countdown;
    };

    Case const c_cases[] = {
        {5.0f, 0.1f, 10.0f, 200},
        // nothing is above 0, so the scale waits for the period
        {-1.0f, -0.02f, 0.0f, 199},
        // the scale is the smallest of 10, 50, 250, ... that is not below
        {10.0f, 0.2f, 10.0f, 200},
        {10.5f, 0.21f, 50.0f, 200},
        {250.5f, 5.01f, 1250.0f, 200},
        // the largest float still finds an end
        {std::numeric_limits<float>::max(), std::numeric_limits<float>::max() / 50, c_infinity, 200},
        {c_infinity, c_infinity, c_infinity, 200},
    };
    for (Case const & test : c_cases) {
        Handle handle = StatGraph::ChannelCreate("first");
        StatGraph::ChannelSubmit(handle, test.value);
        Channel const & channel = Record("first");
        EXPECT_EQ(channel.average, test.average) << test.value;
        EXPECT_EQ(channel.max, test.max) << test.value;
        EXPECT_EQ(channel.countdown, test.countdown) << test.value;
        EXPECT_EQ(channel.index, 1u);
        EXPECT_EQ(channel.LatestSample(), test.value);
        EXPECT_FALSE(channel.enabled) << "a disabled channel collects all the same";
        StatGraph::ChannelDestroy(handle);
    }
}

TEST_F(StatGraphTest, TheRingTurnsAndItsSumIsNeverFoundAnew) {
    Handle const handle = StatGraph::ChannelCreate("ring");
    Channel const & channel = Record("ring");
    StatGraph::ChannelSubmit(handle, 16777216.0f);
    StatGraph::ChannelSubmit(handle, 0.1f);
    Submit(handle, 1.0f, 48);
    EXPECT_EQ(channel.index, 0u);
    EXPECT_EQ(channel.LatestSample(), 1.0f);
    Submit(handle, 1.0f, 1);
    EXPECT_EQ(channel.sum, 1.0f) << "the others were lost beside 2^24";
    EXPECT_EQ(channel.index, 1u);
    EXPECT_EQ(channel.average, channel.sum / 50.0f);
}

TEST_F(StatGraphTest, TheScaleRisesAtOnceAndFallsByPeriod) {
    Handle const handle = StatGraph::ChannelCreate("scale");
    Channel const & channel = Record("scale");
    StatGraph::ChannelSubmit(handle, c_nan);
    EXPECT_EQ(channel.max, 0.0f) << "a NaN is above nothing, and hides no other sample";
    StatGraph::ChannelSubmit(handle, 50.0f);
    StatGraph::ChannelSubmit(handle, 50.0f);
    EXPECT_EQ(channel.countdown, 199u) << "a sample equal to the scale changes nothing";
    StatGraph::ChannelSubmit(handle, 50.5f);
    EXPECT_EQ(channel.max, 250.0f);
    Submit(handle, 300.0f, 50);
    EXPECT_EQ(channel.max, 1250.0f);
    Submit(handle, 1.0f, static_cast<int>(channel.countdown) - 1);
    EXPECT_EQ(channel.max, 1250.0f);
    StatGraph::ChannelSubmit(handle, 1.0f);
    EXPECT_EQ(channel.max, 10.0f);
    EXPECT_EQ(channel.countdown, 200u);
    StatGraph::ChannelSetRefresh("scale", 3);
    StatGraph::ChannelSetRefresh("scale", 0);
    Submit(handle, 0.0f, 199);
    EXPECT_EQ(channel.countdown, 1u) << "a new period counts from the next rescale";
    Submit(handle, 0.0f, 1);
    EXPECT_EQ(channel.countdown, 3u);
    EXPECT_EQ(channel.max, 10.0f);
}

TEST_F(StatGraphTest, AScaleThatIsSetHoldsUntilASampleExceedsIt) {
    Handle const handle = StatGraph::ChannelCreate("set");
    Channel const & channel = Record("set");
    StatGraph::ChannelSetMax("SET", 100.0f);
    EXPECT_EQ(channel.max, 100.0f);
    EXPECT_EQ(channel.countdown, 0xFFFFFFFFu);
    Submit(handle, 100.0f, 300);
    EXPECT_EQ(channel.max, 100.0f);
    EXPECT_EQ(channel.countdown, 0xFFFFFFFFu - 300);
    StatGraph::ChannelSubmit(handle, 100.5f);
    EXPECT_EQ(channel.max, 250.0f);
    EXPECT_EQ(channel.countdown, 200u);
    StatGraph::ChannelSetMax("set", -0.0f);
    EXPECT_EQ(channel.max, 250.0f);
    EXPECT_EQ(channel.countdown, 0u);
    Submit(handle, 1.0f, 300);
    EXPECT_EQ(channel.max, 250.0f) << "parked, not due";
    EXPECT_EQ(channel.countdown, 0xFFFFFFFFu - 299);
}

// Places in the row of colours, counted from 1; where it stands now is left from other tests.
TEST_F(StatGraphTest, EveryEnableTakesTheNextOf100Colours) {
    constexpr std::pair<int, std::uint32_t> c_places[] = {
        {1, 0xFF7F0000},  {2, 0xFFFE0000},  {3, 0xFF007F00},  {9, 0xFF00007F},  {26, 0xFFFEFEFE},
        {27, 0xFF000000}, {54, 0xFF000000}, {81, 0xFF000000}, {99, 0xFF0000FE}, {100, 0xFF7F00FE},
    };
    Handle const handle = StatGraph::ChannelCreate("colour");
    std::vector<std::uint32_t> colours;
    for (int i = 0; i < 300; ++i) {
        StatGraph::ChannelEnable(handle, i % 4 < 2);
        colours.push_back(Record("colour").colour.ToWord());
    }
    std::vector<std::size_t> starts;
    for (std::size_t start = 0; start < 200; ++start)
        if (std::all_of(std::begin(c_places), std::end(c_places), [&](auto const & place) {
                return colours[start + static_cast<std::size_t>(place.first) - 1] == place.second;
            }))
            starts.push_back(start);
    ASSERT_EQ(starts.size(), 2u);
    EXPECT_EQ(starts[1] - starts[0], 100u);
}

TEST_F(StatGraphTest, APauseDropsSamplesAndNothingElse) {
    Handle const handle = StatGraph::ChannelCreate("paused");
    GraphSink sink;
    StatGraph::SetVisible(true);
    StatGraph::SetPause(true);
    Submit(handle, 20.0f, 1);
    StatGraph::ChannelSubmit("paused", 20.0f);
    StatGraph::Update();
    EXPECT_TRUE(sink.calls == 1 && sink.visible && StatGraph::GetPause());
    EXPECT_EQ(sink.channels[0]->countdown, 200u);
}

TEST_F(StatGraphTest, FourSinksAreCalledInOrderOfTheirPlaces) {
    std::string order;
    GraphSink sinks[5];
    for (int i = 0; i < 5; ++i)
        sinks[i].act = [&order, i] { order += std::to_string(i); };
    StatGraph::Register(nullptr);
    StatGraph::Unregister(nullptr);
    StatGraph::Update();
    EXPECT_EQ(order, "0123") << "the fifth found no place";
    StatGraph::Unregister(&sinks[1]);
    StatGraph::Register(nullptr);
    StatGraph::Register(&sinks[4]);
    StatGraph::Unregister(&sinks[3]);
    StatGraph::Register(&sinks[2]);
    order.clear();
    StatGraph::Update();
    EXPECT_EQ(order, "0422");
    StatGraph::Unregister(&sinks[2]);
    order.clear();
    StatGraph::Update();
    EXPECT_EQ(order, "042") << "one place per call";
}

TEST_F(StatGraphTest, SinksComeAndGoWhileTheyAreCalled) {
    StatGraph::ChannelCreate("a");
    auto leaving = std::make_unique<GraphSink>();
    GraphSink adding, removed, last, late; // four have a place
    leaving->act = [&] { leaving.reset(); };
    adding.act = [&] {
        StatGraph::ChannelCreate("b");
        StatGraph::Unregister(&removed);
        StatGraph::Register(&late);
        adding.act = nullptr;
    };
    StatGraph::Update();
    EXPECT_FALSE(leaving);
    EXPECT_EQ(removed.calls, 0);
    EXPECT_EQ(last.channels.size(), 2u) << "what one sink makes the next one gets";
    EXPECT_EQ(late.calls, 0) << "its place had been passed";
    StatGraph::Update();
    EXPECT_EQ(late.calls, 1);
}

// In a process of its own the colours begin with the first. At unload the channels go first, then each
// registered sink, once.
TEST(StatGraphDeathTest, LoadingAndUnloading) {
    GTEST_FLAG_SET(death_test_style, "threadsafe"); // a new program, not a fork of this one

    class LastWords : public StatGraph::Sink {
    public:
        explicit LastWords(char const * word) : word(word) {}

        ~LastWords() override {
            Names names;
            StatGraph::ListChannels(names);
            std::fprintf(stderr, "%s%zu ", word, names.size());
            StatGraph::Unregister(this);
        }

        void OnUpdate(Channel const * const * first, Channel const * const *, bool) override {
            std::fprintf(stderr, "%08X ", (*first)->colour.ToWord());
        }

    private:
        char const * word;
    };

    EXPECT_EXIT(
        {
            StatGraph::ChannelCreate("left");
            StatGraph::ChannelEnable("left", true);
            StatGraph::Sink * const twice = new LastWords("twice");
            StatGraph::Register(twice);
            StatGraph::Update();
            StatGraph::Register(new LastWords("once"));
            StatGraph::Register(twice);
            std::exit(0);
        },
        testing::ExitedWithCode(0), "^FF7F0000 twice0 once0 $");
}

#if defined(__x86_64__)
TEST(StatGraph, SinksAreCalledByPlace) {
    EXPECT_TRUE(FollowTheDestructor({SlotOf(&StatGraph::Sink::OnUpdate)}));
}
#endif
