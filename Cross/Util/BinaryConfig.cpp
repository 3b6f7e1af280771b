#include "Cross/Util/BinaryConfig.h"

#include "Cross/Util/BinaryConfigFormat.h"

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <cstring>

namespace {

using BCInternal::c_countSize;
using BCInternal::FieldInfo;

// Images come in one block, but nothing promises that a table in it is aligned: values are copied out.
template <class T>
T load(void const * from) {
    T value;
    std::memcpy(&value, from, sizeof(value));
    return value;
}

char const * bytesOf(FieldInfo const * field) { return reinterpret_cast<char const *>(field); }

std::uint32_t keyOf(FieldInfo const * field) {
    return load<std::uint32_t>(bytesOf(field) + offsetof(FieldInfo, key));
}

BCTypes::FieldEntryType typeOf(FieldInfo const * field) {
    return load<BCTypes::FieldEntryType>(bytesOf(field) + offsetof(FieldInfo, type));
}

std::uint32_t offsetOf(FieldInfo const * field) {
    return load<std::uint32_t>(bytesOf(field) + offsetof(FieldInfo, offset));
}

bool isTable(BCTypes::FieldEntryType type) {
    return type == BCTypes::Table || type == BCTypes::TableUnsorted;
}

// Candidates of a search: consecutive fields, in ascending order of key.
struct Candidates {
    FieldInfo const * first;
    std::size_t count;
};

constexpr std::size_t c_largeTable = 1000;
constexpr std::int64_t c_window = 32;

// Keys are hashes and spread evenly, so the place of one in a large table can be guessed. The first guess is
// off by about the square root of the count, the second, which starts from the key found there, by the square
// root of that. Gives the fields around it when the key belongs among them, else all candidates.
Candidates narrow(Candidates all, std::uint32_t key) {
    auto const count = static_cast<std::int64_t>(all.count);
    auto const place = [count](std::int64_t distance) { return distance * count >> 32; };
    std::int64_t guess = place(key);
    guess += place(std::int64_t{key} - keyOf(all.first + guess));
    std::int64_t const low = std::clamp<std::int64_t>(guess - c_window, 0, count - 1);
    std::int64_t const high = std::clamp<std::int64_t>(guess + c_window, 0, count - 1);
    if (keyOf(all.first + low) < key && key <= keyOf(all.first + high))
        return {all.first + low + 1, static_cast<std::size_t>(high - low)};
    return all;
}

// The first candidate whose key is not below `key`, or one past the last. Each step is a load and a
// conditional move, because no branch could be predicted.
FieldInfo const * lowerBound(Candidates all, std::uint32_t key) {
    if (all.count == 0)
        return all.first;
    auto [first, count] = all.count > c_largeTable ? narrow(all, key) : all;
    while (count > 1) {
        std::size_t const half = count / 2;
        FieldInfo const * const middle = first + half;
        first = keyOf(middle - 1) < key ? middle : first;
        count -= half;
    }
    return first + (keyOf(first) < key);
}

FieldInfo const * firstEqual(FieldInfo const * first, FieldInfo const * last, std::uint32_t key) {
    while (first != last && keyOf(first) != key)
        ++first;
    return first;
}

} // namespace

// Inline, since a shared library does not inline what it exports otherwise, and every read goes through
// these.
inline FieldInfo const * BinaryConfig::FindFieldInfo(TableInfo const & table, std::uint32_t key) const {
    auto const count = static_cast<std::size_t>(table.fieldsEnd - table.fieldsBegin);
    FieldInfo const * const found = table.unsorted ? firstEqual(table.fieldsBegin, table.fieldsEnd, key)
                                                   : lowerBound({table.fieldsBegin, count}, key);
    return found != table.fieldsEnd && keyOf(found) == key ? found : nullptr;
}

inline FieldInfo const * BinaryConfig::FindField(std::uint32_t key) const {
    TableInfo const & table = GetCurrTable();
    return table.fieldsBegin ? FindFieldInfo(table, key) : nullptr;
}

inline char const * BinaryConfig::findValue(std::uint32_t key, BCTypes::FieldEntryType type) const {
    FieldInfo const * const field = FindField(key);
    return field && typeOf(field) == type ? GetCurrTable().data + offsetOf(field) : nullptr;
}

BinaryConfig::BinaryConfig() : frames(1) {}

BinaryConfig::~BinaryConfig() = default;

void BinaryConfig::TablePush(std::uint32_t key) {
    FieldInfo const * const field = FindField(key);
    TableInfo & current = GetCurrTable();
    GetCurrTableStack().push_back(current);
    if (field && isTable(typeOf(field)))
        current = tableAt(current.data + offsetOf(field), typeOf(field) == BCTypes::TableUnsorted);
    else
        SetNullTable(current);
}

void BinaryConfig::TablePush(char const * name) { TablePush(NameHash(name)); }

void BinaryConfig::TablePop() {
    std::vector<TableInfo> & stack = GetCurrTableStack();
    if (stack.empty())
        return;
    GetCurrTable() = stack.back();
    stack.pop_back();
}

void BinaryConfig::TableRootPush() {
    TableFrame frame;
    SetRootTable(frame.current);
    frames.push_back(std::move(frame));
}

void BinaryConfig::TableRootPop() {
    if (frames.size() > 1)
        frames.pop_back();
}

bool BinaryConfig::TableExists(std::uint32_t key) const {
    FieldInfo const * const field = FindField(key);
    return field && isTable(typeOf(field));
}

bool BinaryConfig::TableExists(char const * name) const { return TableExists(NameHash(name)); }

bool BinaryConfig::AttributeExists(std::uint32_t key) const {
    FieldInfo const * const field = FindField(key);
    return field && typeOf(field) <= BCTypes::WString;
}

bool BinaryConfig::AttributeExists(char const * name) const { return AttributeExists(NameHash(name)); }

bool BinaryConfig::GetNumber(std::uint32_t key, int & value) const {
    char const * const stored = findValue(key, BCTypes::Integer);
    if (stored)
        value = load<std::int32_t>(stored);
    return stored != nullptr;
}

bool BinaryConfig::GetNumber(char const * name, int & value) const {
    return GetNumber(NameHash(name), value);
}

bool BinaryConfig::GetNumber(std::uint32_t key, float & value) const {
    char const * const stored = findValue(key, BCTypes::Float);
    if (stored)
        value = load<float>(stored);
    return stored != nullptr;
}

bool BinaryConfig::GetNumber(char const * name, float & value) const {
    return GetNumber(NameHash(name), value);
}

bool BinaryConfig::GetBool(std::uint32_t key, bool & value) const {
    char const * const stored = findValue(key, BCTypes::Bool);
    if (stored)
        value = *stored != 0;
    return stored != nullptr;
}

bool BinaryConfig::GetBool(char const * name, bool & value) const { return GetBool(NameHash(name), value); }

bool BinaryConfig::GetString(std::uint32_t key, char * buffer, unsigned int size) const {
    buffer[0] = 0;
    char const * const stored = findValue(key, BCTypes::String);
    if (stored && size > 0) {
        std::strncpy(buffer, stored, size);
        buffer[size - 1] = 0;
    }
    return stored != nullptr;
}

bool BinaryConfig::GetString(char const * name, char * buffer, unsigned int size) const {
    return GetString(NameHash(name), buffer, size);
}

bool BinaryConfig::GetWString(std::uint32_t key, char16_t * buffer, unsigned int size) const {
    buffer[0] = 0;
    char const * stored = findValue(key, BCTypes::WString);
    if (!stored)
        return false;
    if (size == 0)
        return true;
    unsigned int length = 0;
    for (; length < size - 1; ++length, stored += 2) {
        buffer[length] = load<char16_t>(stored);
        if (buffer[length] == 0)
            break;
    }
    std::fill(buffer + length, buffer + size, char16_t{});
    return true;
}

bool BinaryConfig::GetWString(char const * name, char16_t * buffer, unsigned int size) const {
    return GetWString(NameHash(name), buffer, size);
}

unsigned int BinaryConfig::GetCount() const {
    TableInfo const & table = GetCurrTable();
    return static_cast<unsigned int>(table.fieldsEnd - table.fieldsBegin);
}

std::uint32_t BinaryConfig::GetAt(unsigned int index) const {
    assert(index < GetCount());
    return keyOf(GetCurrTable().fieldsBegin + index);
}

BCTypes::FieldEntryType BinaryConfig::GetTypeFromIndex(unsigned int index) const {
    assert(index < GetCount());
    return typeOf(GetCurrTable().fieldsBegin + index);
}

void BinaryConfig::GetFieldInfos(std::vector<FieldInfo const *> & fields) const {
    TableInfo const & table = GetCurrTable();
    for (FieldInfo const * field = table.fieldsBegin; field != table.fieldsEnd; ++field)
        fields.push_back(field);
}

BinaryConfig::TableInfo BinaryConfig::tableAt(char const * position, bool unsorted) {
    TableInfo table;
    table.fieldsBegin = reinterpret_cast<FieldInfo const *>(position + c_countSize);
    table.fieldsEnd = table.fieldsBegin + load<std::uint32_t>(position);
    table.data = reinterpret_cast<char const *>(table.fieldsEnd);
    table.unsorted = unsorted;
    return table;
}

void BinaryConfig::SetNullTable(TableInfo & table) const { table = TableInfo(); }

void BinaryConfig::SetRootTable(TableInfo & table) const {
    bool const hasCount = data && dataSize >= c_countSize;
    if (hasCount && load<std::uint32_t>(data.get()) <= (dataSize - c_countSize) / sizeof(FieldInfo))
        table = tableAt(data.get(), false);
    else
        SetNullTable(table);
}

void BinaryConfig::SetData(ast::scoped_array<char> & holder, unsigned int size) {
    assert(!data || (frames.size() == 1 && GetCurrTableStack().empty()));
    data.swap(holder);
    dataSize = size;
    SetRootTable(GetCurrTable());
}

void BinaryConfig::SetFilename(char const * name) { filename = name; }
