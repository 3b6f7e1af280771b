#pragma once

#include "Cross/Util/StatGraph.h"

#include <functional>
#include <string_view>
#include <vector>

// A sink that keeps what it was last called with, then acts. Its slot is free again when it goes.
class GraphSink : public StatGraph::Sink {
public:
    GraphSink() { StatGraph::Register(this); }

    GraphSink(GraphSink const &) = delete;
    GraphSink & operator=(GraphSink const &) = delete;

    ~GraphSink() override { StatGraph::Unregister(this); }

    void OnUpdate(StatGraph::Channel const * const * first, StatGraph::Channel const * const * last,
                  bool isVisible) override {
        ++calls;
        channels.assign(first, last);
        visible = isVisible;
        if (auto const action = act) // it may end this sink
            action();
    }

    int calls = 0;
    std::vector<StatGraph::Channel const *> channels;
    bool visible = false;
    std::function<void()> act;
};

// Leaves the graph as it is at load, but for the next colour.
inline void ResetStatGraph() {
    std::list<std::string> names;
    StatGraph::ListChannels(names);
    for (std::string const & name : names)
        StatGraph::ChannelDestroy(name.c_str());
    StatGraph::SetVisible(false);
    StatGraph::SetPause(false);
}
