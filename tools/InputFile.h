#pragma once

// A file that a verb is asked to read.

#include "Cross/engine/filesystem/ByteStream.h"

#include <string>
#include <vector>

// Opens a file by its plain path; reading it counts as progress. Empty, with the reason in `findings`, when
// it cannot be opened.
ByteStreamProxy OpenForReading(std::string const & path, std::vector<std::string> & findings);

// Whether two paths lead to one existing file, which a verb would then overwrite.
bool IsSameFile(std::string const & left, std::string const & right);

// The bytes of a whole file. False, with the reason in `findings`, when it cannot be read.
bool ReadWholeFile(std::string const & path, std::string & bytes, std::vector<std::string> & findings);
