#pragma once

// A table file from outside: opened by its plain path, checked to the last byte, and only then loaded.

#include <string>
#include <vector>

class BinaryConfig;

enum class TableState {
    good,
    damaged, // the file opens, but is not a whole and sound table file
    failed   // it does not open, or holds what cannot be read on this machine
};

// Checks a file and, when it is good, loads it into `config`, whose cursor must stand at its base. Otherwise
// `findings` tells what is wrong, in the order found, each "file: offset 0x..: what" (without an offset when
// the file does not open).
TableState OpenTableFile(std::string const & path, BinaryConfig & config,
                         std::vector<std::string> & findings);
