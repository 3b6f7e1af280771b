#pragma once

#include "Cross/Util/BinaryConfig.h"

#include <algorithm>
#include <vector>

// Reads one field in every way there is. False unless exactly the reads of its type succeed.
inline bool ReadsAsItsType(BinaryConfig & table, std::uint32_t key, BCTypes::FieldEntryType type) {
    int integer;
    float number;
    bool flag;
    unsigned int const size = std::min(table.GetBinaryConfigDataSize(), 4096u) + 1;
    std::vector<char> text(size);
    std::vector<char16_t> wide(size);
    return table.GetNumber(key, integer) == (type == BCTypes::Integer) &&
           table.GetNumber(key, number) == (type == BCTypes::Float) &&
           table.GetBool(key, flag) == (type == BCTypes::Bool) &&
           table.GetString(key, text.data(), size) == (type == BCTypes::String) &&
           table.GetWString(key, wide.data(), size) == (type == BCTypes::WString) &&
           table.TableExists(key) == (type == BCTypes::Table || type == BCTypes::TableUnsorted) &&
           table.AttributeExists(key) == !table.TableExists(key);
}

// Reads every field of the current table and of all below it, by key. False when one does not read back.
inline bool WalkTable(BinaryConfig & table) {
    for (unsigned int i = 0; i < table.GetCount(); ++i) {
        std::uint32_t const key = table.GetAt(i);
        if (!ReadsAsItsType(table, key, table.GetTypeFromIndex(i)))
            return false;
        if (table.TableExists(key)) {
            table.TablePush(key);
            bool const good = WalkTable(table);
            table.TablePop();
            if (!good)
                return false;
        }
    }
    return true;
}
