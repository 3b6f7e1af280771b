#pragma once

// What distinguishes two tables.

#include <string>
#include <vector>

class BinaryConfig;
class NameList;

// One line for each field that only one of the tables has, that has another type or value, and for each table
// kept in another order: its path and both values, the first table's first. Both cursors stand at the root.
std::vector<std::string> DiffTables(BinaryConfig & first, BinaryConfig & second, NameList const & names);
