#pragma once

#include <string>

// The whole content of a file by its aliased path; "" when it does not open.
std::string ReadWholeFile(char const * path);
