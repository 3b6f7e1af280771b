// The sandbox: a sample game that uses the whole library on real data and proves that it works. It prints one
// line per subsystem, PASS with its evidence or FAIL, and exits with the number of failures.

#include "Cross/Util/KeyValueContainer.h"
#include "Cross/engine/filesystem/FilePath.h"
#include "Cross/engine/platform/Options.h"
#include "samples/sandbox/Checks.h"
#include "samples/sandbox/Console.h"

#include <CLI/CLI.hpp>

#include <cstdio>
#include <filesystem>

namespace {

struct Settings {
    std::string data = SANDBOX_DATA;
    std::string work = SANDBOX_WORK;
    bool headless = false;
    bool fail = false;
    bool console = false;
    unsigned int desync = 137;
};

void addOptions(CLI::App & app, Settings & settings) {
    app.add_flag("--headless", settings.headless, "Open no window (there is none yet)");
    app.add_flag("--fail", settings.fail,
                 "Make one start step fail once, to see the start undone and repeated");
    app.add_flag("--console", settings.console,
                 "Run lines from standard input in the global script state at the end");
    app.add_option("--desync", settings.desync, "Frame in which a bit of one of two worlds changes")
        ->check(CLI::Range(1, 100'000))
        ->option_text("FRAME [137]");
    app.add_option("--data", settings.data, "Folder of the game's scripts")->check(CLI::ExistingDirectory);
    app.add_option("--work", settings.work, "Folder for built tables and logs; made when missing");
    app.footer("Other options, such as -name=12, are the engine's.");
    app.allow_extras();
}

bool mapAliases(Settings const & settings) {
    return FilePath::SetAlias("DATA", settings.data.c_str()) &&
           FilePath::SetAlias("GENERIC", (settings.work + "/generic").c_str()) &&
           FilePath::SetAlias("SCRATCH", (settings.work + "/scratch").c_str()) &&
           FilePath::SetAlias("log", (settings.work + "/logs").c_str());
}

void runChecks(Report & report, Game & game, StartUp const & start, Settings const & settings) {
    CheckFiles(report);
    CheckStart(report, start, settings.fail);
    CheckTables(report, game.assets);
    CheckReaders(report, game.assets);
    CheckKeys(report, game.assets);
    CheckLogs(report, game.assets);
    CheckInventory(report, game);
    CheckReload(report, game);
    CheckScripts(report);
    CheckSettings(report, game);
    CheckConfigFiles(report);
    CheckInstruments(report, game);
    CheckRecords(report);
    CheckSync(report, settings.desync);
    CheckNothingLeft(report, game);
    report.End();
}

} // namespace

int main(int argc, char ** argv) {
    CLI::App app("Sample game of the utility library");
    Settings settings;
    addOptions(app, settings);
    CLI11_PARSE(app, argc, argv);
    Plat::Options::SetCommandLine(argc, argv);
    settings.work = std::filesystem::absolute(settings.work).string();
    settings.data = std::filesystem::absolute(settings.data).string();
    std::filesystem::current_path(settings.data); // a game runs where its files are

    Report report;
    Game game;
    report.Begin("setup");
    report.Expect(mapAliases(settings), "four aliases are mapped");
    game.assets = FindAssets(settings.data);
    report.Expect(game.assets.size() >= 30, "at least 30 attribute scripts");
    report.Evidence("DATA, GENERIC, SCRATCH and log are mapped");
    report.Evidence(std::to_string(game.assets.size()) + " attribute scripts found");
    report.End();

    StartUp start(game, settings.fail);
    if (!start.Load()) {
        std::fprintf(stderr, "the game does not start: %s\n", start.GetEvents().c_str());
        return 1;
    }
    runChecks(report, game, start, settings);
    if (settings.console)
        RunConsole();
    start.Unload();
    KeyValueContainer::Shutdown();
    return report.GetFailures();
}
