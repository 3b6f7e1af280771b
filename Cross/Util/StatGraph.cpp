#include "Cross/Util/StatGraph.h"

#include "Cross/engine/core/Text.h"
#include "Cross/engine/core/Types.h"
#include "Cross/engine/diagnostics/Warning.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <utility>

namespace {

using Channel = StatGraph::Channel;

constexpr std::uint32_t c_category = 0x53544154; // STAT
constexpr std::uint32_t c_lastColour = 100;

struct Graph {
    ~Graph();

    bool visible = false;
    bool paused = false;
    std::vector<Channel *> channels; // in NameOrder, owned
    StatGraph::Sink * sinks[4] = {};
    std::uint32_t nextColour = 1;
};

// The destructor of a sink may still call the graph: it finds no channels and itself no longer registered.
Graph::~Graph() {
    for (Channel * const channel : std::exchange(channels, {}))
        delete channel;
    for (StatGraph::Sink * const sink : sinks) {
        std::replace(std::begin(sinks), std::end(sinks), sink, static_cast<StatGraph::Sink *>(nullptr));
        delete sink;
    }
}

Graph s_graph;

// A name as channels have it.
class ChannelName {
public:
    explicit ChannelName(char const * name) {
        text::CopyCut(buffer, sizeof(buffer), name);
        text::ToLower(buffer);
    }

    std::string_view Get() const { return buffer; }

private:
    char buffer[256];
};

std::vector<Channel *>::iterator firstNotBelow(std::string_view name) {
    return std::lower_bound(s_graph.channels.begin(), s_graph.channels.end(), name, StatGraph::NameOrder());
}

MathPrim::Colour takeColour() {
    std::uint32_t const number = s_graph.nextColour;
    s_graph.nextColour = number == c_lastColour ? 1 : number + 1;
    auto const level = [](std::uint32_t digits) { return static_cast<std::uint8_t>(digits % 3 * 127); };
    MathPrim::Colour colour;
    colour.red = level(number);
    colour.green = level(number / 3);
    colour.blue = level(number / 9);
    colour.alpha = 255;
    return colour;
}

// A NaN in the ring counts for nothing.
float greatestSample(Channel const & channel) {
    float greatest = -std::numeric_limits<float>::infinity();
    for (float const sample : channel.samples)
        greatest = std::max(greatest, sample);
    return greatest;
}

void rescale(Channel & channel) {
    float const greatest = greatestSample(channel);
    channel.max = 10.0f;
    while (greatest > channel.max)
        channel.max *= 5.0f;
    channel.countdown = channel.refresh;
}

} // namespace

StatGraph::Sink::~Sink() = default;

StatGraph::Handle StatGraph::ChannelCreate(char const * name) {
    if (!name)
        return Handle();
    if (find(name))
        dbWarningfAux(c_category, "Duplicate statgraph channel ignored");
    auto channel = std::make_unique<Channel>();
    channel->name = ChannelName(name).Get();
    s_graph.channels.insert(firstNotBelow(channel->name), channel.get());
    return Handle(channel.release());
}

void StatGraph::ChannelDestroy(Handle & handle) {
    Channel * const channel = std::exchange(handle.channel, nullptr);
    if (std::erase(s_graph.channels, channel) > 0)
        delete channel;
}

void StatGraph::ChannelDestroy(char const * name) {
    Handle handle = find(name);
    ChannelDestroy(handle);
}

void StatGraph::ChannelEnable(Handle const & handle, bool enable) {
    if (!handle)
        return;
    handle.channel->enabled = enable;
    handle.channel->colour = takeColour();
}

void StatGraph::ChannelEnable(char const * name, bool enable) { ChannelEnable(find(name), enable); }

bool StatGraph::ChannelEnabled(char const * name) {
    Handle const handle = find(name);
    return handle && ChannelEnabled(handle);
}

void StatGraph::ChannelSubmit(Handle const & handle, float value) {
    if (s_graph.paused)
        return;
    Channel & channel = *handle.channel;
    float & sample = channel.samples[channel.index];
    float const sumOfOthers = channel.sum - sample;
    sample = value;
    if (--channel.countdown == 0 || value > channel.max)
        rescale(channel);
    channel.sum = sumOfOthers + value;
    channel.average = channel.sum / static_cast<float>(c_ringSize);
    if (++channel.index == c_ringSize)
        channel.index = 0;
}

void StatGraph::ChannelSubmit(char const * name, float value) {
    if (Handle const handle = find(name))
        ChannelSubmit(handle, value);
}

void StatGraph::ChannelSetMax(char const * name, float value) {
    Handle const handle = find(name);
    if (!handle)
        return;
    if (value != 0.0f)
        handle.channel->max = value;
    // 0 wraps at the next sample: either way the scale does not follow the ring for 2^32 - 1 samples.
    handle.channel->countdown = value != 0.0f ? 0xFFFFFFFF : 0;
}

void StatGraph::ChannelSetRefresh(char const * name, unsigned int period) {
    Handle const handle = find(name);
    if (handle && period != 0)
        handle.channel->refresh = period;
}

void StatGraph::ListChannels(std::list<std::string> & names) {
    names.clear();
    for (Channel const * const channel : s_graph.channels)
        names.push_back(channel->name);
}

// Sinks come and go while they are called, so each place is looked at when its turn comes.
void StatGraph::Update() {
    for (Sink * const & sink : s_graph.sinks) {
        Channel const * const * const first = s_graph.channels.data();
        if (sink)
            sink->OnUpdate(first, first + s_graph.channels.size(), s_graph.visible);
    }
}

void StatGraph::SetVisible(bool visible) { s_graph.visible = visible; }

bool StatGraph::GetVisible() { return s_graph.visible; }

void StatGraph::SetPause(bool paused) { s_graph.paused = paused; }

bool StatGraph::GetPause() { return s_graph.paused; }

void StatGraph::Register(Sink * sink) {
    auto const place =
        std::find(std::begin(s_graph.sinks), std::end(s_graph.sinks), static_cast<Sink *>(nullptr));
    if (place != std::end(s_graph.sinks))
        *place = sink;
}

void StatGraph::Unregister(Sink * sink) {
    auto const place = std::find(std::begin(s_graph.sinks), std::end(s_graph.sinks), sink);
    if (place != std::end(s_graph.sinks))
        *place = nullptr;
}

StatGraph::Handle StatGraph::find(char const * name) {
    if (!name)
        return Handle();
    ChannelName const channelName(name);
    auto const place = firstNotBelow(channelName.Get());
    bool const isFound = place != s_graph.channels.end() && (*place)->name == channelName.Get();
    return isFound ? Handle(*place) : Handle();
}
