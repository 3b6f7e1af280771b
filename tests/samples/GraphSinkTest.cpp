#include "samples/debugdraw/GraphSink.h"

#include "samples/debugdraw/RecordingProxy.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <sstream>
#include <string>
#include <vector>

namespace {

struct Segment {
    float x1, y1, x2, y2;
};

std::vector<Segment> segmentsOf(std::string const & drawn) {
    std::vector<Segment> segments;
    for (std::size_t at = 0; (at = drawn.find("\"start\":", at)) != std::string::npos; ++at) {
        Segment segment;
        if (std::sscanf(drawn.c_str() + at, "\"start\":[%f,%f],\"end\":[%f,%f]", &segment.x1, &segment.y1,
                        &segment.x2, &segment.y2) == 4)
            segments.push_back(segment);
    }
    return segments;
}

// Registers a recording renderer and the sink, and gives what an update draws.
class GraphSinkTest : public testing::Test {
protected:
    GraphSinkTest() {
        DebugRender::Register(&proxy);
        StatGraph::Register(&sink);
        StatGraph::SetVisible(true);
    }

    ~GraphSinkTest() override {
        StatGraph::Unregister(&sink);
        DebugRender::Unregister(&proxy);
        StatGraph::SetVisible(false);
        for (std::string const & name : names)
            StatGraph::ChannelDestroy(name.c_str());
    }

    void create(std::string const & name, std::vector<float> const & samples) {
        StatGraph::ChannelCreate(name.c_str());
        StatGraph::ChannelEnable(name.c_str(), true);
        names.push_back(name);
        for (float const sample : samples)
            StatGraph::ChannelSubmit(name.c_str(), sample);
    }

    std::string update() {
        out.str("");
        StatGraph::Update();
        return out.str();
    }

    static std::size_t countOf(std::string const & text, std::string const & part) {
        std::size_t count = 0;
        for (std::size_t at = 0; (at = text.find(part, at)) != std::string::npos; at += part.size())
            ++count;
        return count;
    }

    std::ostringstream out;
    RecordingProxy proxy{out};
    GraphSink sink;
    std::vector<std::string> names;
};

TEST_F(GraphSinkTest, ShowsNameLatestAverageAndScale) {
    create("Frame", std::vector<float>(50, 20.0f));
    StatGraph::ChannelSubmit("frame", 12.5f);
    std::string const drawn = update();
    for (char const * const text : {"\"frame\"", "\"12.5\"", "\"average 19.85\"", "\"of 50\""})
        EXPECT_EQ(countOf(drawn, std::string("\"text\":") + text + ",\"colour\""), 1u) << text;
    // a segment between each two of the 50 samples, and the average
    EXPECT_EQ(countOf(drawn, "Line2D"), 50u);
}

TEST_F(GraphSinkTest, HiddenGraphsAndDisabledChannelsAreNotDrawn) {
    create("off", {1.0f});
    StatGraph::ChannelEnable("off", false);
    std::string const nothing = R"({"call":"SetAlwaysInFront","frame":"StatGraph","enable":true}
{"call":"SetAutoClear","frame":"StatGraph","enable":false}
{"call":"Clear","frame":"StatGraph"}
)";
    EXPECT_EQ(countOf(update(), "Draw"), 0u);
    create("on", {1.0f});
    StatGraph::SetVisible(false);
    EXPECT_EQ(update(), nothing);
}

// What a segment has outside of the plot is cut off where it leaves it; a segment outside is not drawn.
TEST_F(GraphSinkTest, CurvesAreCutAtTheScale) {
    create("above", std::vector<float>(50, 8.0f));
    StatGraph::ChannelSetMax("above", 4.0f);
    EXPECT_EQ(countOf(update(), "Line2D"), 0u);
    StatGraph::ChannelEnable("above", false);

    std::vector<float> samples(50, 2.0f);
    samples[20] = 6.0f;
    create("peak", samples);
    StatGraph::ChannelSetMax("peak", 4.0f);
    std::vector<Segment> const drawn = segmentsOf(update());
    ASSERT_EQ(drawn.size(), 50u);
    Segment const flat = drawn[19], rise = drawn[20]; // behind the average
    float const step = flat.x2 - flat.x1;
    EXPECT_NEAR(rise.x2 - rise.x1, step / 2, 1e-6f);
    for (Segment const & segment : drawn)
        EXPECT_LE(segment.y2, rise.y2);
}

TEST_F(GraphSinkTest, SamplesThatAreNotFiniteLeaveGaps) {
    std::vector<float> samples(50, 5.0f);
    samples[10] = std::nanf("");
    samples[30] = -INFINITY;
    create("gaps", samples);
    EXPECT_EQ(countOf(update(), "Line2D"), 45u); // less two segments each, and no average
}

TEST_F(GraphSinkTest, TooManyChannelsAreCounted) {
    for (unsigned int i = 0; i < 40; ++i)
        create("channel " + std::to_string(i), {});
    std::string const drawn = update();
    std::size_t const shown = countOf(drawn, "\"average 0\",\"colour\"");
    EXPECT_GT(shown, 10u);
    EXPECT_EQ(countOf(drawn, "\"text\":\"and " + std::to_string(40 - shown) + " more\",\"colour\""), 1u);
}

// The recording renderer has letters of 1/128 of the screen; a panel has room for 27, and the sample takes 1.
TEST_F(GraphSinkTest, LongNamesAreShortened) {
    create(std::string(200, 'n'), {});
    EXPECT_EQ(countOf(update(), '"' + std::string(22, 'n') + "...\",\"colour\""), 1u);
}

} // namespace
