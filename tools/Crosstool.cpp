#include "tools/Verbs.h"

#include "Cross/engine/diagnostics/Trace.h"

#include <CLI/CLI.hpp>

#include <string>
#include <vector>

namespace {

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

ExitCode parseAndRun(int argc, char const * const * argv, Output const & output) {
    CLI::App app(
        "Works with the files of the library. Exit codes: 0 good, 1 a finding (damage, a difference), "
        "2 could not be done.",
        "crosstool");
    app.require_subcommand(1);
    Job job;
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
    try {
        app.parse(argc, argv);
    } catch (CLI::ParseError const & error) {
        if (error.get_exit_code() == 0) { // a request for help
            app.exit(error, output.out, output.err);
            return exitGood;
        }
        output.err << "failed: " << error.what() << "\n\n" << app.help();
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

int RunCrosstool(int argc, char const * const * argv, std::ostream & out, std::ostream & err) {
    HeldTrace trace;
    ExitCode const code = runGuarded(argc, argv, Output{out, err});
    trace.Print(err);
    // A full disk or a closed pipe must not pass for a good end.
    if (!out.flush()) {
        err << "failed: the output cannot be written\n";
        return exitFailed;
    }
    return code;
}
