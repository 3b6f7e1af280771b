#pragma once

#include "samples/sandbox/Assets.h"

#include <string>

// Builds the table of an asset from a script text, that of its file when none is given. False, with the
// reason in `error`, when the script cannot be read or run or the table cannot be saved.
bool BuildTable(Asset const & asset, std::string & error);
bool BuildTable(Asset const & asset, std::string const & script, std::string & error);
