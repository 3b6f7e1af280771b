#pragma once

#include <string>

// The real path of an aliased one.
std::string RealPath(std::string const & aliased);

// The same in UTF-16 for sectioned files, which know no aliases.
std::u16string WideRealPath(char const * aliased);

// The whole content of a file by its aliased path; "" when it does not open.
std::string ReadWholeFile(char const * path);

// Replaces a file by its aliased path, or makes it, with the folders above it. False when it cannot be
// written.
bool WriteWholeFile(char const * path, std::string const & content);
