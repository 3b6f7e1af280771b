#include "Cross/Util/BinaryConfigCreator.h"

#include "Cross/Util/BinaryConfigEntry.h"
#include "Cross/Util/NameHash.h"
#include "Cross/engine/diagnostics/Fatal.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>
#include <new>
#include <stdexcept>
#include <string>
#include <utility>

namespace {

constexpr std::size_t c_scannedChildren = 8; // more than these are found by index
constexpr std::size_t c_comparedName = 255;  // names that agree in so many characters are equal

// Small entries are cut from blocks of the pool.
constexpr std::size_t c_block = 1008;
constexpr std::size_t c_smallEntry = 256;

std::size_t sizeWithEnd(char const * text) { return std::strlen(text) + 1; }

std::size_t sizeWithEnd(char16_t const * text) {
    return (std::char_traits<char16_t>::length(text) + 1) * sizeof(char16_t);
}

// What a field takes in an image at most: its record, its value or the count of a table, and the bytes that
// align what follows a value of odd length.
std::size_t sizeInImage(BCTypes::FieldEntryType type, std::size_t valueSize) {
    switch (type) {
    case BCTypes::Bool:
    case BCTypes::String:
    case BCTypes::WString:
        return sizeof(BCInternal::FieldInfo) + valueSize + 3;
    default:
        return sizeof(BCInternal::FieldInfo) + 4;
    }
}

} // namespace

BinaryConfigCreator::InternalEntry * BinaryConfigCreator::Children::Find(std::uint32_t key) const {
    if (index.empty()) {
        auto const found = std::find_if(entries.begin(), entries.end(),
                                        [key](InternalEntry const * entry) { return entry->key == key; });
        return found == entries.end() ? nullptr : *found;
    }
    std::uint32_t const place = index[slotOf(index, key)].place;
    return place == 0 ? nullptr : entries[place - 1];
}

void BinaryConfigCreator::Children::Add(InternalEntry * entry) {
    std::size_t const count = entries.size() + 1;
    if (count > c_scannedChildren && 2 * count > index.size())
        growIndex();
    entries.push_back(entry);
    if (!index.empty())
        index[slotOf(index, entry->key)] = {entry->key, static_cast<std::uint32_t>(count)};
}

std::size_t BinaryConfigCreator::Children::slotOf(Index const & index, std::uint32_t key) {
    // Keys of names are hashes already, but keys from a caller may be consecutive numbers.
    std::uint64_t const spread = key * std::uint64_t{0x9E3779B97F4A7C15};
    std::size_t slot = spread >> (64 - std::countr_zero(index.size()));
    while (index[slot].place != 0 && index[slot].key != key)
        slot = (slot + 1) & (index.size() - 1);
    return slot;
}

void BinaryConfigCreator::Children::growIndex() {
    Index grown(4 * std::bit_ceil(entries.size()));
    for (std::uint32_t place = 1; place <= entries.size(); ++place) {
        std::uint32_t const key = entries[place - 1]->key;
        grown[slotOf(grown, key)] = {key, place};
    }
    index.swap(grown);
}

BinaryConfigCreator::BinaryConfigCreator() : BinaryConfigCreator(nullptr) {}

BinaryConfigCreator::BinaryConfigCreator(_HMEMPOOL * givenPool)
    : ownsPool(!givenPool), pool(givenPool ? givenPool : MemPoolCreate("BCCEntryPool", 1, 0, true)) {
    try {
        root = current = CreateTable(named("Root"));
    } catch (...) {
        if (ownsPool)
            MemPoolDestroy(pool);
        throw;
    }
}

BinaryConfigCreator::~BinaryConfigCreator() {
    for (Children * children = lastChildren; children != nullptr;)
        std::exchange(children, children->Previous())->~Children();
    MemPoolClear(pool);
    if (ownsPool)
        MemPoolDestroy(pool);
}

bool BinaryConfigCreator::SetNumber(std::uint32_t key, int value) {
    return addField(unnamed(key), BCTypes::Integer, &value, sizeof(value));
}

bool BinaryConfigCreator::SetNumber(char const * name, int value) {
    return addField(named(name), BCTypes::Integer, &value, sizeof(value));
}

bool BinaryConfigCreator::SetNumber(std::uint32_t key, float value) {
    return addField(unnamed(key), BCTypes::Float, &value, sizeof(value));
}

bool BinaryConfigCreator::SetNumber(char const * name, float value) {
    return addField(named(name), BCTypes::Float, &value, sizeof(value));
}

bool BinaryConfigCreator::SetBool(std::uint32_t key, bool value) {
    return addField(unnamed(key), BCTypes::Bool, &value, sizeof(value));
}

bool BinaryConfigCreator::SetBool(char const * name, bool value) {
    return addField(named(name), BCTypes::Bool, &value, sizeof(value));
}

bool BinaryConfigCreator::SetString(std::uint32_t key, char const * value) {
    return value && addField(unnamed(key), BCTypes::String, value, sizeWithEnd(value));
}

bool BinaryConfigCreator::SetString(char const * name, char const * value) {
    return value && addField(named(name), BCTypes::String, value, sizeWithEnd(value));
}

bool BinaryConfigCreator::SetWString(std::uint32_t key, char16_t const * value) {
    return value && addField(unnamed(key), BCTypes::WString, value, sizeWithEnd(value));
}

bool BinaryConfigCreator::SetWString(char const * name, char16_t const * value) {
    return value && addField(named(name), BCTypes::WString, value, sizeWithEnd(value));
}

bool BinaryConfigCreator::TablePush(std::uint32_t key, bool unsorted) {
    return pushTable(unnamed(key), unsorted);
}

bool BinaryConfigCreator::TablePush(char const * name, bool unsorted) {
    return pushTable(named(name), unsorted);
}

void BinaryConfigCreator::TablePop() {
    if (tableStack.empty())
        return;
    current = tableStack.back();
    tableStack.pop_back();
}

BinaryConfigCreator::FieldName BinaryConfigCreator::named(char const * name) {
    char const * const text = name ? name : "";
    std::size_t const length = std::strlen(text);
    return {NameHash(text, length), text, std::min(length, c_comparedName)};
}

bool BinaryConfigCreator::addField(FieldName const & name, BCTypes::FieldEntryType type, void const * value,
                                   std::size_t size) {
    if (FindEntry(current, name))
        return false;
    addChild(createEntry(name, type, value, size));
    return true;
}

bool BinaryConfigCreator::pushTable(FieldName const & name, bool unsorted) {
    InternalEntry * table = FindEntry(current, name);
    bool const isNew = !table;
    if (isNew) {
        table = CreateTable(name);
        if (unsorted)
            table->type = BCTypes::TableUnsorted;
        addChild(table);
    }
    tableStack.push_back(current);
    current = table;
    return isNew;
}

void BinaryConfigCreator::addChild(InternalEntry * entry) {
    if (!current->children)
        current->children = lastChildren = new (allocate(sizeof(Children))) Children(lastChildren);
    current->children->Add(entry);
    imageBound += sizeInImage(entry->type, entry->valueSize);
}

BinaryConfigCreator::InternalEntry * BinaryConfigCreator::FindEntry(InternalEntry const * table,
                                                                    FieldName const & name) const {
    InternalEntry * const found = table->children ? table->children->Find(name.key) : nullptr;
    if (found && name.text && std::strncmp(found->Name(), name.text, c_comparedName) != 0) {
        dbLineAux(__FILE__, __LINE__);
        dbFatalfAux("BinaryConfigCreator Fields have a name hash collision.  HANDLE THIS");
    }
    return found;
}

BinaryConfigCreator::InternalEntry * BinaryConfigCreator::CreateTable(FieldName const & name) {
    return createEntry(name, BCTypes::Table, nullptr, 0);
}

BinaryConfigCreator::InternalEntry * BinaryConfigCreator::createEntry(FieldName const & name,
                                                                      BCTypes::FieldEntryType type,
                                                                      void const * value, std::size_t size) {
    char * const block = static_cast<char *>(allocate(sizeof(InternalEntry) + size + name.length + 1));
    char * const valueCopy = block + sizeof(InternalEntry);
    char * const nameCopy = valueCopy + size;
    std::copy_n(static_cast<char const *>(value), size, valueCopy);
    std::copy_n(name.text, name.length, nameCopy);
    nameCopy[name.length] = 0;
    return new (block)
        InternalEntry{name.key, type, static_cast<unsigned int>(size), name.text != nullptr, nullptr};
}

void * BinaryConfigCreator::allocate(std::size_t size) {
    if (size > std::numeric_limits<unsigned int>::max())
        throw std::length_error("BinaryConfigCreator: a text of 4 GiB");
    if (size > c_smallEntry)
        return MemPoolAlloc(pool, static_cast<unsigned int>(size));
    std::size_t const aligned =
        (size + alignof(InternalEntry) - 1) / alignof(InternalEntry) * alignof(InternalEntry);
    if (aligned > static_cast<std::size_t>(freeEnd - freeBegin)) {
        freeBegin = static_cast<char *>(MemPoolAlloc(pool, c_block));
        freeEnd = freeBegin + c_block;
    }
    return std::exchange(freeBegin, freeBegin + aligned);
}
