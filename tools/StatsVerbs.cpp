#include "Cross/engine/filesystem/FilePathHDRaw.h"
#include "tools/AddVerb.h"
#include "tools/InputFile.h"
#include "tools/Json.h"
#include "tools/StatsPlot.h"
#include "tools/StatsTrace.h"

#include <filesystem>
#include <iomanip>
#include <ostream>

namespace {

struct StatsArguments : FileArguments {
    std::string target;
};

bool savePlot(StatsLog const & log, StatsArguments const & arguments, ByteStream & stream) {
    std::string const title = std::filesystem::path(arguments.file).filename().string();
    return BSWriteText(stream, PlotStats(log, title).c_str(), false);
}

bool saveTrace(StatsLog const & log, StatsArguments const &, ByteStream & stream) {
    return WriteStatsTrace(log, stream);
}

std::string contentText(StatsLog const & log) {
    std::size_t samples = 0;
    for (StatsChannel const & channel : log.channels)
        samples += channel.samples.size();
    return CountText(log.channels.size(), "channel", "channels") + ", " +
           CountText(log.times.size(), "row", "rows") + ", " + CountText(samples, "sample", "samples");
}

// What the file lacks.
Lines warningsOf(StatsLog const & log) {
    std::size_t lost = 0;
    for (StatsChannel const & channel : log.channels)
        lost += channel.notFinite;
    Lines warnings = log.notes;
    if (lost > 0)
        warnings.push_back(CountText(lost, "sample is no finite number", "samples are no finite numbers") +
                           " and left out");
    return warnings;
}

// The verdict on a file that was read or written.
void printVerdict(StatsLog const & log, std::string const & file, StatsArguments const & arguments,
                  Output const & output) {
    output.out << "good: " << file << ": " << contentText(log) << '\n';
    for (std::string const & warning : warningsOf(log))
        output.err << "warning: " << arguments.file << ": " << warning << '\n';
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
    printVerdict(log, arguments.target, arguments, output);
    return exitGood;
}

void printChannels(StatsLog const & log, std::ostream & out) {
    out << "   samples     minimum     average         95%         99%     maximum  channel\n";
    for (StatsChannel const & channel : log.channels) {
        out << std::setw(10) << channel.samples.size();
        if (channel.samples.empty()) {
            out << std::string(60, ' ') << "  " << Quote(channel.name) << '\n';
            continue;
        }
        StatsSummary const summary = Summarize(channel.samples);
        for (double const value : {double{summary.least}, summary.average, double{summary.percent95},
                                   double{summary.percent99}, double{summary.greatest}})
            out << std::setw(12) << std::fixed << std::setprecision(3) << value;
        out << "  " << Quote(channel.name) << '\n';
    }
}

// Without samples there is nothing to sum up.
JsonObject channelJson(StatsChannel const & channel) {
    JsonObject object;
    object.Add("name", channel.name)
        .Add("samples", channel.samples.size())
        .Add("notFinite", channel.notFinite);
    if (channel.samples.empty())
        return object;
    StatsSummary const summary = Summarize(channel.samples);
    return object.Add("minimum", summary.least)
        .Add("average", summary.average)
        .Add("percent95", summary.percent95)
        .Add("percent99", summary.percent99)
        .Add("maximum", summary.greatest);
}

void printJson(StatsLog const & log, std::string const & file, std::ostream & out) {
    std::vector<JsonObject> channels;
    for (StatsChannel const & channel : log.channels)
        channels.push_back(channelJson(channel));
    out << JsonObject()
               .Add("verdict", "good")
               .Add("file", file)
               .Add("rows", log.times.size())
               .Add("milliseconds", log.times.back() - log.times.front())
               .Add("channels", channels)
               .Add("warnings", warningsOf(log))
               .Text()
        << '\n';
}

ExitCode summary(StatsArguments const & arguments, Output const & output) {
    Lines reasons;
    ByteStreamProxy const source = OpenForReading(arguments.file, reasons);
    if (!source)
        return Fail(output, reasons);
    StatsLog const log = ReadStatsLog(*source);
    if (arguments.asJson) {
        printJson(log, arguments.file, output.out);
        return exitGood;
    }
    printVerdict(log, arguments.file, arguments, output);
    printChannels(log, output.out);
    return exitGood;
}

void addLog(CLI::App & verb, StatsArguments & arguments) {
    AddFile(verb, "FILE", arguments.file, "A log of the stat graph, complete or cut by a crash");
}

void addConversion(CLI::App & stats, Job & job, char const * name, char const * description,
                   char const * target, ExitCode (*work)(StatsArguments const &, Output const &),
                   char const * example) {
    CLI::App & verb = AddVerb(stats, name, description, example);
    auto const arguments = SetWork(verb, job, work);
    addLog(verb, *arguments);
    AddFile(verb, "OUT", arguments->target, target);
}

void addSummary(CLI::App & stats, Job & job) {
    CLI::App & verb =
        AddVerb(stats, "summary", "Print minimum, average, percentiles and maximum of each channel",
                "statgraph.txt --json");
    auto const arguments = SetWork(verb, job, summary);
    addLog(verb, *arguments);
    AddJson(verb, arguments->asJson);
}

} // namespace

void AddStatsVerbs(CLI::App & app, Job & job) {
    CLI::App & stats = AddGroup(app, "stats", "Logs of the stat graph");
    addSummary(stats, job);
    addConversion(stats, job, "plot", "Draw each channel over time, with minimum, average and percentiles",
                  "The SVG picture to write", convert<savePlot>, "statgraph.txt frames.svg");
    addConversion(stats, job, "trace", "Write the samples as counter events for a trace viewer",
                  "The JSON file to write", convert<saveTrace>, "statgraph.txt frames.json");
}
