#include "Cross/Util/CheatMenu.h"
#include "Cross/engine/scriptconfig/LuaConfig.h"
#include "Cross/engine/scriptconfig/LuaConfigSave.h"
#include "tools/AddVerb.h"
#include "tools/InputFile.h"
#include "tools/Json.h"
#include "tools/MenuLint.h"

#include <ostream>

namespace {

void printText(MenuReport const & report, std::string const & file, std::ostream & out) {
    std::string const content = file + ": " + CountText(report.menus, "menu", "menus") + ", " +
                                CountText(report.lines, "line", "lines");
    if (report.findings.empty())
        out << "good: " << content << '\n';
    else
        out << CountText(report.findings.size(), "finding: ", "findings: ") << content << " load\n";
    for (MenuReport::Finding const & finding : report.findings)
        out << file << ": " << finding.path << (finding.path.empty() ? "" : ": ") << finding.reason << '\n';
}

void printJson(MenuReport const & report, std::string const & file, std::ostream & out) {
    std::vector<JsonObject> findings;
    for (MenuReport::Finding const & finding : report.findings)
        findings.push_back(JsonObject().Add("path", finding.path).Add("reason", finding.reason));
    out << JsonObject()
               .Add("verdict", findings.empty() ? "good" : "findings")
               .Add("file", file)
               .Add("menus", report.menus)
               .Add("lines", report.lines)
               .Add("findings", findings)
               .Text()
        << '\n';
}

ExitCode lint(FileArguments const & arguments, Output const & output) {
    Lines reasons;
    ByteStreamProxy const stream = OpenForReading(arguments.file, reasons);
    if (!stream)
        return Fail(output, reasons);
    LuaConfig state("menu", true); // menus are loaded by the game's scripts
    CheatMenu::RegisterLua(state);
    if (!LuaConfigSave::LoadLua(state, *stream))
        return Fail(output, {arguments.file + ": is no menu file that runs"});
    MenuReport const report = LintMenu(state);
    (arguments.asJson ? printJson : printText)(report, arguments.file, output.out);
    return report.findings.empty() ? exitGood : exitFinding;
}

} // namespace

void AddMenuVerbs(CLI::App & app, Job & job) {
    CLI::App & menu = AddGroup(app, "menu", "Menus for developers");
    CLI::App & verb = AddVerb(
        menu, "lint",
        "List every line that loading drops, every \"set\" that never runs, and why; 1 when there is one",
        "cheatmenu.lua");
    auto const arguments = SetWork(verb, job, lint);
    AddFile(verb, "FILE", arguments->file, "A script that leaves a table SubMenuItems; it is run");
    AddJson(verb, arguments->asJson);
}
