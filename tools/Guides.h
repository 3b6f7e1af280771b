#pragma once

// What people read and type, made from the same texts as the help.

#include <string>

namespace CLI {
class App;
}

// The manual page, for man.
std::string ManualPage(CLI::App const & app);

// A script for bash that completes groups, verbs, options and files.
std::string BashCompletion(CLI::App const & app);
