#include "Cross/engine/filesystem/FilePathHDRaw.h"
#include "tools/AddVerb.h"
#include "tools/InputFile.h"
#include "tools/StatsPlot.h"
#include "tools/StatsTrace.h"

#include <filesystem>
#include <ostream>

namespace {

struct StatsArguments {
    std::string file, target;
};

bool savePlot(StatsLog const & log, StatsArguments const & arguments, ByteStream & stream) {
    std::string const title = std::filesystem::path(arguments.file).filename().string();
    return BSWriteText(stream, PlotStats(log, title).c_str(), false);
}

bool saveTrace(StatsLog const & log, StatsArguments const &, ByteStream & stream) {
    return WriteStatsTrace(log, stream);
}

void printVerdict(StatsLog const & log, StatsArguments const & arguments, Output const & output) {
    std::uint64_t samples = 0, lost = 0;
    for (StatsChannel const & channel : log.channels) {
        samples += channel.samples.size();
        lost += channel.notFinite;
    }
    output.out << "good: " << arguments.target << ": " << log.channels.size() << " channels, "
               << log.times.size() << " rows, " << samples << " samples\n";
    for (std::string const & note : log.notes)
        output.err << "warning: " << arguments.file << ": " << note << '\n';
    if (lost > 0)
        output.err << "warning: " << arguments.file << ": " << lost
                   << " samples are no finite numbers and left out\n";
}

template <bool (*Save)(StatsLog const &, StatsArguments const &, ByteStream &)>
ExitCode convert(StatsArguments const & arguments, Output const & output) {
    if (IsSameFile(arguments.file, arguments.target))
        return Fail(output, {arguments.target + ": would overwrite the log"});
    Lines reasons;
    ByteStreamProxy const source = OpenForReading(arguments.file, reasons);
    if (!source)
        return Fail(output, reasons);
    StatsLog const log = ReadStatsLog(*source);
    ByteStreamProxy const target(
        FilePathHDRaw::UnaliasedFileOpen(arguments.target.c_str(), c_streamWrite, false));
    if (!target || !Save(log, arguments, *target) || !target->Flush()) {
        if (target)
            target->Discard();
        return Fail(output, {arguments.target + ": cannot be written"});
    }
    printVerdict(log, arguments, output);
    return exitGood;
}

void addVerb(CLI::App & stats, Job & job, char const * name, char const * description, char const * target,
             ExitCode (*work)(StatsArguments const &, Output const &), char const * example) {
    CLI::App & verb = *stats.add_subcommand(name, description);
    auto const arguments = AddVerb(verb, job, work);
    AddFile(verb, "FILE", arguments->file, "A log of the stat graph, complete or cut by a crash");
    AddFile(verb, "OUT", arguments->target, target);
    verb.footer(example);
}

} // namespace

void AddStatsVerbs(CLI::App & app, Job & job) {
    CLI::App & stats = *app.add_subcommand("stats", "Logs of the stat graph");
    stats.require_subcommand(1);
    stats.footer("Example: crosstool stats plot statgraph.txt frames.svg");
    addVerb(stats, job, "plot", "Draw each channel over time, with minimum, average and percentiles",
            "The SVG picture to write", convert<savePlot>,
            "Example: crosstool stats plot statgraph.txt frames.svg");
    addVerb(stats, job, "trace", "Write the samples as counter events for a trace viewer",
            "The JSON file to write", convert<saveTrace>,
            "Example: crosstool stats trace statgraph.txt frames.json");
}
