#pragma once

// Table sources: an attribute table written by people, as plain Lua data. A script runs in a data state of
// its own; every global it sets becomes a field of the root table, but for the table `types`, which tells the
// numbers that are integers, the texts that are wide and the tables that keep their order.
// docs/table-source.md is the notation for those who write it.
//
// Threads: any, one builder each. Lifetime: nothing passed in is kept.

#include <cstddef>
#include <set>
#include <string>
#include <string_view>
#include <vector>

class BinaryConfigCreator;
class ByteStream;

namespace TableSource {

struct Report {
    std::vector<std::string> errors; // each "file: path: what is wrong", or "file:line: ..." from Lua itself
    std::vector<std::string> warnings; // of the same form; the table is built all the same
    std::set<std::string> names;       // of all fields of all tables
    std::size_t fieldCount = 0;        // of all tables
};

// Runs the rest of `stream` as a source and adds its fields to `creator`, which must be empty. False when the
// source cannot be read, run or stored; `report.errors` then tells all that was found, and nothing was added.
bool Build(ByteStream & stream, BinaryConfigCreator & creator, Report & report);

// A field name as a component of a path in `types` and in messages: '%' stands before each '.', '*' and '%'.
std::string EscapeName(std::string_view name);

} // namespace TableSource
