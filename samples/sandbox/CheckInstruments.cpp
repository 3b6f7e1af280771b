// What a developer sees inside the running game: timing, graphs, render statistics, debug shapes, warnings
// and the files that were opened.

#include "samples/sandbox/Checks.h"

#include "Cross/Util/CRCBlock.h"
#include "Cross/Util/FilePathLogger.h"
#include "Cross/Util/LogFile.h"
#include "Cross/Util/RenderStats.h"
#include "Cross/Util/StatGraph.h"
#include "Cross/Util/StatgraphFile.h"
#include "Cross/Util/WarningTrace.h"
#include "Cross/engine/core/Types.h"
#include "Cross/engine/diagnostics/Trace.h"
#include "Cross/engine/diagnostics/Warning.h"
#include "Cross/engine/filesystem/FilePath.h"
#include "samples/debugdraw/RecordingProxy.h"
#include "samples/sandbox/Console.h"
#include "samples/sandbox/Files.h"
#include "samples/sandbox/GameLoop.h"
#include "samples/sandbox/ProxySwap.h"
#include "samples/sandbox/StepClock.h"

#include <algorithm>
#include <fstream>
#include <memory>
#include <sstream>

namespace {

constexpr unsigned int c_frames = 120;

// The name of the log that a base name gives in this run.
std::string logName(char const * name, char const * extension) {
    char path[c_maxPath];
    LogFile::MakeFilename(path, name, extension);
    return path;
}

std::size_t countOf(std::string const & text, std::string_view part) {
    std::size_t count = 0;
    for (std::size_t at = 0; (at = text.find(part, at)) != std::string::npos; at += part.size())
        ++count;
    return count;
}

// Runs the game on a clock that repeats, with everything switched on, and gives the CRC of its last state.
std::uint32_t runFrames(Game & game, DebugRenderProxy * proxy) {
    StepClock clock;
    game.world = Simulation(20261123, 12);
    ProxySwap const swap(proxy);
    RenderStats::Instance()->Enable(true);
    RenderStats::Instance()->SetSortMode(RenderStats::SortTris);
    GameLoop loop(game);
    loop.View().Select(3);
    loop.View().ShowBounds(true);
    for (unsigned int frame = 0; frame < c_frames; ++frame) {
        clock.Advance(GameLoop::c_step);
        loop.RunFrame();
    }
    RenderStats::Instance()->Enable(false);
    CRCBlock block;
    game.world.RecordTo(block, false);
    return block.GetCRC();
}

void checkGraph(Report & report, Game & game) {
    StatGraph::Sink * const sink = StatgraphFile::Create();
    StatGraph::Register(sink);
    std::ostringstream recorded, again;
    RecordingProxy first(recorded), second(again);
    std::uint32_t const crc = runFrames(game, &first);
    StatGraph::Unregister(sink);
    delete sink;
    std::string const log = logName("statgraph", ".txt");
    std::string const rows = ReadWholeFile(log.c_str());
    report.Expect(countOf(rows, "\n") == c_frames + 1, "the graph's file has a row per frame and its head");
    report.Expect(rows.ends_with("time,alive,draw,health,simulate,\n"), "four channels have columns");
    report.Evidence(std::to_string(c_frames) + " frames fed 4 channels into " + log);

    report.Expect(runFrames(game, &second) == crc && runFrames(game, nullptr) == crc,
                  "the simulation is the same with and without a renderer");
    report.Expect(recorded.str() == again.str(), "two runs draw the same to the byte");
    report.Expect(countOf(recorded.str(), "\"shape\":\"Mesh\"") > c_frames, "units are drawn as meshes");
    report.Expect(countOf(recorded.str(), "light_tank.mesh") > 0, "the render table names the models");
    report.Evidence(std::to_string(countOf(recorded.str(), "\n")) +
                    " calls of the renderer, the same twice, none without one");
}

// Looks straight down on every unit.
void checkPicking(Report & report, Game const & game) {
    WorldView const view(game.world);
    unsigned int picked = 0, alive = 0;
    for (unsigned int unit = 0; unit < game.world.GetUnits().size(); ++unit) {
        if (!game.world.StateOf(unit).alive)
            continue;
        ++alive;
        Math::Vector3f above = view.PlaceOf(unit);
        above.y = 50.0f;
        picked += view.Pick({above, {0, -1, 0}}) == unit ? 1 : 0;
    }
    report.Expect(picked == alive && alive > 0, "a ray from above picks the unit below");
    report.Expect(!view.Pick({{-100, 50, -100}, {0, -1, 0}}), "a ray beside the world picks nothing");
    report.Evidence("a ray picked each of " + std::to_string(alive) + " units");
}

void checkFileLog(Report & report) {
    auto const logger = std::make_unique<FilePathLogger>();
    std::string const log = logName("openedfiles", ".txt");
    logger->LogFiles("DATA", "read", log.c_str(), true);
    FilePath::AttachListener(logger.get());
    ReadWholeFile("DATA:sysconfig.lua");
    ReadWholeFile("SCRATCH:settings.lua");
    FilePath::DetachListener(logger.get());
    std::string const rows = ReadWholeFile(log.c_str());
    report.Expect(countOf(rows, "sysconfig.lua") == 1 && countOf(rows, "settings.lua") == 0,
                  "the file log holds what was read below DATA: " + rows);
    report.Evidence("the file log lists what was opened");
}

// Counts the lines of the trace that hold a text.
struct TraceWatch {
    TraceWatch() {
        dbTraceSetSink(
            [](char const * text, void * watch) {
                static_cast<TraceWatch *>(watch)->lines += std::string(text) + "\n";
            },
            this);
    }

    TraceWatch(TraceWatch const &) = delete;
    TraceWatch & operator=(TraceWatch const &) = delete;

    ~TraceWatch() { dbTraceSetSink(nullptr, nullptr); }

    std::string lines;
};

void checkWarnings(Report & report) {
    constexpr std::uint32_t c_category = FourCC("SBOX");
    TraceWatch const watch;
    EnableWarningTraceOutput(c_category);
    dbWarningfAux(c_category, "the bridge is %s", "out");
    SetWarningTraceOutput(c_category, false);
    report.Expect(RunConsoleLine("WarningEnable('SBOX')").good, "a script switches warnings on");
    dbWarningfAux(c_category, "the bridge is %s", "back");
    DisableWarningTraceOutput(c_category);
    report.Expect(watch.lines == "the bridge is out\nthe bridge is back\n", "in the trace: " + watch.lines);
    report.Evidence("warnings switched on by the game and by script reached the trace");
}

} // namespace

void CheckInstruments(Report & report, Game & game) {
    report.Begin(Subsystem::Instruments);
    checkGraph(report, game);
    checkPicking(report, game);
    checkFileLog(report);
    checkWarnings(report);
}
