#pragma once

// Where two printed sync blocks drift apart. Both texts are read once, line by line, and side by side by
// their groups, so memory stays small however long they are; a file may hold several blocks, one behind the
// other.

#include "Cross/engine/filesystem/ByteStream.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

// A line of one of the texts, without its line end. Number 0 when the text ended before it.
struct SyncLine {
    std::uint64_t number = 0; // counted from 1
    std::string text;
};

struct SyncReport {
    std::uint64_t lines = 0;           // that agree, in front of the first difference
    std::array<std::string, 2> totals; // of the first blocks whose total CRC differs, else empty
    bool linesDiffer = false;          // the rest tells about the first line that does
    std::string frame;                 // value of the last line "frame" in front of it, "" when there is none
    std::string path;                  // groups and name, such as "Sim/unit/pos"
    std::array<SyncLine, 2> difference;            // of the first text and the second
    std::vector<std::string> before;               // at most c_syncContext lines that both texts have
    std::array<std::vector<std::string>, 2> after; // at most as many that follow in each
    std::uint64_t laterGroups = 0; // groups behind the first one that have differing lines too

    bool AreEqual() const { return !linesDiffer && totals[0] == totals[1]; }
};

constexpr std::size_t c_syncContext = 3;

// Compares two printed texts. Values are compared one by one; where the groups themselves differ, the
// comparison goes on behind them. Throws std::runtime_error, whose text begins with the name of the stream,
// for a text that is no printed block, a line above 16 KiB and groups nested deeper than 10,000.
SyncReport DiffSync(ByteStream & first, ByteStream & second);

// How far the floating-point numbers of two lines with one name are apart, from their bit patterns, as one
// text per differing number, such as "number 2: 1 unit in the last place". Empty when the lines hold none.
std::vector<std::string> SyncDistances(std::string const & first, std::string const & second);
