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

namespace {

constexpr std::size_t c_firstSlots = 8;
constexpr std::size_t c_comparedName = 255; // longer names are equal when they agree in this many characters
constexpr char c_unknownName[] = "^* CREATED-FROM-HASH *^";

char const * textOf(char const * name) { return name ? name : ""; }

std::size_t sizeWithEnd(char const * text) { return std::strlen(text) + 1; }

std::size_t sizeWithEnd(char16_t const * text) {
    return (std::char_traits<char16_t>::length(text) + 1) * sizeof(char16_t);
}

} // namespace

BinaryConfigCreator::InternalEntry::Children::Children(_HMEMPOOL * pool)
    : slots(c_firstSlots, PoolAllocator<Slot>(pool)) {}

void BinaryConfigCreator::InternalEntry::Children::Add(InternalEntry & entry) {
    if (2 * (count + 1) > slots.size())
        growIndex();
    slots[slotOf(entry.key)] = {entry.key, &entry};
    (last ? last->nextSibling : first) = &entry;
    last = &entry;
    ++count;
}

std::size_t BinaryConfigCreator::InternalEntry::Children::slotOf(std::uint32_t key) const {
    // Keys of names are hashes already, but keys from a caller may be consecutive numbers.
    std::uint64_t const spread = key * std::uint64_t{0x9E3779B97F4A7C15};
    std::size_t slot = spread >> (64 - std::countr_zero(slots.size()));
    while (slots[slot].entry && slots[slot].key != key)
        slot = (slot + 1) & (slots.size() - 1);
    return slot;
}

void BinaryConfigCreator::InternalEntry::Children::growIndex() {
    Slots old(2 * slots.size(), slots.get_allocator());
    old.swap(slots);
    for (Slot const & slot : old) {
        if (slot.entry)
            slots[slotOf(slot.key)] = slot;
    }
}

BinaryConfigCreator::BinaryConfigCreator() : BinaryConfigCreator(nullptr) {}

BinaryConfigCreator::BinaryConfigCreator(_HMEMPOOL * givenPool)
    : ownsPool(!givenPool), pool(givenPool ? givenPool : MemPoolCreate("BCCEntryPool", 1, 0, true)) {
    try {
        root = current = CreateTable("Root");
    } catch (...) {
        if (ownsPool)
            MemPoolDestroy(pool);
        throw;
    }
}

BinaryConfigCreator::~BinaryConfigCreator() {
    MemPoolClear(pool);
    if (ownsPool)
        MemPoolDestroy(pool);
}

bool BinaryConfigCreator::SetNumber(std::uint32_t key, int value) {
    return addField(key, nullptr, BCTypes::Integer, &value, sizeof(value));
}

bool BinaryConfigCreator::SetNumber(char const * name, int value) {
    return addField(NameHash(name), textOf(name), BCTypes::Integer, &value, sizeof(value));
}

bool BinaryConfigCreator::SetNumber(std::uint32_t key, float value) {
    return addField(key, nullptr, BCTypes::Float, &value, sizeof(value));
}

bool BinaryConfigCreator::SetNumber(char const * name, float value) {
    return addField(NameHash(name), textOf(name), BCTypes::Float, &value, sizeof(value));
}

bool BinaryConfigCreator::SetBool(std::uint32_t key, bool value) {
    return addField(key, nullptr, BCTypes::Bool, &value, sizeof(value));
}

bool BinaryConfigCreator::SetBool(char const * name, bool value) {
    return addField(NameHash(name), textOf(name), BCTypes::Bool, &value, sizeof(value));
}

bool BinaryConfigCreator::SetString(std::uint32_t key, char const * value) {
    return value && addField(key, nullptr, BCTypes::String, value, sizeWithEnd(value));
}

bool BinaryConfigCreator::SetString(char const * name, char const * value) {
    return value && addField(NameHash(name), textOf(name), BCTypes::String, value, sizeWithEnd(value));
}

bool BinaryConfigCreator::SetWString(std::uint32_t key, char16_t const * value) {
    return value && addField(key, nullptr, BCTypes::WString, value, sizeWithEnd(value));
}

bool BinaryConfigCreator::SetWString(char const * name, char16_t const * value) {
    return value && addField(NameHash(name), textOf(name), BCTypes::WString, value, sizeWithEnd(value));
}

bool BinaryConfigCreator::TablePush(std::uint32_t key, bool unsorted) {
    if (InternalEntry * const found = FindEntry(current, key, nullptr)) {
        enter(found);
        return false;
    }
    addTable(CreateTable(key), unsorted);
    return true;
}

bool BinaryConfigCreator::TablePush(char const * name, bool unsorted) {
    if (InternalEntry * const found = FindEntry(current, name)) {
        enter(found);
        return false;
    }
    addTable(CreateTable(name), unsorted);
    return true;
}

void BinaryConfigCreator::TablePop() {
    if (tableStack.empty())
        return;
    current = tableStack.back();
    tableStack.pop_back();
}

bool BinaryConfigCreator::addField(std::uint32_t key, char const * name, BCTypes::FieldEntryType type,
                                   void const * value, std::size_t size) {
    if (FindEntry(current, key, name))
        return false;
    addChild(createEntry(key, name, type, value, size));
    return true;
}

void BinaryConfigCreator::addTable(InternalEntry * table, bool unsorted) {
    if (unsorted)
        table->type = BCTypes::TableUnsorted;
    addChild(table);
    enter(table);
}

void BinaryConfigCreator::addChild(InternalEntry * entry) {
    using Children = InternalEntry::Children;
    if (!current->children)
        current->children = new (MemPoolAlloc(pool, sizeof(Children))) Children(pool);
    current->children->Add(*entry);
}

void BinaryConfigCreator::enter(InternalEntry * table) {
    tableStack.push_back(current);
    current = table;
}

BinaryConfigCreator::InternalEntry *
BinaryConfigCreator::FindEntry(InternalEntry const * table, std::uint32_t key, char const * name) const {
    InternalEntry * const found = table->children ? table->children->Find(key) : nullptr;
    if (found && name && std::strncmp(found->name, name, c_comparedName) != 0) {
        dbLineAux(__FILE__, __LINE__);
        dbFatalfAux("BinaryConfigCreator Fields have a name hash collision.  HANDLE THIS");
    }
    return found;
}

BinaryConfigCreator::InternalEntry * BinaryConfigCreator::FindEntry(InternalEntry const * table,
                                                                    char const * name) const {
    return FindEntry(table, NameHash(name), textOf(name));
}

BinaryConfigCreator::InternalEntry * BinaryConfigCreator::CreateTable(std::uint32_t key) {
    return createEntry(key, nullptr, BCTypes::Table, nullptr, 0);
}

BinaryConfigCreator::InternalEntry * BinaryConfigCreator::CreateTable(char const * name) {
    return createEntry(NameHash(name), textOf(name), BCTypes::Table, nullptr, 0);
}

BinaryConfigCreator::InternalEntry * BinaryConfigCreator::createEntry(std::uint32_t key, char const * name,
                                                                      BCTypes::FieldEntryType type,
                                                                      void const * value, std::size_t size) {
    std::size_t const nameLength = name ? tarnstring_trait<char>::length(name, c_comparedName) : 0;
    std::size_t const blockSize = sizeof(InternalEntry) + size + (name ? nameLength + 1 : 0);
    if (blockSize > std::numeric_limits<unsigned int>::max())
        throw std::length_error("BinaryConfigCreator: a text of 4 GiB");
    void * const block = MemPoolAlloc(pool, static_cast<unsigned int>(blockSize));
    char * const valueCopy = static_cast<char *>(block) + sizeof(InternalEntry);
    char * const nameCopy = valueCopy + size;
    std::copy_n(static_cast<char const *>(value), size, valueCopy);
    if (name)
        *std::copy_n(name, nameLength, nameCopy) = 0;
    return new (block) InternalEntry{.key = key,
                                     .type = type,
                                     .valueSize = static_cast<unsigned int>(size),
                                     .name = name ? nameCopy : c_unknownName};
}
