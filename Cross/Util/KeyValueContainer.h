#pragma once

// KeyValueContainer: a small bag of named settings with two name spaces, numbers and texts; a name may be in
// both, as two entries. A container holds sorted vectors of keys and values, and the names stand once for all
// containers of the process. Names ignore case (letters A to Z) and come out in lower case, cut to 1,024
// characters; a null name is that of no entry.
//
// Threads: one for all containers, since they share their names. Lifetime: texts passed in are copied; names
// given out last until Shutdown.

#include "Cross/Util/Dictionary.h"
#include "Cross/engine/core/Export.h"

#include <string>
#include <utility>
#include <vector>

class CROSS_UTIL_API KeyValueContainer {
public:
    // What Retrieve gives for a name without a number. Check tells it from a stored one.
    static constexpr float c_missing = -666.0f;

    // Makes this container equal to the other; copying does the same.
    void CopyFrom(KeyValueContainer const & other);

    // Add an entry, or replace its value. Nothing happens for a null name.
    void Set(char const * name, float value);
    void SetString(char const * name, std::string const & value);

    // The same for many at once, of two equal names the later one, and faster.
    void SetAll(std::vector<std::pair<std::string, float>> const & named);
    void SetAllStrings(std::vector<std::pair<std::string, std::string>> const & named);

    // The number, c_missing when there is none.
    float Retrieve(char const * name) const;

    // Copies the text; without one, `value` stays.
    void RetrieveString(char const * name, std::string & value) const;

    bool Check(char const * name) const;
    bool CheckString(char const * name) const;
    void Remove(char const * name);
    void RemoveString(char const * name);

    unsigned int Size() const { return static_cast<unsigned int>(numbers.size()); }

    unsigned int SizeString() const { return static_cast<unsigned int>(strings.size()); }

    // Whether there are neither numbers nor texts.
    bool Empty() const { return numbers.empty() && strings.empty(); }

    // Name of an entry by ascending keys, an order that looks arbitrary and is the same in every run. `index`
    // must be below the size.
    char const * At(unsigned int index) const;
    char const * AtString(unsigned int index) const;

    // Room for so many entries in all.
    void Reserve(unsigned int count) { numbers.reserve(count); }

    void ReserveString(unsigned int count) { strings.reserve(count); }

    void Clear();

    // Writes all entries to the trace, between two lines with the title.
    void DebugPrint(char const * title) const;

    // Forgets the names of all containers. Entries that still live lose theirs until somebody sets them
    // again.
    static void Shutdown();

private:
    template <class Value>
    using Entries = std::vector<std::pair<Dictionary::Key, Value>>;

    static Dictionary s_fDictionary; // names of numbers
    static Dictionary s_sDictionary; // names of texts

    Entries<float> numbers; // both ascending by key
    Entries<std::string> strings;
};
