#pragma once

// BinaryConfigCreator: builds the tree that BinaryConfigIO flattens into the image of a BinaryConfig. A
// cursor tells the table that fields are added to; it starts at the root, which is sorted by key.
//
// A field is known by its key, the name hash of its exact spelling. Fields are never replaced or removed. Two
// names with one hash in a table cannot be stored: that is a fatal error. A field made by name may be reached
// by key later on, but not the other way round, since the name is unknown then and counts as another one.
//
// A null name counts as "". A literal key of 0 is written 0u.
//
// Threads: one. Lifetime: names and texts are copied; everything goes with the builder. Adding throws
// std::bad_alloc when memory is exhausted and std::length_error for a text of 4 GiB; the cursor and what was
// added before stay as they were.

#include "Cross/Util/BinaryConfig.h"
#include "Cross/engine/core/Export.h"
#include "Cross/engine/memory/MemPool.h"

#include <cstddef>
#include <cstdint>
#include <vector>

class CROSS_UTIL_API BinaryConfigCreator {
public:
    // With a pool of its own.
    BinaryConfigCreator();

    // Works in the pool given, which must hold nothing but this builder's entries, since the destructor
    // clears it; so it cannot be the default pool. Null means a pool of its own.
    explicit BinaryConfigCreator(_HMEMPOOL * pool);
    BinaryConfigCreator(BinaryConfigCreator const &) = delete;
    BinaryConfigCreator & operator=(BinaryConfigCreator const &) = delete;
    ~BinaryConfigCreator();

    // Each adds a field to the current table. False when the table has a field of that key already, which
    // keeps its type and value, and for a null text, with which nothing is added.
    //
    // The type of the field is the type of the argument, so SetNumber takes exactly int or float: write 1.5f.
    bool SetNumber(std::uint32_t key, int value);
    bool SetNumber(char const * name, int value);
    bool SetNumber(std::uint32_t key, float value);
    bool SetNumber(char const * name, float value);
    template <class Other>
    bool SetNumber(std::uint32_t key, Other value) = delete;
    template <class Other>
    bool SetNumber(char const * name, Other value) = delete;

    bool SetBool(std::uint32_t key, bool value);
    bool SetBool(char const * name, bool value);
    bool SetString(std::uint32_t key, char const * value);
    bool SetString(char const * name, char const * value);
    bool SetWString(std::uint32_t key, char16_t const * value);
    bool SetWString(char const * name, char16_t const * value);

    // Steps into a table of the current one. A new table is made, sorted by key or, with `unsorted`, in the
    // order of adding, and the result is true. A field of that key that exists already is stepped into as it
    // is, with false; if it is a value, whatever is added below it is not stored.
    bool TablePush(std::uint32_t key, bool unsorted);
    bool TablePush(char const * name, bool unsorted);

    // Steps back to where the last TablePush came from; without one, nothing happens.
    void TablePop();

private:
    friend class BCInternal::Access;

    struct InternalEntry; // a node of the tree, in a private header
    class Children;       // the fields of a table

    // A key and the name it comes from; `text` is null when only the key is known.
    struct FieldName {
        std::uint32_t key;
        char const * text;
        std::size_t length;
    };

    static FieldName unnamed(std::uint32_t key) { return {key, nullptr, 0}; }

    static FieldName named(char const * name);

    InternalEntry * FindEntry(InternalEntry const * table, FieldName const & name) const;
    InternalEntry * CreateTable(FieldName const & name);
    InternalEntry * createEntry(FieldName const & name, BCTypes::FieldEntryType type, void const * value,
                                std::size_t size);
    void * allocate(std::size_t size);

    bool addField(FieldName const & name, BCTypes::FieldEntryType type, void const * value, std::size_t size);
    bool pushTable(FieldName const & name, bool unsorted);
    void addChild(InternalEntry * entry);

    InternalEntry * root;
    InternalEntry * current;
    std::vector<InternalEntry *> tableStack;
    bool ownsPool;
    _HMEMPOOL * pool;
    char * freeBegin = nullptr; // what is left of the last block for small entries
    char * freeEnd = nullptr;
    Children * lastChildren = nullptr; // end of the chain of all lists of children
    std::uint64_t imageBound = 4;      // the image is never longer, whatever the order of its fields
};
