#pragma once

// RenderStats: an overlay of what the renderer draws, model by model. While it is on, the renderer announces
// each model instance with AddModelStat and fills in the figures of a model's first one; once per frame the
// application calls UpdateAndDraw, which shows the top of the list in the debug frame "RenderStats".
//
// Threads: one at a time, the render thread. Lifetime: names are copied.

#include "Cross/engine/core/Export.h"

#include <cstdint>
#include <vector>

class CROSS_UTIL_API RenderStats {
public:
    static constexpr unsigned int c_maxName = 256;

    // One model. The three last figures are the renderer's, of a single instance.
    struct StatEntry {
        char name[c_maxName]; // without folders, always ended by a zero
        std::uint32_t instances;
        std::uint32_t renderCalls;
        std::uint32_t shaderChanges;
        std::uint32_t tris;
    };

    // By which figure the list is sorted, largest first; equal ones keep their order. SortNone, and any other
    // value, leaves the order as it is.
    enum SortMode : unsigned int {
        SortNone = 0,
        SortInstances = 1,
        SortRenderCalls = 2,
        SortShaderChanges = 3,
        SortTris = 4,
    };

    // Built at the first call; never null.
    static RenderStats * Instance();

    RenderStats();

    bool IsEnabled() const { return enabled; }

    // Off throws the list away and empties the debug frame.
    void Enable(bool enable);

    // Counts an instance of a model. Names are told apart by what stands behind their last '/', by its first
    // 255 characters. The first instance of a model gives its entry, with zeros for the renderer to fill in;
    // it is valid until the next AddModelStat or UpdateAndDraw. Null for a further one, for a null name, and
    // while the statistics are off.
    StatEntry * AddModelStat(char const * name);

    void SetSortMode(SortMode mode) { sortMode = mode; }

    // Seconds for which models are counted before the list starts anew, 0.01 from the start; it starts anew
    // after the next UpdateAndDraw that takes time. What is not above 0, or NaN, is ignored.
    void SetUpdateTime(float seconds);

    // Lets the list start anew after the next UpdateAndDraw that takes time.
    void UpdateImmediately() { timer = updateTime; }

    // Has the next UpdateAndDraw with the statistics on write the whole list to a log "RenderStats", as
    // comma-separated values. Without a log folder the list is lost silently.
    void DumpStatsToLogFile() { dumpPending = true; }

    // Shows the first 25 models and their figures. `dt`: seconds since the last call. Does nothing while the
    // statistics are off.
    void UpdateAndDraw(float dt);

private:
    void ClearStats();
    void Sort();
    void Draw();
    void DumpToLogFile() const;

    bool enabled = false;
    float timer = 0.0f; // seconds since the list was last emptied
    float updateTime = 0.01f;
    SortMode sortMode = SortNone;
    std::vector<StatEntry> entries;
    bool dumpPending = false;
};
