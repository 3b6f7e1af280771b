#pragma once

// What loading a Targa image does with a file, told without its pixels in memory.

#include <string>
#include <vector>

class ByteStream;

struct TargaReport {
    // One field of the header, and what its value means to loading.
    struct Field {
        unsigned int offset, size;
        char const * name;
        unsigned int value;
        std::string meaning;
    };

    // Something wrong with the file. One that is fatal makes loading fail; others it does not look at.
    struct Finding {
        unsigned int offset;
        bool isFatal;
        std::string reason;
    };

    bool Loads() const;

    // "W x H pixels of N bits, plain, bottom row first".
    std::string Summary() const;

    // The findings that are fatal, or all, as "FILE: offset N: reason".
    std::vector<std::string> Lines(std::string const & file, bool fatalOnly) const;

    std::vector<Field> fields; // empty when the file is shorter than its header
    std::vector<Finding> findings;
    unsigned int width = 0, height = 0, bitsPerPixel = 0;
    bool isPacked = false, topFirst = false;
};

// Reads the rest of a stream as TGAIO::Load does. The memory taken does not depend on the file.
TargaReport CheckTarga(ByteStream & stream);
