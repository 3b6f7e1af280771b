#pragma once

// The sandbox's evidence: a table with one PASS or FAIL for each subsystem of the library, and behind it what
// was seen.

#include <array>
#include <string>
#include <vector>

enum class Subsystem {
    Keys,
    Tables,
    Records,
    Inventory,
    Loading,
    Configuration,
    Determinism,
    Instruments,
    Menu,
    Codecs,
    Engine
};

class Report {
public:
    // Facts and evidence from here on belong to this subsystem.
    void Begin(Subsystem subsystem) { current = &rows[static_cast<std::size_t>(subsystem)]; }

    // A fact that must hold. One that does not goes to stderr at once and fails the subsystem, whose row
    // tells the first one.
    bool Expect(bool holds, std::string const & fact);

    // A line of the table behind PASS.
    void Evidence(std::string const & seen) { current->evidence.push_back(seen); }

    // Prints the table and gives the number of subsystems that failed. Nothing seen is a failure, too.
    int Print() const;

private:
    struct Row {
        std::vector<std::string> evidence;
        std::vector<std::string> faults;

        bool IsGood() const { return faults.empty() && !evidence.empty(); }
    };

    static constexpr std::size_t c_subsystems = static_cast<std::size_t>(Subsystem::Engine) + 1;

    std::array<Row, c_subsystems> rows;
    Row * current = rows.data();
};
