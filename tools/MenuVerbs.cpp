#include "Cross/Util/CheatMenu.h"
#include "Cross/engine/scriptconfig/LuaConfig.h"
#include "Cross/engine/scriptconfig/LuaConfigSave.h"
#include "tools/AddVerb.h"
#include "tools/InputFile.h"
#include "tools/MenuLint.h"

#include <ostream>

namespace {

ExitCode lint(std::string const & file, Output const & output) {
    Lines reasons;
    ByteStreamProxy const stream = OpenForReading(file, reasons);
    if (!stream)
        return Fail(output, reasons);
    LuaConfig state("menu", true); // menus are loaded by the game's scripts
    CheatMenu::RegisterLua(state);
    if (!LuaConfigSave::LoadLua(state, *stream))
        return Fail(output, {file + ": is no menu file that runs"});
    MenuReport const report = LintMenu(state);
    std::string const content =
        std::to_string(report.menus) + " menus, " + std::to_string(report.lines) + " lines";
    if (report.findings.empty()) {
        output.out << "good: " << file << ": " << content << '\n';
        return exitGood;
    }
    output.out << report.findings.size() << " findings: " << file << ": " << content << " load\n";
    for (MenuReport::Finding const & finding : report.findings)
        output.out << file << ": " << finding.path << (finding.path.empty() ? "" : ": ") << finding.reason
                   << '\n';
    return exitFinding;
}

} // namespace

void AddMenuVerbs(CLI::App & app, Job & job) {
    CLI::App & menu = *app.add_subcommand("menu", "Menus for developers");
    menu.require_subcommand(1);
    menu.footer("Example: crosstool menu lint cheatmenu.lua");
    CLI::App & verb = *menu.add_subcommand(
        "lint", "Run a menu file and list every line that loading drops and every \"set\" that "
                "is never run, and why; 1 when there is one");
    auto const file = AddVerb(verb, job, lint);
    AddFile(verb, "FILE", *file, "A script that leaves a table SubMenuItems");
    verb.footer("Example: crosstool menu lint cheatmenu.lua");
}
