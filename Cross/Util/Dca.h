#pragma once

// dca: the key space of the process, over Dictionary::Instance(). Names behave like paths: case is ignored,
// '/' counts as '\' and a run of slashes as one, so two spellings of a name are one key everywhere.
//
// Threads: no lock; one caller at a time. Lifetime: keys last to the end of the process. Nothing here removes
// one, so clearing the dictionary behind it leaves stale keys.

#include "Cross/Util/Dictionary.h"
#include "Cross/engine/core/Export.h"
#include "Cross/engine/core/SmallVector.h"

namespace dca {

// A key that certainly comes from here: no other dictionary's key converts to it.
class CROSS_UTIL_API Key {
public:
    // INVALID, the key of nothing.
    constexpr Key() = default;

    constexpr operator Dictionary::Key() const { return key; }

    constexpr bool operator==(Key const & other) const { return key == other.key; }

    constexpr bool operator<(Key const & other) const { return key < other.key; }

    static Key const INVALID;

private:
    friend CROSS_UTIL_API Key GetKey(char const * name);
    friend CROSS_UTIL_API bool FindKey(char const * name, Key & key);

    constexpr explicit Key(Dictionary::Key key) : key(key) {}

    Dictionary::Key key;
};

// The key of a name, which is stored if it is new. Names are cut to 259 bytes; null gives INVALID.
CROSS_UTIL_API Key GetKey(char const * name);

// Looks a name up without storing it. True, and `key` set, when it is known; else false and `key` is INVALID.
CROSS_UTIL_API bool FindKey(char const * name, Key & key);

// The name as it is stored, in lower case and with the slashes '\'; "" for an unknown key.
CROSS_UTIL_API char const * GetString(Key const & key);

// The key of a number's decimal text. Below 1,024 a repeated question costs one array read. Numbers from 2^31
// up have the text of the negative number with the same bits.
CROSS_UTIL_API Key GetKeyForNumber(unsigned int number);

} // namespace dca

// The keys of the numbers below 1,024 that were asked for, INVALID for the others; empty until the first of
// them and again at process end. It never leaves its place.
extern CROSS_UTIL_API ast::smallvector<dca::Key, 1024> s_numberToKeyVector;
