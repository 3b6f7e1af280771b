#pragma once

// crosstool inside the test program.

#include "tools/Verbs.h"

#include <sstream>
#include <string>
#include <vector>

struct ToolResult {
    int code;
    std::string out, err;
};

inline ToolResult RunTool(std::vector<std::string> const & arguments) {
    std::vector<char const *> argv{"crosstool"};
    for (std::string const & argument : arguments)
        argv.push_back(argument.c_str());
    std::ostringstream out, err;
    int const code = RunCrosstool(static_cast<int>(argv.size()), argv.data(), out, err);
    return {code, out.str(), err.str()};
}
