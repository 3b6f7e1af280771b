#include "samples/sandbox/Report.h"

#include <cstdio>

void Report::Begin(std::string const & subsystem) {
    End();
    name = subsystem;
}

bool Report::Expect(bool holds, std::string const & fact) {
    if (!holds && faults++ == 0)
        firstFault = fact;
    return holds;
}

void Report::Evidence(std::string const & seen) {
    if (!evidence.empty())
        evidence += ", ";
    evidence += seen;
}

void Report::End() {
    if (name.empty())
        return;
    if (faults == 0) {
        std::printf("PASS %s: %s\n", name.c_str(), evidence.c_str());
    } else {
        std::printf("FAIL %s: not so: %s (%d faults)\n", name.c_str(), firstFault.c_str(), faults);
        ++failures;
    }
    std::fflush(stdout);
    name.clear();
    evidence.clear();
    firstFault.clear();
    faults = 0;
}
