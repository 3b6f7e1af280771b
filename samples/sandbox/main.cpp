// The sandbox: a sample game that uses the whole library on real data and proves that it works. It prints one
// line per subsystem, PASS with its evidence or FAIL, and exits with the number of failures.

#include "Cross/engine/filesystem/FilePath.h"
#include "Cross/engine/platform/Options.h"
#include "samples/sandbox/Checks.h"

#include <CLI/CLI.hpp>

namespace {

struct Settings {
    std::string data = SANDBOX_DATA;
    std::string work = SANDBOX_WORK;
    bool headless = false;
};

void addOptions(CLI::App & app, Settings & settings) {
    app.add_flag("--headless", settings.headless, "Open no window (there is none yet)");
    app.add_option("--data", settings.data, "Folder of the game's scripts")->check(CLI::ExistingDirectory);
    app.add_option("--work", settings.work, "Folder for built tables and logs; made when missing");
    app.footer("Other options, such as -name=12, are the engine's.");
    app.allow_extras();
}

bool mapAliases(Settings const & settings) {
    return FilePath::SetAlias("DATA", settings.data.c_str()) &&
           FilePath::SetAlias("BUILT", (settings.work + "/built").c_str()) &&
           FilePath::SetAlias("SCRATCH", (settings.work + "/scratch").c_str()) &&
           FilePath::SetAlias("log", (settings.work + "/logs").c_str());
}

} // namespace

int main(int argc, char ** argv) {
    CLI::App app("Sample game of the utility library");
    Settings settings;
    addOptions(app, settings);
    CLI11_PARSE(app, argc, argv);
    Plat::Options::SetCommandLine(argc, argv);

    Report report;
    report.Begin("setup");
    report.Expect(mapAliases(settings), "four aliases are mapped");
    std::vector<Asset> const assets = FindAssets(settings.data);
    report.Expect(assets.size() >= 30, "at least 30 attribute scripts");
    report.Evidence("DATA, BUILT, SCRATCH and log are mapped");
    report.Evidence(std::to_string(assets.size()) + " attribute scripts found");

    CheckFiles(report);
    CheckTables(report, assets);
    CheckReaders(report, assets);
    CheckKeys(report, assets);
    CheckLogs(report, assets);
    report.End();
    return report.GetFailures();
}
