#include "tools/AddVerb.h"
#include "tools/ConfigLint.h"
#include "tools/InputFile.h"

#include <ostream>

namespace {

ExitCode lint(std::string const & file, Output const & output) {
    Lines reasons;
    ByteStreamProxy const stream = OpenForReading(file, reasons);
    if (!stream)
        return Fail(output, reasons);
    ConfigReport const report = LintConfig(*stream);
    std::string const content =
        std::to_string(report.sections) + " sections, " + std::to_string(report.entries) + " entries";
    if (report.findings.empty()) {
        output.out << "good: " << file << ": " << content << '\n';
        return exitGood;
    }
    output.out << report.findings.size() << " findings: " << file << ": " << content << " load\n";
    for (ConfigReport::Finding const & finding : report.findings)
        output.out << file << ":" << finding.line << ": " << finding.reason << '\n';
    return exitFinding;
}

} // namespace

void AddConfigVerbs(CLI::App & app, Job & job) {
    CLI::App & config = *app.add_subcommand("config", "Sectioned configuration files");
    config.require_subcommand(1);
    config.footer("Example: crosstool config lint video.ini");
    CLI::App & verb = *config.add_subcommand(
        "lint", "List every line that loading drops or cuts, and why; 1 when there is one");
    auto const file = AddVerb(verb, job, lint);
    AddFile(verb, "FILE", *file, "A file of [section] headers and key=value lines");
    verb.footer("Example: crosstool config lint video.ini");
}
