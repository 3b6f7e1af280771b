#include "tools/AddVerb.h"
#include "tools/ConfigLint.h"
#include "tools/InputFile.h"
#include "tools/Json.h"

#include <ostream>

namespace {

void printText(ConfigReport const & report, std::string const & file, std::ostream & out) {
    std::string const content = file + ": " + CountText(report.sections, "section", "sections") + ", " +
                                CountText(report.entries, "entry", "entries");
    if (report.findings.empty())
        out << "good: " << content << '\n';
    else
        out << CountText(report.findings.size(), "finding: ", "findings: ") << content << " load\n";
    for (ConfigReport::Finding const & finding : report.findings)
        out << file << ":" << finding.line << ": " << finding.reason << '\n';
}

void printJson(ConfigReport const & report, std::string const & file, std::ostream & out) {
    std::vector<JsonObject> findings;
    for (ConfigReport::Finding const & finding : report.findings)
        findings.push_back(JsonObject().Add("line", finding.line).Add("reason", finding.reason));
    out << JsonObject()
               .Add("verdict", findings.empty() ? "good" : "findings")
               .Add("file", file)
               .Add("sections", report.sections)
               .Add("entries", report.entries)
               .Add("findings", findings)
               .Text()
        << '\n';
}

ExitCode lint(FileArguments const & arguments, Output const & output) {
    Lines reasons;
    ByteStreamProxy const stream = OpenForReading(arguments.file, reasons);
    if (!stream)
        return Fail(output, reasons);
    ConfigReport const report = LintConfig(*stream);
    (arguments.asJson ? printJson : printText)(report, arguments.file, output.out);
    return report.findings.empty() ? exitGood : exitFinding;
}

} // namespace

void AddConfigVerbs(CLI::App & app, Job & job) {
    CLI::App & config = AddGroup(app, "config", "Sectioned configuration files");
    CLI::App & verb =
        AddVerb(config, "lint", "List every line that loading drops or cuts, and why; 1 when there is one",
                "video.ini");
    auto const arguments = SetWork(verb, job, lint);
    AddFile(verb, "FILE", arguments->file, "A file of [section] headers and key=value lines");
    AddJson(verb, arguments->asJson);
}
