#pragma once

// crosstool: one command line for people, with a verb per task and a group of verbs per file format. A format
// adds its verbs in a source of its own; Crosstool.cpp parses the line and runs the one verb that was asked
// for.
//
// The first line of what a verb prints is its verdict. Results, findings included, go to `out`; the reason
// why a verb could not do its work goes to `err` and begins with "failed: ".

#include <functional>
#include <iosfwd>
#include <string>
#include <vector>

namespace CLI {
class App;
}

enum ExitCode : int {
    exitGood = 0,
    exitFinding = 1, // a verify found damage, a diff found a difference
    exitFailed = 2   // it could not be done, a wrong command line included
};

struct Output {
    std::ostream & out;
    std::ostream & err;
};

// The work of the verb on the command line. Parsing a verb sets it; it runs once the whole line is known to
// be good.
using Job = std::function<ExitCode(Output const & output)>;

using Lines = std::vector<std::string>;

// Prints the verdict in front of the first line, and the others below.
void PrintLines(std::ostream & stream, char const * verdict, Lines const & lines);

// The end of a verb that could not do its work.
ExitCode Fail(Output const & output, Lines const & reasons);

// Each adds the verbs of a format, which set `job`; both must outlive the parsing.
void AddChunkVerbs(CLI::App & app, Job & job);
void AddConfigVerbs(CLI::App & app, Job & job);
void AddMenuVerbs(CLI::App & app, Job & job);
void AddMeshVerbs(CLI::App & app, Job & job);
void AddScriptVerbs(CLI::App & app, Job & job);
void AddSettingsVerbs(CLI::App & app, Job & job);
void AddStatsVerbs(CLI::App & app, Job & job);
void AddSyncVerbs(CLI::App & app, Job & job);
void AddTableVerbs(CLI::App & app, Job & job);
void AddTargaVerbs(CLI::App & app, Job & job);

// Runs one command line and gives the exit code. Nothing is thrown. While it runs, the trace of the process
// is its own: the lines follow behind the verdict on `err`. Where there is a `terminal`, progress shows
// there.
int RunCrosstool(int argc, char const * const * argv, std::ostream & out, std::ostream & err,
                 std::ostream * terminal = nullptr);
