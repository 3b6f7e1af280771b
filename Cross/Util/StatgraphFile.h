#pragma once

// StatgraphFile: a sink of the stat graph that writes a text file, "log:statgraph.<start of the
// program>.txt".
//
//     StatGraph::Register(StatgraphFile::Create());
//
// Each update is a row: the time in seconds, then the latest sample of each channel. A channel gets the next
// column when it is first enabled and keeps it, by its name; while it is disabled or gone its field is empty.
// Every field ends in a comma. The names of the columns are the last row, written when the sink is deleted:
//
//     12.016,16.667,
//     12.033,16.701,3.000,
//     time,frametime,units,
//
// At most 128 channels get a column. A value or a name that would not fit into a row of 4095 bytes is left
// empty. A comma in a name shifts the columns, and an enabled channel behind a newer one of its name opens
// another column at each update.
//
// Threads and lifetime: those of the stat graph.

#include "Cross/Util/StatGraph.h"

#include <memory>

class CROSS_UTIL_API StatgraphFile : public StatGraph::Sink {
public:
    // Gives a new sink to the caller. The file is made at the first update, or at a later one when it cannot
    // be made then.
    static StatGraph::Sink * Create();

    StatgraphFile(StatgraphFile const &) = delete;
    StatgraphFile & operator=(StatgraphFile const &) = delete;
    ~StatgraphFile() override;

    void OnUpdate(StatGraph::Channel const * const * first, StatGraph::Channel const * const * last,
                  bool visible) override;

private:
    struct State;

    StatgraphFile();

    std::unique_ptr<State> state;
};
