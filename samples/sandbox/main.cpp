// The sandbox: a sample game that uses the whole library on real data and proves that it works. It starts,
// loads, checks itself, plays and stops; then it prints a table with one PASS or FAIL per subsystem and exits
// with the number of failures.

#include "Cross/engine/filesystem/FilePath.h"
#include "Cross/engine/platform/Options.h"
#include "samples/sandbox/Checks.h"
#include "samples/sandbox/Settings.h"
#include "samples/sandbox/Show.h"

#include <cstdio>
#include <filesystem>

namespace {

bool mapAliases(Settings const & settings) {
    return FilePath::SetAlias("DATA", settings.data.c_str()) &&
           FilePath::SetAlias("GENERIC", (settings.work + "/generic").c_str()) &&
           FilePath::SetAlias("SCRATCH", (settings.work + "/scratch").c_str()) &&
           FilePath::SetAlias("log", (settings.work + "/logs").c_str());
}

void check(Report & report, Game & game, LoadScreen const & load, Settings const & settings) {
    CheckFiles(report);
    CheckLoading(report, load, settings.fail);
    CheckTables(report, game.assets);
    CheckReaders(report, game.assets);
    CheckKeys(report, game.assets);
    CheckLogs(report, game.assets);
    CheckInventory(report, game);
    CheckReload(report, game);
    CheckArt(report, game);
    CheckScripts(report);
    CheckSettings(report, game);
    CheckConfigFiles(report);
    CheckInstruments(report, game);
    CheckMenu(report, game, settings.menu.c_str());
    CheckRecords(report);
    CheckSync(report, settings.desync);
}

void play(Report & report, Game & game, Stage & stage, ShowOptions const & options) {
    ShowResult const result = PlayShow(game, stage, options);
    std::printf("played %u frames, CRC of the world %08X\n", result.frames,
                static_cast<unsigned int>(result.worldCRC));
    std::string const summary = stage.Finish();
    report.Begin(Subsystem::Instruments);
    report.Expect(stage.IsGood(), stage.Reason());
    report.Expect(!game.world.GetUnits().empty(), "units play in the show");
    report.Evidence(std::to_string(result.frames) + " frames of the show, " + summary);
}

// The game's life behind the start. False when it does not come up.
bool live(Report & report, Game & game, Stage & stage, Settings const & settings) {
    LoadScreen load(game, stage, settings.fail);
    bool const isUp = load.Load();
    if (isUp) {
        check(report, game, load, settings);
        play(report, game, stage, settings.show);
        load.Unload();
        CheckUnloading(report, load);
        CheckNothingLeft(report);
    } else {
        std::fprintf(stderr, "the game does not come up: %s\n", load.GetEvents().c_str());
    }
    return isUp;
}

} // namespace

int main(int argc, char ** argv) {
    Settings settings;
    if (int code = 0; !ReadCommandLine(argc, argv, settings, code))
        return code;
    Plat::Options::SetCommandLine(argc, argv);
    std::filesystem::current_path(settings.data); // a game runs where its files are
    if (!mapAliases(settings)) {
        std::fprintf(stderr, "'%s' cannot be used as work folder\n", settings.work.c_str());
        return 1;
    }
    Stage stage(settings.stage);
    if (!stage.IsGood()) {
        std::fprintf(stderr, "there is no stage: %s\n", stage.Reason().c_str());
        return 1;
    }
    Report report;
    Game game;
    game.assets = FindAssets(settings.data);
    game.Start(stage.Proxy(), settings.menu.c_str());
    bool const isUp = live(report, game, stage, settings);
    bool const socketsWereUp = game.Stop();
    if (!isUp)
        return 1;
    CheckStopped(report, socketsWereUp);
    return report.Print();
}
