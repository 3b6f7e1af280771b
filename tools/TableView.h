#pragma once

// A loaded table as people see it: fields with names where a list gives them, and values as text.

#include "Cross/Util/BinaryConfig.h"

#include <cstdint>
#include <iosfwd>
#include <map>
#include <string>
#include <vector>

// Names for keys, since a table holds none.
class NameList {
public:
    // Adds each line of a text file as a name. False, with the reason in `findings`, when it cannot be read.
    bool Load(std::string const & path, std::vector<std::string> & findings);

    // Null when there is none, or when two names of the list have this key.
    std::string const * Find(std::uint32_t key) const;

    // The field as a component of a path: its name, '%' before each '.', '*' and '%', or its key.
    std::string Label(std::uint32_t key) const;

private:
    void add(std::string const & name);

    std::map<std::uint32_t, std::string> names; // "" for a key that two names share
};

// A field of the table on which the cursor stands. `value` points into the image.
struct TableField {
    std::uint32_t key;
    BCTypes::FieldEntryType type;
    char const * value;

    bool IsTable() const { return type == BCTypes::Table || type == BCTypes::TableUnsorted; }
};

std::string KeyText(std::uint32_t key);

// The fields of the current table in stored order. The image must be sound.
std::vector<TableField> FieldsOf(BinaryConfig const & config);

// Type and value for people, a table with the number of its fields. Equal texts mean equal fields, contents
// of tables excepted.
std::string FieldText(TableField const & field);

// "N fields, N bytes, crc 0x..." of the whole table; the cursor stands at its root.
std::string Summary(BinaryConfig & config);

// Print all fields below the cursor, which is at the root again afterwards. The JSON is one object with the
// verdict on its first line.
void PrintTree(BinaryConfig & config, NameList const & names, std::ostream & out);
void PrintJson(BinaryConfig & config, NameList const & names, std::string const & file, std::ostream & out);
