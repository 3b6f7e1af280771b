#pragma once

// GraphSink: shows the enabled channels of StatGraph on screen while graphs are visible, each in a panel with
// its name, the latest sample, the average and the scale. Panels fill the screen from its upper right corner
// down, then to the left; when there are too many the last place tells how many are missing. Whatever is
// registered with DebugRender draws them, in front of everything, in the frame "StatGraph".
//
// What a curve has above its scale or below 0 is cut off; a sample that is not finite leaves a gap.
//
// Threads: the one that updates StatGraph. Lifetime: as StatGraph says of sinks; it holds nothing.

#include "Cross/Util/StatGraph.h"

class GraphSink : public StatGraph::Sink {
public:
    void OnUpdate(StatGraph::Channel const * const * first, StatGraph::Channel const * const * last,
                  bool visible) override;
};
