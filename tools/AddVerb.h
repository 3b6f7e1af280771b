#pragma once

// How verbs enter the command line. Help, man page and completion are all made from what is told here.

#include "tools/Verbs.h"

#include <CLI/CLI.hpp>

#include <memory>
#include <string>

// Adds the verbs of a format.
inline CLI::App & AddGroup(CLI::App & app, std::string const & name, char const * description) {
    CLI::App & group = *app.add_subcommand(name, description)->group("Groups");
    group.require_subcommand(1);
    group.footer("Help for a verb: crosstool " + name + " VERB --help");
    return group;
}

// Adds a verb to a group. The example is what follows behind its name; a test runs each.
inline CLI::App & AddVerb(CLI::App & group, std::string const & name, char const * description,
                          std::string const & example) {
    CLI::App & verb = *group.add_subcommand(name, description)->group("Verbs");
    verb.footer("Example: crosstool " + group.get_name() + ' ' + name + (example.empty() ? "" : " ") +
                example);
    return verb;
}

// Makes a verb run `work` with arguments of its own, which live as long as the job.
template <class Arguments>
std::shared_ptr<Arguments> SetWork(CLI::App & verb, Job & job,
                                   ExitCode (*work)(Arguments const &, Output const &)) {
    auto const arguments = std::make_shared<Arguments>();
    verb.callback([&job, work, arguments] {
        job = [work, arguments](Output const & output) { return work(*arguments, output); };
    });
    return arguments;
}

// Adds a file that must be named.
inline void AddFile(CLI::App & verb, char const * name, std::string & file, char const * description) {
    verb.add_option(name, file, description)->required()->option_text(" ");
}

inline CLI::Option * AddJson(CLI::App & verb, bool & asJson) {
    return verb.add_flag("--json", asJson, "Print one JSON object in place of text");
}

// Of verbs that tell about one file.
struct FileArguments {
    std::string file;
    bool asJson = false;
};
