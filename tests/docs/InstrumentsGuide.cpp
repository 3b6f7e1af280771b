#include "Cross/Util/DebugRender.h"
#include "Cross/Util/FilePathLogger.h"
#include "Cross/Util/PerfBlock.h"
#include "Cross/Util/RenderStats.h"
#include "Cross/Util/StatGraph.h"
#include "Cross/Util/StatgraphFile.h"
#include "Cross/Util/WarningTrace.h"
#include "Cross/engine/core/Types.h"
#include "Cross/engine/diagnostics/Warning.h"
#include "samples/debugdraw/RecordingProxy.h"
#include "tests/support/AliasedFolder.h"
#include "tests/support/TraceCapture.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

void simulate() {}

struct Model {
    char const * name;
    unsigned int calls, shaders, triangles;
};

// [models]
void drawModel(Model const & model) {
    if (RenderStats::StatEntry * const entry = RenderStats::Instance()->AddModelStat(model.name)) {
        entry->renderCalls = model.calls; // of one instance; told once per model
        entry->shaderChanges = model.shaders;
        entry->tris = model.triangles;
    }
    // ... and the drawing itself
}

// [models]

} // namespace

TEST(InstrumentsGuide, TimeAndGraph) {
    AliasedFolder const folder("log");
    {
        // [time]
        PerfBlock block("physics"); // a channel of that name; nothing is measured while it is disabled
        StatGraph::Handle units = StatGraph::ChannelCreate("units");
        StatGraph::Sink * const file = StatgraphFile::Create();
        StatGraph::Register(file);

        StatGraph::ChannelEnable("physics", true); // or from a script: statgraph_channel("physics")
        StatGraph::ChannelEnable(units, true);
        for (int frame = 0; frame < 3; ++frame) {
            block.Start();
            simulate();
            block.Stop();
            StatGraph::ChannelSubmit(units, 40);
            StatGraph::Update(); // once per frame: the sinks get all channels
        }

        StatGraph::Unregister(file);
        delete file; // writes the names of the columns, the last row of log:statgraph.(time).txt
        StatGraph::ChannelDestroy(units);
        // [time]
    }
    EXPECT_EQ(folder.CountEntries(), 1u);
}

TEST(InstrumentsGuide, DrawAndCount) {
    std::ostringstream drawn;
    RecordingProxy renderer(drawn);
    Math::Vector3f const from{}, to{1, 0, 0}, place{};
    // [draw-shapes]
    DebugRender::Register(&renderer); // yours: an implementation of DebugRenderProxy

    constexpr MathPrim::Colour c_red = MathPrim::Colour::FromWord(0xFFFF0000);
    DebugRender::SetAutoClear("paths", true); // the frame is emptied after each Display
    DebugRender::Draw(DebugRender::Line{from, to, c_red}, "paths");
    DebugRender::Draw(DebugRender::Text3D{place, "spawn", c_red}, "paths");
    DebugRender::Display();

    DebugRender::Unregister(&renderer); // from now on all of this does nothing
    // [draw-shapes]
    EXPECT_NE(drawn.str().find("\"spawn\""), std::string::npos);

    // [table]
    RenderStats::Instance()->Enable(true);
    RenderStats::Instance()->SetSortMode(RenderStats::SortTris);
    drawModel({"models/tank.mesh", 2, 1, 412});
    RenderStats::Instance()->UpdateAndDraw(1.0f / 60.0f); // once per frame, with its seconds
    // [table]
    RenderStats::Instance()->Enable(false);
}

TEST(InstrumentsGuide, FilesAndWarnings) {
    AliasedFolder const folder("log");
    TraceCapture trace;
    // [watch]
    FilePathLogger opened;
    opened.LogFiles("DATA", "read", "opened.txt", true); // what is read below DATA, in log:opened.txt
    FilePath::AttachListener(&opened);
    // ... and before `opened` goes:
    FilePath::DetachListener(&opened);

    EnableWarningTraceOutput(FourCC("STAT")); // or from a script: WarningEnable("STAT")
    dbWarningfAux(FourCC("STAT"), "channel %s is full", "units");
    DisableWarningTraceOutput(FourCC("STAT"));
    // [watch]
    EXPECT_EQ(trace.lines, std::vector<std::string>{"channel units is full"});
}
