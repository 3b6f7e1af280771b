#include "Cross/Util/Dictionary.h"

#include "Cross/Util/NameHash.h"
#include "Cross/engine/core/Text.h"

#include <algorithm>
#include <bit>
#include <cstring>

constinit Dictionary::Key const Dictionary::Key::INVALID;

namespace {

constexpr std::size_t c_maxFolded = 1024;

// Tags carry the length of short texts in their low byte; texts from here on share the highest value.
constexpr std::size_t c_longText = 255;

std::uint64_t loadWord(char const * text) {
    std::uint64_t word;
    std::memcpy(&word, text, sizeof(word));
    return word;
}

std::uint64_t loadShort(char const * text, std::size_t length) {
    std::uint32_t low = 0, high = 0;
    if (length >= 4) {
        std::memcpy(&low, text, 4);
        std::memcpy(&high, text + length - 4, 4);
    } else if (length > 0) {
        low = static_cast<unsigned char>(text[0]);
        high = static_cast<std::uint32_t>(static_cast<unsigned char>(text[length / 2])) << 8 |
               static_cast<unsigned char>(text[length - 1]);
    }
    return static_cast<std::uint64_t>(high) << 32 | low;
}

std::uint64_t mix(std::uint64_t hash) {
    hash *= 0x9FB21C651E98DF25;
    return hash ^ hash >> 32;
}

// A cheap hash of a text, good within this process only: 24 bits of hash above 8 bits of length.
std::uint32_t tagOf(char const * text, std::size_t length) {
    std::uint64_t hash = length;
    if (length >= 8) {
        for (std::size_t i = 0; i + 8 < length; i += 8)
            hash = mix(hash ^ loadWord(text + i));
        hash = mix(hash ^ loadWord(text + length - 8));
    } else {
        hash = mix(hash ^ loadShort(text, length));
    }
    hash *= 0x9FB21C651E98DF25;
    return static_cast<std::uint32_t>(hash >> 40) << 8 |
           static_cast<std::uint32_t>(std::min(length, c_longText));
}

// Whether the stored text is the same, which has the same tag, hence the same length when it is short.
bool sameText(char const * stored, char const * text, std::size_t length) {
    if (length >= c_longText)
        return std::strcmp(stored, text) == 0;
    if (length < 8)
        return loadShort(stored, length) == loadShort(text, length);
    for (std::size_t i = 0; i + 8 < length; i += 8)
        if (loadWord(stored + i) != loadWord(text + i))
            return false;
    return loadWord(stored + length - 8) == loadWord(text + length - 8);
}

std::size_t fold(char const * text, char (&folded)[c_maxFolded + 1]) {
    std::size_t length = 0;
    for (; length < c_maxFolded && text[length] != '\0'; ++length)
        folded[length] = text::ToLower(text[length]);
    folded[length] = '\0';
    return length;
}

} // namespace

Dictionary::Entry const * Dictionary::Table::LowerBound(std::uint32_t order) const {
    if (slots.empty())
        return nullptr;
    Entry const * entry = slots.data() + (static_cast<std::uint64_t>(order) * spread >> 32);
    while (entry->order < order)
        ++entry;
    return entry;
}

void Dictionary::Table::MakeRoom() {
    if (count >= spread / 4 * 3)
        Grow();
    if (slots[slots.size() - 2].text)
        slots.push_back({0xFFFFFFFF, 0, nullptr});
}

void Dictionary::Table::Grow() {
    std::size_t const wider = spread ? 2 * spread : 16;
    std::vector<Entry> fresh(wider + 4 * static_cast<std::size_t>(std::bit_width(wider)),
                             {0xFFFFFFFF, 0, nullptr});
    std::size_t next = 0;
    for (Entry const & entry : slots) {
        if (!entry.text)
            continue;
        next = std::max<std::size_t>(next, static_cast<std::uint64_t>(entry.order) * wider >> 32);
        if (next >= fresh.size() - 2)
            fresh.resize(fresh.size() + fresh.size()/2, {0xFFFFFFFF, 0, nullptr});
        fresh[next] = entry;
        ++next;
    }
    slots = std::move(fresh);
    spread = wider;
}

void Dictionary::Table::Insert(Entry const & entry) {
    Entry * const place = const_cast<Entry *>(LowerBound(entry.order));
    Entry * gap = place;
    while (gap->text)
        ++gap;
    std::move_backward(place, gap, gap + 1);
    *place = entry;
    ++count;
}

Dictionary::Dictionary(bool caseSensitive) : Dictionary(nullptr, caseSensitive) {}

Dictionary::Dictionary(_HMEMPOOL * pool, bool caseSensitive)
    : caseSensitive(caseSensitive), pool(pool ? pool : MemPoolDefault()) {}

Dictionary::~Dictionary() { Clear(); }

Dictionary & Dictionary::Instance() {
    static Dictionary * const dictionary = new Dictionary(false);
    static struct End {
        ~End() { dictionary->Clear(); }
    } const end;
    return *dictionary;
}

Dictionary::Key Dictionary::GetKey(char const * text) {
    if (!text)
        return Key::INVALID;
    if (caseSensitive)
        return intern(text, std::strlen(text));
    char folded[c_maxFolded + 1];
    return intern(folded, fold(text, folded));
}

bool Dictionary::FindKey(char const * text, Key & key) const {
    key = Key::INVALID;
    if (!text)
        return false;
    if (caseSensitive)
        return lookUp(text, std::strlen(text), key);
    char folded[c_maxFolded + 1];
    return lookUp(folded, fold(text, folded), key);
}

bool Dictionary::FindKey(std::uint32_t value, Key & key) const {
    if (!findKey(value))
        return false;
    key = Key(value);
    return true;
}

char const * Dictionary::GetString(Key key) const {
    Entry const * const entry = findKey(key.GetValue());
    return entry ? entry->text : "";
}

void Dictionary::Clear() {
    for (Entry const & entry : entries.slots)
        if (entry.text)
            MemPoolFree(pool, const_cast<char *>(entry.text));
    entries = Table();
    index = Table();
}

void Dictionary::EditLock() { ++editLock; }

void Dictionary::EditUnlock() { --editLock; }

bool Dictionary::lookUp(char const * text, std::size_t length, Key & key) const {
    Entry const * const entry = find(text, length, tagOf(text, length));
    if (!entry)
        return false;
    key = Key(entry->other);
    return true;
}

Dictionary::Entry const * Dictionary::find(char const * text, std::size_t length, std::uint32_t tag) const {
    Entry const * entry = index.LowerBound(tag);
    if (!entry)
        return nullptr;
    for (; entry->order == tag && entry->text; ++entry)
        if (sameText(entry->text, text, length))
            return entry;
    return nullptr;
}

Dictionary::Entry const * Dictionary::findKey(std::uint32_t value) const {
    Entry const * const entry = entries.LowerBound(value);
    return entry && entry->order == value && entry->text ? entry : nullptr;
}

Dictionary::Key Dictionary::intern(char const * text, std::size_t length) {
    std::uint32_t const tag = tagOf(text, length);
    if (Entry const * const entry = find(text, length, tag))
        return Key(entry->other);
    std::uint32_t value = NameHash(text, length);
    while (findKey(value))
        ++value;
    entries.MakeRoom();
    index.MakeRoom();
    char * const copy = static_cast<char *>(MemPoolAlloc(pool, static_cast<unsigned int>(length + 2)));
    std::memcpy(copy, text, length + 1);
    entries.Insert({value, tag, copy});
    index.Insert({tag, value, copy});
    return Key(value);
}
