// The stat graph's hot path: a sample by handle beside finding the sum of the ring anew for each sample, and
// by name beside a map of names.

#include "Cross/Util/StatGraph.h"
#include "bench/Ratio.h"

#include <string>
#include <unordered_map>
#include <vector>

namespace {

// Frame times as a game has them, with a spike now and then that moves the scale.
std::vector<float> const & samples() {
    static std::vector<float> const values = [] {
        std::vector<float> made;
        for (int i = 0; i < 1024; ++i)
            made.push_back(i % 500 == 499 ? 60.0f : 16.0f + static_cast<float>(i % 17) / 16.0f);
        return made;
    }();
    return values;
}

// A channel that is its own sum.
struct PlainRing {
    void Submit(float value) {
        ring[next] = value;
        next = next + 1 == StatGraph::c_ringSize ? 0 : next + 1;
        float sum = 0.0f;
        for (float const sample : ring)
            sum += sample;
        average = sum / static_cast<float>(StatGraph::c_ringSize);
    }

    float ring[StatGraph::c_ringSize] = {};
    std::size_t next = 0;
    float average = 0.0f;
};

void submitByHandle(benchmark::State & state) {
    StatGraph::Handle channel = StatGraph::ChannelCreate("bench");
    for (auto _ : state)
        for (float const sample : samples())
            StatGraph::ChannelSubmit(channel, sample);
    StatGraph::ChannelDestroy(channel);
}

void sumAnew(benchmark::State & state) {
    PlainRing channel;
    for (auto _ : state) {
        for (float const sample : samples()) {
            channel.Submit(sample);
            benchmark::DoNotOptimize(channel.average);
        }
    }
}

std::vector<std::string> channelNames() {
    std::vector<std::string> names;
    for (int i = 0; i < 64; ++i)
        names.push_back("subsystem.channel" + std::to_string(i));
    return names;
}

void submitByName(benchmark::State & state) {
    std::vector<std::string> const names = channelNames();
    for (std::string const & name : names)
        StatGraph::ChannelCreate(name.c_str());
    for (auto _ : state)
        for (std::string const & name : names)
            StatGraph::ChannelSubmit(name.c_str(), 16.5f);
    for (std::string const & name : names)
        StatGraph::ChannelDestroy(name.c_str());
}

void submitByMap(benchmark::State & state) {
    std::vector<std::string> const names = channelNames();
    std::unordered_map<std::string, PlainRing> channels;
    for (std::string const & name : names)
        channels[name];
    for (auto _ : state)
        for (std::string const & name : names)
            channels.find(name.c_str())->second.Submit(16.5f);
}

} // namespace

int main(int argc, char ** argv) {
    bench::AddPair("1024 samples by handle beside summing 50 entries anew", 0.5, submitByHandle, sumAnew);
    bench::AddPair("64 samples by name beside a map and summing anew", 1.0, submitByName, submitByMap);
    return bench::Run(argc, argv);
}
