#pragma once

// StatGraph: the telemetry of the process. Producers push float samples into named channels, one at a time;
// once per frame the application calls Update, which hands all channels to the registered sinks. A sink
// decides what becomes of the samples; nothing is drawn or written here.
//
// Names ignore the case of the letters A to Z and are kept in lower case, cut to 255 bytes. An operation with
// a name does nothing when the name is null or no channel has it; of several channels with one name the
// newest counts.
//
// Threads: one at a time, Update included.
// Lifetime: a channel lives until it is destroyed or the library unloads. A sink belongs to its caller, but
// one that is still registered at unload is deleted then, once, when the channels are gone already.

#include "Cross/engine/core/Export.h"
#include "Cross/engine/core/MathPrim.h"

#include <cstdint>
#include <list>
#include <string>
#include <string_view>
#include <vector>

class CROSS_UTIL_API StatGraph {
public:
    static constexpr std::uint32_t c_ringSize = 50;

    // What sinks read. Samples collect in a ring of fixed size, whether the channel is enabled or not.
    struct CROSS_UTIL_API Channel {
        std::string name;                                            // in lower case
        bool enabled = false;                                        // to be shown
        MathPrim::Colour colour = MathPrim::Colour::FromWord(~0u);   // white until the first ChannelEnable
        std::vector<float> samples = std::vector<float>(c_ringSize); // the ring
        float average = 0.0f;                                        // of the whole ring, zeros included
        float max = 0.0f;                                            // the scale to draw in
        float sum = 0.0f;                                            // of the ring; carries rounding errors
        std::uint32_t index = 0;                                     // where the next sample goes
        std::uint32_t countdown = c_usualRefresh;                    // samples until `max` is found anew
        std::uint32_t refresh = c_usualRefresh;                      // what `countdown` starts from

        // 0 when there was none yet.
        float LatestSample() const { return samples[(index == 0 ? samples.size() : index) - 1]; }
    };

    // The order of the channels that sinks get: by the bytes of their names, unsigned.
    struct CROSS_UTIL_API NameOrder {
        bool operator()(Channel const * channel, std::string_view name) const { return channel->name < name; }
    };

    // A plain value that refers to a channel, or to none. Copies refer to the same channel and dangle once it
    // is destroyed.
    class CROSS_UTIL_API Handle {
    public:
        Handle() = default;

        // Null when it refers to none.
        operator void const *() const { return channel; }

    private:
        friend class StatGraph;

        explicit Handle(Channel * channel) : channel(channel) {}

        Channel * channel = nullptr;
    };

    class CROSS_UTIL_API Sink {
    public:
        Sink() = default;
        Sink(Sink const &) = default;
        Sink & operator=(Sink const &) = default;
        virtual ~Sink();

        // Takes all channels, in NameOrder; `visible` is whether graphs are to be shown. The range is valid
        // during the call as long as no channel is made or destroyed. Sinks may register and unregister here,
        // themselves too.
        virtual void OnUpdate(Channel const * const * first, Channel const * const * last, bool visible) = 0;
    };

    // Makes a channel, disabled and empty. A name that a channel has already raises a warning of the category
    // STAT; the new channel stands in front of the old one. Null gives a null handle.
    static Handle ChannelCreate(char const * name);

    // Destroys the channel and nulls the handle. A handle that is null, or whose channel is gone, is harmless
    // here.
    static void ChannelDestroy(Handle & handle);
    static void ChannelDestroy(char const * name);

    // Also gives the channel the next of 100 colours, whether `enable` changes anything or not. A null handle
    // is ignored.
    static void ChannelEnable(Handle const & handle, bool enable);
    static void ChannelEnable(char const * name, bool enable);

    // REQUIRES: a valid handle.
    static bool ChannelEnabled(Handle const & handle) { return handle.channel->enabled; }

    // False when there is no such channel.
    static bool ChannelEnabled(char const * name);

    // Adds a sample; while paused it is dropped. A sample above `max` raises the scale at once; every
    // `refresh` samples it follows the ring, to the smallest of 10, 50, 250, ... that holds all of it. A NaN
    // or an infinity leaves `sum` and `average` NaN for good.
    // REQUIRES: a valid handle.
    static void ChannelSubmit(Handle const & handle, float value);
    static void ChannelSubmit(char const * name, float value);

    // Sets the scale until a sample exceeds it; 0 keeps the present one until then.
    static void ChannelSetMax(char const * name, float value);

    // Sets the period, in samples, in which the scale follows; it counts from the next time that it does. 0
    // is ignored.
    static void ChannelSetRefresh(char const * name, unsigned int period);

    // The names of all channels, in order, in place of what the list held.
    static void ListChannels(std::list<std::string> & names);

    // Calls every sink, in the order of their places, also while paused or not visible.
    static void Update();

    // For sinks only. False at load.
    static void SetVisible(bool visible);
    static bool GetVisible();

    // Whether samples are dropped. False at load.
    static void SetPause(bool paused);
    static bool GetPause();

    // Puts a sink into the first free of four places; without one nothing happens. A sink that stands in two
    // is called twice. Null is ignored.
    static void Register(Sink * sink);

    // Clears the first place that holds the sink.
    static void Unregister(Sink * sink);

private:
    static constexpr std::uint32_t c_usualRefresh = 200;

    static Handle find(char const * name);
};
