#pragma once

// The sandbox's evidence: one line per subsystem, PASS with what was seen or FAIL with what was expected and
// was not.

#include <string>

class Report {
public:
    // Opens a subsystem; its line is printed when the next one opens or at End.
    void Begin(std::string const & subsystem);

    // A fact that must hold. The first one that does not becomes the FAIL line of the subsystem; later ones
    // are only counted.
    bool Expect(bool holds, std::string const & fact);

    // What the PASS line tells; pieces are joined by ", ".
    void Evidence(std::string const & seen);

    // Prints the open subsystem's line.
    void End();

    // Subsystems that failed so far.
    int GetFailures() const { return failures; }

private:
    std::string name;
    std::string evidence;
    std::string firstFault;
    int faults = 0;
    int failures = 0;
};
