#pragma once

// The nodes of the tree of a BinaryConfigCreator. Private to the library.

#include "Cross/Util/BinaryConfigCreator.h"
#include "Cross/engine/core/SmallVector.h"

#include <cstdint>
#include <vector>

// One field: this record, behind it its value, behind that its name. Entries lie in the builder's pool and go
// with it.
struct BinaryConfigCreator::InternalEntry {
    // The value as it goes into the image, text terminators included, but in native byte order.
    char const * Value() const { return reinterpret_cast<char const *>(this + 1); }

    // At most 255 characters; a text of its own for an entry of which only the key is known.
    char const * Name() const { return isNamed ? Value() + valueSize : "^* CREATED-FROM-HASH *^"; }

    std::uint32_t key;
    BCTypes::FieldEntryType type;
    unsigned int valueSize;
    bool isNamed;
    Children * children; // null until the first is added
};

// The fields of a table, in the order of adding. Sorting is left to the flattener: keys in a table are
// unique, so nobody can tell when it happened.
class BinaryConfigCreator::Children {
public:
    // Chains up with the children that were made before.
    explicit Children(Children * previous) : previous(previous) {}

    InternalEntry * Find(std::uint32_t key) const;

    // The key must be new. Throws std::bad_alloc, and then nothing has changed.
    void Add(InternalEntry * entry);

    using Entries = ast::smallvector<InternalEntry *, 8>;

    Entries const & InOrder() const { return entries; }

    Children * Previous() const { return previous; }

private:
    struct Slot {
        std::uint32_t key = 0;
        std::uint32_t place = 0; // in the order of adding, counted from 1; 0 in an empty slot
    };

    using Index = std::vector<Slot>;

    // Where the entry of that key is, or the empty slot where it belongs.
    static std::size_t slotOf(Index const & index, std::uint32_t key);
    void growIndex();

    Entries entries;
    Index index; // by key, once a scan would take longer; a power of two, at most half of the slots are used
    Children * previous;
};
