#pragma once

// How verbs enter the command line.

#include "tools/Verbs.h"

#include <CLI/CLI.hpp>

#include <memory>
#include <string>

// Adds a verb that runs `work` with arguments of its own, which live as long as the job.
template <class Arguments>
std::shared_ptr<Arguments> AddVerb(CLI::App & verb, Job & job,
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
