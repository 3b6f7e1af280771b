#include "samples/sandbox/Report.h"

#include <cstdio>

namespace {

// In the order of Subsystem.
constexpr char const * c_names[] = {
    "keys and logging", "attribute tables",     "run-time structures",         "resource inventory",
    "staged loading",   "configuration stores", "determinism and sync checks", "instrumentation",
    "cheat menu",       "asset codecs",         "engine library contracts"};

} // namespace

bool Report::Expect(bool holds, std::string const & fact) {
    if (!holds) {
        current->faults.push_back(fact);
        std::fprintf(stderr, "not so: %s\n", fact.c_str());
    }
    return holds;
}

int Report::Print() const {
    static_assert(std::size(c_names) == c_subsystems);
    int failures = 0;
    for (std::size_t i = 0; i < c_subsystems; ++i) {
        Row const & row = rows[i];
        std::vector<std::string> lines = row.evidence;
        if (!row.IsGood()) {
            ++failures;
            lines = {row.faults.empty() ? "nothing was seen"
                                        : "not so: " + row.faults.front() + " (" +
                                              std::to_string(row.faults.size()) + " faults)"};
        }
        std::printf("%s %-27s %s\n", row.IsGood() ? "PASS" : "FAIL", c_names[i], lines.front().c_str());
        for (std::size_t line = 1; line < lines.size(); ++line)
            std::printf("%33s%s\n", "", lines[line].c_str());
    }
    std::fflush(stdout);
    return failures;
}
