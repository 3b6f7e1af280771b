#pragma once

// What loading a sectioned file silently drops or cuts.

#include <string>
#include <vector>

class ByteStream;

struct ConfigReport {
    // One line of the file, counted from 1 as editors do, and what happens to it.
    struct Finding {
        std::size_t line;
        std::string reason;
    };

    std::size_t sections = 0;
    std::size_t entries = 0; // that loading keeps
    std::vector<Finding> findings;
};

// Reads the rest of a stream as ConfigFile::Load does. A file without any header has a finding for that.
ConfigReport LintConfig(ByteStream & stream);
