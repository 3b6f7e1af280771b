// The sandbox: a sample game that uses the whole library on real data and proves that it works. It prints one
// line per subsystem, PASS with its evidence or FAIL, and exits with the number of failures.

#include "Cross/Util/KeyValueContainer.h"
#include "Cross/engine/filesystem/FilePath.h"
#include "Cross/engine/platform/Options.h"
#include "samples/sandbox/Checks.h"
#include "samples/sandbox/Console.h"
#include "samples/sandbox/Show.h"

#include <CLI/CLI.hpp>

#include <cstdio>
#include <filesystem>
#include <sstream>

namespace {

struct Settings {
    std::string data = SANDBOX_DATA;
    std::string work = SANDBOX_WORK;
    bool fail = false;
    bool console = false;
    unsigned int desync = 137;
    std::string keys;
    ShowOptions show;
};

void addOptions(CLI::App & app, Settings & settings) {
    app.add_option("--headless", settings.show.pictures,
                   "Open no window, write pictures to this folder, or to \"pictures\" of the work folder")
        ->expected(0, 1)
        ->option_text("[DIR]");
    app.add_option("--frames", settings.show.frames, "Frames to play without a window")
        ->check(CLI::Range(1, 100'000))
        ->option_text("N [600]");
    app.add_option("--record", settings.show.record,
                   "Write what is drawn to this file, a line of JSON per call")
        ->option_text("FILE");
    app.add_option("--keys", settings.keys, "Press these keys, such as \"f1 down right\", a picture for each")
        ->option_text("\"KEY ...\"");
    app.add_option("--menu", settings.show.menu, "Menu file to show")->option_text("FILE");
    app.add_option("--shot", settings.show.shot, "Write a picture of the last frame to this file")
        ->option_text("OUT.png");
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

std::string absolute(std::string const & path) { return std::filesystem::absolute(path).string(); }

// Before the working folder changes.
void makeAbsolute(Settings & settings) {
    settings.work = absolute(settings.work);
    settings.data = absolute(settings.data);
    ShowOptions & show = settings.show;
    if (show.pictures.empty())
        show.pictures = settings.work + "/pictures";
    for (std::string * const path : {&show.pictures, &show.record, &show.shot})
        if (!path->empty())
            *path = absolute(*path);
    if (show.menu.find(':') == std::string::npos)
        show.menu = absolute(show.menu);
    std::istringstream keys(settings.keys);
    for (std::string key; keys >> key;)
        show.keys.push_back(key);
}

void showGame(Report & report, Game & game, ShowOptions const & options) {
    report.Begin("show");
    ShowResult const result = PlayShow(game, options);
    report.Expect(result.good, result.text);
    report.Evidence(result.text);
    report.End();
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
    CheckArt(report, game);
    CheckScripts(report);
    CheckSettings(report, game);
    CheckConfigFiles(report);
    CheckInstruments(report, game);
    CheckMenu(report, game);
    CheckRecords(report);
    CheckSync(report, settings.desync);
    showGame(report, game, settings.show);
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
    settings.show.headless =
        app.count("--headless") > 0 || !settings.keys.empty() || !settings.show.shot.empty();
    makeAbsolute(settings);
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
