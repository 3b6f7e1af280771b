#include "tools/AddVerb.h"
#include "tools/Guides.h"
#include "tools/Progress.h"
#include "tools/Quote.h"

#include "Cross/engine/diagnostics/Trace.h"

#include <optional>
#include <string>
#include <vector>

namespace {

constexpr char const * c_guide =
    "The first line of the output is the verdict. Exit codes: 0 good, 1 a finding (damage, a difference),\n"
    "2 could not be done; the reason is on standard error then, behind \"failed: \".\n"
    "Many verbs take --json: they print one JSON object, whose first entry is \"verdict\".\n"
    "Help for a verb: crosstool GROUP VERB --help";

// Holds the trace back, so that the verdict stays the first line.
class HeldTrace {
public:
    HeldTrace() { dbTraceSetSink(keep, this); }

    HeldTrace(HeldTrace const &) = delete;
    HeldTrace & operator=(HeldTrace const &) = delete;

    ~HeldTrace() { dbTraceSetSink(nullptr, nullptr); }

    void Print(std::ostream & stream) const {
        for (std::string const & line : lines)
            stream << "trace: " << line << '\n';
    }

private:
    static void keep(char const * text, void * context) {
        static_cast<HeldTrace *>(context)->lines.emplace_back(text);
    }

    std::vector<std::string> lines;
};

// The name that the usage shows for what comes next on the line.
void nameNext(CLI::App & app, char const * next) {
    auto const formatter = std::make_shared<CLI::Formatter>();
    formatter->label("SUBCOMMAND", next);
    formatter->label("Positionals", "Arguments");
    app.formatter(formatter);
}

// Adds a verb for the build, which help does not show.
void addGuide(CLI::App & app, Job & job, char const * name, std::string (*guide)(CLI::App const &)) {
    app.add_subcommand(name)->group("")->callback([&app, &job, guide] {
        job = [&app, guide](Output const & output) {
            output.out << guide(app);
            return exitGood;
        };
    });
}

void addGroups(CLI::App & app, Job & job) {
    app.name("crosstool");
    app.description("Works with the files of the library.");
    app.footer(c_guide);
    app.require_subcommand(1);
    nameNext(app, "VERB"); // groups take this over
    AddTableVerbs(app, job);
    AddScriptVerbs(app, job);
    AddSyncVerbs(app, job);
    AddConfigVerbs(app, job);
    AddSettingsVerbs(app, job);
    AddStatsVerbs(app, job);
    AddMenuVerbs(app, job);
    AddTargaVerbs(app, job);
    AddMeshVerbs(app, job);
    AddChunkVerbs(app, job);
    addGuide(app, job, "man", ManualPage);
    addGuide(app, job, "completion", BashCompletion);
    nameNext(app, "GROUP VERB");
}

// The group or verb that parsing came to.
CLI::App const & lastOn(CLI::App const & app) {
    auto const next = app.get_subcommands();
    return next.empty() ? app : lastOn(*next.front());
}

std::string whatIsWrong(CLI::App const & app, CLI::ParseError const & error) {
    if (lastOn(app).get_subcommands({}).empty())
        return error.what();
    auto const rest = app.remaining(true);
    return rest.empty() ? "a group or a verb is missing" : Quote(rest.front()) + " is not known here";
}

ExitCode parseAndRun(int argc, char const * const * argv, Output const & output) {
    Job job;
    CLI::App app;
    addGroups(app, job);
    try {
        app.parse(argc, argv);
    } catch (CLI::ParseError const & error) {
        if (error.get_exit_code() == 0) { // a request for help
            app.exit(error, output.out, output.err);
            return exitGood;
        }
        output.err << "failed: " << whatIsWrong(app, error) << "\n\n" << app.help();
        return exitFailed;
    }
    return job(output);
}

ExitCode runGuarded(int argc, char const * const * argv, Output const & output) {
    try {
        return parseAndRun(argc, argv, output);
    } catch (std::exception const & error) {
        output.err << "failed: " << error.what() << '\n';
        return exitFailed;
    }
}

} // namespace

void PrintLines(std::ostream & stream, char const * verdict, Lines const & lines) {
    for (std::string const & line : lines)
        stream << (&line == &lines.front() ? verdict : "") << line << '\n';
}

ExitCode Fail(Output const & output, Lines const & reasons) {
    PrintLines(output.err, "failed: ", reasons);
    return exitFailed;
}

int RunCrosstool(int argc, char const * const * argv, std::ostream & out, std::ostream & err,
                 std::ostream * terminal) {
    HeldTrace trace;
    std::optional<Progress> progress;
    if (terminal)
        progress.emplace(*terminal, out, err);
    ExitCode const code = runGuarded(argc, argv, Output{out, err});
    trace.Print(err);
    // A full disk or a closed pipe must not pass for a good end.
    if (!out.flush()) {
        err << "failed: the output cannot be written\n";
        return exitFailed;
    }
    return code;
}
