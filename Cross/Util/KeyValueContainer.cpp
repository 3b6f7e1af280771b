#include "Cross/Util/KeyValueContainer.h"

#include "Cross/engine/diagnostics/Trace.h"

#include <algorithm>

Dictionary KeyValueContainer::s_fDictionary(false);
Dictionary KeyValueContainer::s_sDictionary(false);

namespace {

// Where the entry of a key is, or belongs.
template <class Entries>
auto placeOf(Entries & entries, Dictionary::Key key) {
    return std::lower_bound(entries.begin(), entries.end(), key,
                            [](auto const & entry, Dictionary::Key wanted) { return entry.first < wanted; });
}

// The entry of a name, the end when there is none.
template <class Entries>
auto find(Entries & entries, Dictionary const & names, char const * name) {
    Dictionary::Key key;
    if (!names.FindKey(name, key))
        return entries.end();
    auto const place = placeOf(entries, key);
    return place != entries.end() && place->first == key ? place : entries.end();
}

template <class Entries, class Value>
void set(Entries & entries, Dictionary::Key key, Value const & value) {
    bool const isLast = entries.empty() || entries.back().first < key;
    auto const place = isLast ? entries.end() : placeOf(entries, key);
    if (place != entries.end() && place->first == key)
        place->second = value;
    else
        entries.emplace(place, key, value);
}

// Sets in the order of the keys, so that new entries go to the end as long as no others stand there.
template <class Entries, class Named>
void setAll(Entries & entries, Dictionary & names, Named const & named) {
    std::vector<std::pair<Dictionary::Key, std::size_t>> order;
    order.reserve(named.size());
    for (auto const & [name, value] : named)
        order.emplace_back(names.GetKey(name.c_str()), order.size());
    std::sort(order.begin(), order.end());
    entries.reserve(entries.size() + named.size());
    for (auto const & [key, index] : order)
        set(entries, key, named[index].second);
}

template <class Entries>
void remove(Entries & entries, Dictionary const & names, char const * name) {
    auto const found = find(entries, names, name);
    if (found != entries.end())
        entries.erase(found);
}

} // namespace

void KeyValueContainer::CopyFrom(KeyValueContainer const & other) { *this = other; }

void KeyValueContainer::Set(char const * name, float value) {
    if (name)
        set(numbers, s_fDictionary.GetKey(name), value);
}

void KeyValueContainer::SetString(char const * name, std::string const & value) {
    if (name)
        set(strings, s_sDictionary.GetKey(name), value);
}

void KeyValueContainer::SetAll(std::vector<std::pair<std::string, float>> const & named) {
    setAll(numbers, s_fDictionary, named);
}

void KeyValueContainer::SetAllStrings(std::vector<std::pair<std::string, std::string>> const & named) {
    setAll(strings, s_sDictionary, named);
}

float KeyValueContainer::Retrieve(char const * name) const {
    auto const found = find(numbers, s_fDictionary, name);
    return found == numbers.end() ? c_missing : found->second;
}

void KeyValueContainer::RetrieveString(char const * name, std::string & value) const {
    auto const found = find(strings, s_sDictionary, name);
    if (found != strings.end())
        value = found->second;
}

bool KeyValueContainer::Check(char const * name) const {
    return find(numbers, s_fDictionary, name) != numbers.end();
}

bool KeyValueContainer::CheckString(char const * name) const {
    return find(strings, s_sDictionary, name) != strings.end();
}

void KeyValueContainer::Remove(char const * name) { remove(numbers, s_fDictionary, name); }

void KeyValueContainer::RemoveString(char const * name) { remove(strings, s_sDictionary, name); }

char const * KeyValueContainer::At(unsigned int index) const {
    return s_fDictionary.GetString(numbers[index].first);
}

char const * KeyValueContainer::AtString(unsigned int index) const {
    return s_sDictionary.GetString(strings[index].first);
}

void KeyValueContainer::Clear() {
    numbers.clear();
    strings.clear();
}

void KeyValueContainer::DebugPrint(char const * title) const {
    dbTimeStampedTracefAux("----------------------%s-START-------------------------", title);
    for (auto const & [key, value] : numbers)
        dbTimeStampedTracefAux("%s=%f", s_fDictionary.GetString(key), static_cast<double>(value));
    dbTimeStampedTracefAux("---");
    for (auto const & [key, value] : strings)
        dbTimeStampedTracefAux("%s=%s", s_sDictionary.GetString(key), value.c_str());
    dbTimeStampedTracefAux("----------------------%s-END---------------------------", title);
}

void KeyValueContainer::Shutdown() {
    s_fDictionary.Clear();
    s_sDictionary.Clear();
}
