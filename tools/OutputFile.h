#pragma once

// A file that a verb is asked to write.

#include <string>
#include <string_view>

// The path for the library's saves, which go through the alias mapping: names no alias.
std::string WithoutAlias(std::string const & path);

// Writes a whole file. False when that fails; the old file stays then.
bool WriteWholeFile(std::string const & path, std::string_view bytes);
