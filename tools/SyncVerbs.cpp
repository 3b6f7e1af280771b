#include "tools/AddVerb.h"
#include "tools/InputFile.h"
#include "tools/Json.h"
#include "tools/syncdiff/SyncDiff.h"

#include <algorithm>
#include <ostream>

namespace {

struct DiffArguments {
    std::array<std::string, 2> files;
    bool asJson = false;
};

// A line as it stands, or quoted when it holds what a terminal would act on or could not show.
std::string shown(std::string const & text) {
    bool const isPlain =
        std::all_of(text.begin(), text.end(), [](char unit) { return unit >= ' ' && unit <= '~'; });
    return isPlain ? text : Quote(text);
}

std::string verdict(SyncReport const & report) {
    std::string text = "different: ";
    if (!report.linesDiffer)
        return text + "only the total CRC: the blocks were recorded without entries";
    if (!report.frame.empty())
        text += "frame " + shown(report.frame);
    if (!report.frame.empty() && !report.path.empty())
        text += ", ";
    return text + (report.path.empty() ? "outside of all groups" : shown(report.path));
}

void printSide(std::string const & file, SyncLine const & line, std::ostream & out) {
    if (line.number == 0)
        out << "  " << file << ": ends here\n";
    else
        out << "  " << file << ", line " << line.number << ": "
            << shown(line.text.substr(std::min(line.text.find_first_not_of(' '), line.text.size()))) << '\n';
}

// One text behind the other where they differ, as "-" and "+".
void printAfter(SyncReport const & report, std::ostream & out) {
    auto const & [first, second] = report.after;
    for (std::size_t i = 0; i < std::max(first.size(), second.size()); ++i) {
        bool const isShared = i < first.size() && i < second.size() && first[i] == second[i];
        if (i < first.size())
            out << (isShared ? "    " : "  - ") << shown(first[i]) << '\n';
        if (i < second.size() && !isShared)
            out << "  + " << shown(second[i]) << '\n';
    }
}

void printSurroundings(SyncReport const & report, std::ostream & out) {
    out << "around it:\n";
    for (std::string const & line : report.before)
        out << "    " << shown(line) << '\n';
    for (std::size_t side = 0; side < 2; ++side)
        if (report.difference[side].number != 0)
            out << (side == 0 ? "  - " : "  + ") << shown(report.difference[side].text) << '\n';
    printAfter(report, out);
}

void printDifference(DiffArguments const & arguments, SyncReport const & report, std::ostream & out) {
    out << verdict(report) << '\n';
    if (!report.totals[0].empty())
        out << "  total CRC: " << shown(report.totals[0]) << " | " << shown(report.totals[1]) << '\n';
    if (!report.linesDiffer)
        return;
    for (std::size_t side = 0; side < 2; ++side)
        printSide(arguments.files[side], report.difference[side], out);
    for (std::string const & distance : SyncDistances(report.difference[0].text, report.difference[1].text))
        out << "  " << distance << '\n';
    printSurroundings(report, out);
    out << "later: " << CountText(report.laterGroups, "more differing group\n", "more differing groups\n");
}

void printText(DiffArguments const & arguments, SyncReport const & report, std::ostream & out) {
    if (report.AreEqual())
        out << "equal: " << CountText(report.lines, "line\n", "lines\n");
    else
        printDifference(arguments, report, out);
}

// What a side has at the difference; "line" is null where it ended before.
JsonObject sideJson(std::string const & file, std::string const & total, SyncLine const & line) {
    bool const hasLine = line.number != 0;
    return JsonObject()
        .Add("file", file)
        .Add("total", total.empty() ? std::nullopt : std::optional(total))
        .Add("line", hasLine ? std::optional(line.number) : std::nullopt)
        .Add("text", hasLine ? std::optional(line.text) : std::nullopt);
}

void printJson(DiffArguments const & arguments, SyncReport const & report, std::ostream & out) {
    std::vector<JsonObject> sides;
    for (std::size_t side = 0; side < 2; ++side)
        sides.push_back(sideJson(arguments.files[side], report.totals[side], report.difference[side]));
    out << JsonObject()
               .Add("verdict", report.AreEqual() ? "equal" : "different")
               .Add("equalLines", report.lines)
               .Add("frame", report.frame)
               .Add("path", report.path)
               .Add("sides", sides)
               .Add("distances", SyncDistances(report.difference[0].text, report.difference[1].text))
               .Add("laterGroups", report.laterGroups)
               .Text()
        << '\n';
}

ExitCode diff(DiffArguments const & arguments, Output const & output) {
    Lines reasons;
    ByteStreamProxy const first = OpenForReading(arguments.files[0], reasons);
    ByteStreamProxy const second = OpenForReading(arguments.files[1], reasons);
    if (!reasons.empty())
        return Fail(output, reasons);
    SyncReport const report = DiffSync(*first, *second);
    (arguments.asJson ? printJson : printText)(arguments, report, output.out);
    return report.AreEqual() ? exitGood : exitFinding;
}

} // namespace

void AddSyncVerbs(CLI::App & app, Job & job) {
    CLI::App & sync = AddGroup(app, "sync", "Sync blocks that two machines printed");
    CLI::App & verb = AddVerb(
        sync, "diff", "Find the first value in which two printed sync blocks differ; 1 for a difference",
        "left.txt right.txt");
    auto const arguments = SetWork(verb, job, diff);
    AddFile(verb, "A", arguments->files[0], "The block whose values come first");
    AddFile(verb, "B", arguments->files[1], "The block to compare it with");
    AddJson(verb, arguments->asJson);
}
