#pragma once

// The nodes of the tree of a BinaryConfigCreator. Private to the library.

#include "Cross/Util/BinaryConfigCreator.h"
#include "Cross/engine/memory/PoolAllocator.h"

#include <cstdint>
#include <vector>

// One field: this record, its value and its name, in one block of the builder's pool. Entries are never
// destroyed one by one: all they own lies in the pool too, and goes when it is cleared.
struct BinaryConfigCreator::InternalEntry {
    class Children;

    // The value as it goes into the image, text terminators included, but in native byte order.
    void const * Value() const { return this + 1; }

    std::uint32_t key;
    BCTypes::FieldEntryType type;
    unsigned int valueSize;
    char const * name; // its first 255 characters, or a text of its own where only the key is known; not
                       // written to the image
    InternalEntry * nextSibling = nullptr; // in the order of adding
    Children * children = nullptr;         // null until the first is added
};

// The fields of a table, in the order of adding, and an index by key. Sorting is left to the flattener: since
// keys in a table are unique, nobody can tell when it happened.
class BinaryConfigCreator::InternalEntry::Children {
public:
    explicit Children(_HMEMPOOL * pool);

    InternalEntry * Find(std::uint32_t key) const { return slots[slotOf(key)].entry; }

    // The key must be new. Throws std::bad_alloc, and then nothing has changed.
    void Add(InternalEntry & entry);

    InternalEntry const * First() const { return first; }

    std::size_t Count() const { return count; }

private:
    struct Slot {
        std::uint32_t key = 0;
        InternalEntry * entry = nullptr;
    };

    using Slots = std::vector<Slot, PoolAllocator<Slot>>;

    // Where the entry of that key is, or the empty slot where it belongs.
    std::size_t slotOf(std::uint32_t key) const;
    void growIndex();

    InternalEntry * first = nullptr;
    InternalEntry * last = nullptr;
    std::size_t count = 0;
    Slots slots; // open addressing; their number is a power of two, at most half of them are used
};
