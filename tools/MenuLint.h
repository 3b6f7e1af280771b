#pragma once

// What loading a menu file silently drops, and what of it can never work.

#include <string>
#include <vector>

class LuaConfig;

struct MenuReport {
    struct Finding {
        std::string path; // keys and names from the top menu down; "" for the top menu
        std::string reason;
    };

    // That loading keeps, the top menu included.
    std::size_t menus = 0;
    std::size_t lines = 0;

    std::vector<Finding> findings;
};

// Reads what a menu file has left in a state, whose globals are the current table, as CheatMenu does. A file
// that has left no menu has a finding for that.
MenuReport LintMenu(LuaConfig & state);
