#include "Cross/Util/StatGraph.h"
#include "Cross/engine/scriptconfig/LuaConfig.h"
#include "Cross/engine/scriptconfig/LuaPrint.h"
#include "tests/support/GraphSink.h"

#include <gtest/gtest.h>

namespace {

// Takes what scripts print, a ";" behind each line.
class StatGraphLibTest : public testing::Test {
protected:
    StatGraphLibTest() {
        luaxSetPrintSink(
            [](char const * text, void * to) { *static_cast<std::string *>(to) += text + std::string(";"); },
            &printed);
    }

    ~StatGraphLibTest() override {
        luaxSetPrintSink(nullptr, nullptr);
        ResetStatGraph();
    }

    std::string printed;
    LuaConfig state{"script", true};
};

} // namespace

TEST_F(StatGraphLibTest, ScriptsSwitchTheGraphAndItsChannels) {
    struct Case {
        char const * call;
        char const * printed;
        bool a, b, visible; // afterwards
    };

    StatGraph::ChannelCreate("a");
    StatGraph::ChannelCreate("b");
    Case const c_cases[] = {
        {"statgraph_list()", "Channels;--------;a;b;", false, false, false},
        // twice is where it began
        {"statgraph()", "", false, false, true},
        {"statgraph()", "", false, false, false},
        {"statgraph_set_visible(1) assert(statgraph_get_visible())", "", false, false, true},
        {"statgraph_set_visible(false) assert(not statgraph_get_visible())", "", false, false, false},
        // the switch ignores case and leaves the graph as it is
        {"statgraph_channel('A')", "", true, false, false},
        {"statgraph_channel('a')", "", false, false, false},
        {"statgraph_channel('X%s')", "unable to find channel 'X%s';", false, false, false},
        // these two do not; enabling shows the graph, disabling leaves it
        {"assert(statgraph_channel_get_enabled('A') == false)", "unable to find channel 'A';", false, false,
         false},
        {"statgraph_channel_set_enabled('B', true)", "unable to find channel 'B';", false, false, false},
        {"statgraph_channel_set_enabled('b', false)", "", false, false, false},
        {"statgraph_channel_set_enabled('b', true) assert(statgraph_channel_get_enabled('b'))", "", false,
         true, true},
        {"statgraph_channel_set_enabled('b', false)", "", false, false, true},
        {"statgraph_channel('a') statgraph_channel('b') statgraph_clear()", "", false, false, true},
    };
    for (Case const & test : c_cases) {
        printed.clear();
        EXPECT_TRUE(state.RunString(test.call, true)) << test.call;
        EXPECT_EQ(printed, test.printed) << test.call;
        EXPECT_EQ(StatGraph::ChannelEnabled("a"), test.a) << test.call;
        EXPECT_EQ(StatGraph::ChannelEnabled("b"), test.b) << test.call;
        EXPECT_EQ(StatGraph::GetVisible(), test.visible) << test.call;
    }
}

TEST_F(StatGraphLibTest, ScriptsPauseAndListNothing) {
    EXPECT_TRUE(state.RunString("statgraph_list() statgraph_clear() statgraph_pause()", true));
    EXPECT_TRUE(StatGraph::GetPause());
    EXPECT_TRUE(state.RunString("statgraph_pause()", true));
    EXPECT_FALSE(StatGraph::GetPause());
    std::string const longName(100'000, 'N');
    EXPECT_TRUE(state.RunString(("statgraph_channel('" + longName + "')").c_str(), true));
    EXPECT_EQ(printed, "No channels to list;unable to find channel '" + longName + "';") << "whole";
}

TEST_F(StatGraphLibTest, ClearingGivesADisabledChannelAColourToo) {
    StatGraph::ChannelCreate("a");
    EXPECT_TRUE(state.RunString("statgraph_clear()", true));
    GraphSink sink;
    StatGraph::Update();
    EXPECT_NE(sink.channels[0]->colour.ToWord(), 0xFFFFFFFFu) << "that of a new channel";
}
