#include "samples/sandbox/Settings.h"

#include "samples/sandbox/GameKeys.h"

#include <CLI/CLI.hpp>

#include <filesystem>

namespace {

constexpr char const * c_about =
    "Sample game of the utility library: starts, checks every subsystem, plays, stops, and prints a table of "
    "what it saw. Exits with the number of subsystems that failed.";

constexpr char const * c_engineOptions =
    "Settings of the game: a name of data/sysconfig.lua behind one hyphen beats the file for this run, as "
    "in\n"
    "  sandbox -tanks=12 -shadows\n"
    "The inventory knows -invbatchingoff, load without batches, and -invtrackloading, trace each load.";

void addStageOptions(CLI::App & app, StageOptions & stage) {
    char const * const group = "Where the game is seen, if not in a window";
    app.add_option("--headless", stage.pictures,
                   "Play a fixed number of frames and write pictures of some to DIR, else to \"pictures\" in "
                   "the work folder")
        ->expected(0, 1)
        ->option_text("[DIR]")
        ->group(group);
    CLI::Option * const record =
        app.add_option("--record", stage.record,
                       "Draw nothing, write each call of the renderer to FILE as a line of JSON")
            ->option_text("FILE")
            ->group(group);
    app.add_flag("--blind", stage.blind,
                 "Register no renderer at all; the world ends with the same CRC as with one")
        ->group(group)
        ->excludes(record);
}

std::string unknownKey(std::string const & key) {
    return IsKey(key) ? "" : "there is no key '" + key + "', but " + KeyNames();
}

void addShowOptions(CLI::App & app, Settings & settings) {
    char const * const group = "What is played";
    app.add_option("--frames", settings.show.frames, "Frames to play without a window, 60 to a second")
        ->check(CLI::Range(1, 100'000))
        ->option_text("N [600]")
        ->group(group);
    app.add_option("--keys", settings.show.keys,
                   "Press these keys instead, such as \"f1 down right\", with a picture behind each: " +
                       KeyNames())
        ->delimiter(' ')
        ->check(unknownKey)
        ->option_text("\"KEY ...\"")
        ->group(group);
    app.add_option("--shot", settings.show.shot, "Write a picture of the last frame to FILE")
        ->option_text("FILE.png")
        ->group(group)
        ->excludes("--record")
        ->excludes("--blind");
    app.add_option("--menu", settings.menu, "Show the menu of this script; one that is saved loads again")
        ->check(CLI::ExistingFile)
        ->option_text("FILE [data/menu.lua]")
        ->group(group);
    app.add_flag("--console", settings.show.console,
                 "Run lines from standard input as scripts while the game plays")
        ->group(group);
}

void addTrialOptions(CLI::App & app, Settings & settings) {
    char const * const group = "What is tried";
    app.add_flag("--fail", settings.fail,
                 "Let the last step of the loading screen fail once, to see all undone and loaded again")
        ->group(group);
    app.add_option("--desync", settings.desync,
                   "Change one bit in one of two equal worlds at the start of this frame; the check tells "
                   "where they part")
        ->check(CLI::Range(1, 100'000))
        ->option_text("FRAME [137]")
        ->group(group);
}

void addFolders(CLI::App & app, Settings & settings) {
    char const * const group = "Folders";
    app.add_option("--data", settings.data, "The game's scripts and art, those of the source by default")
        ->check(CLI::ExistingDirectory)
        ->option_text("DIR")
        ->group(group);
    app.add_option("--work", settings.work,
                   "Made when missing; gets built tables in generic/, saved files in scratch/, logs/ and "
                   "pictures/")
        ->option_text("DIR")
        ->group(group);
}

// What is left over are the engine's options, "-name=12" or "-name 12".
bool isEngineOption(std::string const & text) {
    bool const isName = text.size() > 1 && text[0] == '-' && text[1] != '-';
    return isName || text.find_first_not_of("0123456789") == std::string::npos;
}

void refuseUnknown(CLI::App const & app) {
    for (std::string const & text : app.remaining())
        if (!isEngineOption(text))
            throw CLI::ExtrasError({text});
}

std::string absolute(std::string const & path) { return std::filesystem::absolute(path).string(); }

// The working folder is about to change.
void makeAbsolute(Settings & settings) {
    settings.work = absolute(settings.work);
    settings.data = absolute(settings.data);
    if (settings.stage.pictures.empty())
        settings.stage.pictures = settings.work + "/pictures";
    for (std::string * const path : {&settings.stage.pictures, &settings.stage.record, &settings.show.shot})
        if (!path->empty())
            *path = absolute(*path);
    if (settings.menu.find(':') == std::string::npos)
        settings.menu = absolute(settings.menu);
}

} // namespace

bool ReadCommandLine(int argc, char ** argv, Settings & settings, int & code) {
    CLI::App app(c_about, "sandbox");
    app.allow_extras();
    app.footer(c_engineOptions);
    addStageOptions(app, settings.stage);
    addShowOptions(app, settings);
    addTrialOptions(app, settings);
    addFolders(app, settings);
    try {
        app.parse(argc, argv);
        refuseUnknown(app);
    } catch (CLI::ParseError const & error) {
        code = app.exit(error);
        return false;
    }
    settings.stage.headless =
        app.count("--headless") > 0 || !settings.show.keys.empty() || !settings.show.shot.empty();
    makeAbsolute(settings);
    return true;
}
