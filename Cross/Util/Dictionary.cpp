#include "Cross/Util/Dictionary.h"

#include "Cross/Util/NameHash.h"
#include "Cross/engine/core/Text.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <limits>
#include <new>
#include <string_view>
#include <vector>

constinit Dictionary::Key const Dictionary::Key::INVALID;

namespace {

// Fewer instructions in a lookup are more lookups that the processor has under way while it waits for memory.
// Hence what every lookup runs through is inlined by force here, and what is rare stays out of line.

// A case-blind dictionary cuts its texts to so many characters.
constexpr std::size_t c_maxFolded = 1024;

// Texts up to this length are folded, hashed and compared as five words that overlap as far as the text is
// shorter. That takes no branch on the length, which is as good as random from one name to the next.
constexpr std::size_t c_maxInWords = 40;

constexpr std::size_t c_wordSize = sizeof(std::uint64_t);
constexpr std::uint64_t c_ones = 0x0101010101010101; // spreads a byte over a word

// -- Texts, eight bytes at a time. Words are in the machine's byte order, since nothing that is made of them
// leaves the process.

template <class Word>
Word load(void const * bytes) {
    Word word;
    std::memcpy(&word, bytes, sizeof(word));
    return word;
}

std::uint64_t wordAt(char const * text, std::size_t i) { return load<std::uint64_t>(text + i); }

// All of a text that is shorter than a word. Only texts of one length can be told apart by it.
std::uint64_t shortText(char const * text, std::size_t length) {
    if (length >= 4)
        return load<std::uint32_t>(text) | std::uint64_t{load<std::uint32_t>(text + length - 4)} << 32;
    if (length == 0)
        return 0;
    auto const byteAt = [text](std::size_t i) { return std::uint64_t{static_cast<unsigned char>(text[i])}; };
    return byteAt(0) | byteAt(length / 2) << 8 | byteAt(length - 1) << 16;
}

std::uint64_t asItStands(std::uint64_t word) { return word; }

std::uint64_t lowerCased(std::uint64_t word) {
    std::uint64_t const low = word & c_ones * 0x7F;
    std::uint64_t const fromA = low + c_ones * (0x80 - 'A');
    std::uint64_t const aboveZ = low + c_ones * (0x7F - 'Z');
    std::uint64_t const letters = (fromA ^ aboveZ) & ~word & c_ones * 0x80;
    return word | letters >> 2;
}

using Fold = std::uint64_t(std::uint64_t);

// Whether a stored text of the same length is the same text.
template <Fold fold>
[[gnu::always_inline]] inline bool sameWords(std::string_view text, char const * stored) {
    if (text.size() < c_wordSize)
        return fold(shortText(text.data(), text.size())) == shortText(stored, text.size());
    auto const difference = [=](std::size_t i) { return fold(wordAt(text.data(), i)) ^ wordAt(stored, i); };
    std::size_t const last = text.size() - c_wordSize;
    return (difference(0) | difference(last / 4) | difference(last / 2) | difference(last * 3 / 4) |
            difference(last)) == 0;
}

using FoldBuffer = char[c_maxFolded];

// What counts of a text for a case-blind dictionary, in the buffer. The text may lie there already.
[[gnu::noinline]] std::string_view folded(std::string_view text, FoldBuffer & buffer) {
    std::size_t const length = std::min(text.size(), c_maxFolded);
    std::transform(text.data(), text.data() + length, buffer, [](char c) { return text::ToLower(c); });
    return {buffer, length};
}

// A text as it can be asked for: one that is too long to be folded on the fly is folded in the buffer.
[[gnu::always_inline]] inline std::string_view asked(char const * text, bool caseSensitive,
                                                     FoldBuffer & buffer) {
    std::string_view const all(text);
    return caseSensitive || all.size() <= c_maxInWords ? all : folded(all, buffer);
}

// -- A hash that is cheaper than the name hash. It serves to find texts again and is never seen outside.

__extension__ using DoubleWord = unsigned __int128;

// Multiplies and folds the upper half of the product into the lower one.
std::uint64_t mix(std::uint64_t left, std::uint64_t right) {
    DoubleWord const product = static_cast<DoubleWord>(left) * right;
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
}

// Any odd-looking numbers, different from each other, so that equal words do not cancel out.
constexpr std::uint64_t c_salt[6] = {0x9E3779B97F4A7C15, 0xBF58476D1CE4E5B9, 0x94D049BB133111EB,
                                     0xD6E8FEB86659FD93, 0xA0761D6478BD642F, 0xE7037ED1A0B428DB};

template <Fold fold>
[[gnu::always_inline]] inline std::uint64_t hashOfWords(std::string_view text) {
    if (text.size() < c_wordSize)
        return mix(fold(shortText(text.data(), text.size())) ^ c_salt[4], text.size() ^ c_salt[5]);
    auto const word = [=](std::size_t i) { return fold(wordAt(text.data(), i)); };
    std::size_t const last = text.size() - c_wordSize;
    return mix(word(0) ^ c_salt[0], word(last / 4) ^ c_salt[1]) ^
           mix(word(last / 2) ^ c_salt[2], word(last * 3 / 4) ^ c_salt[3]) ^
           mix(word(last) ^ c_salt[4], text.size() ^ c_salt[5]);
}

std::uint64_t hashOfLong(std::string_view text) {
    std::size_t const last = text.size() - 2 * c_wordSize;
    std::uint64_t hash = text.size();
    for (std::size_t i = 0; i < last; i += 2 * c_wordSize)
        hash = mix(wordAt(text.data(), i) ^ hash, wordAt(text.data(), i + c_wordSize) ^ c_salt[0]);
    return mix(wordAt(text.data(), last) ^ hash, wordAt(text.data(), last + c_wordSize) ^ c_salt[1]);
}

// -- Stored texts. Each has a label right in front of it, on the same cache line more often than not.

struct Label {
    std::uint32_t length;
    std::uint32_t key;
};

Label labelOf(char const * text) { return load<Label>(text - sizeof(Label)); }

char * storeText(_HMEMPOOL * pool, std::string_view text, std::uint32_t key) {
    if (text.size() >= std::numeric_limits<unsigned int>::max() - sizeof(Label))
        throw std::bad_alloc();
    Label const label = {static_cast<std::uint32_t>(text.size()), key};
    unsigned int const size = static_cast<unsigned int>(sizeof(label) + text.size() + 1);
    char * const block = static_cast<char *>(MemPoolAlloc(pool, size));
    std::memcpy(block, &label, sizeof(label));
    std::memcpy(block + sizeof(label), text.data(), text.size());
    block[size - 1] = '\0';
    return block + sizeof(label);
}

void freeText(_HMEMPOOL * pool, char const * text) {
    MemPoolFree(pool, const_cast<char *>(text) - sizeof(Label));
}

// -- Tables

// Small items under 32-bit numbers that are evenly distributed, as hashes are.
//
// An item lies at the slot that its number has in proportion to all numbers, or in the first gap behind it;
// there is no wrapping around. So it is found a step or two from where it belongs, and all the items between
// two gaps are below all the items behind: a walk in ascending order has but to sort each such run, of a few
// items.
//
// A mark per slot tells the gaps and nearly all of the wrong items, eight slots at a time and without a look
// at the items, which are elsewhere in memory.
template <class Item>
class SpreadTable {
public:
    // A table without slots: nothing is found in it.
    SpreadTable() = default;

    // `spread` slots are homes of numbers. The run at the upper end continues in a few slots more.
    explicit SpreadTable(std::size_t spread)
        : spread(spread), marks(spread + c_overflow + c_wordSize), items(spread + c_overflow) {}

    // The item under the number for which `matches` holds, null when there is none. Nearly every search ends
    // with the first item that bears the right mark, or with the first gap.
    template <class Matches>
    [[gnu::always_inline]] Item const * Find(std::uint32_t number, Matches matches) const {
        if (items.empty())
            return nullptr;
        std::size_t const home = homeOf(number);
        __builtin_prefetch(&items[home]); // marks and items come from memory side by side
        std::uint64_t const group = groupAt(home);
        std::uint64_t const candidates = candidatesIn(group, number);
        if (candidates != 0) {
            Item const & item = items[home + firstIn(candidates)];
            if (matches(item))
                return &item;
        } else if (gapsIn(group) != 0) {
            return nullptr;
        }
        return search(number, matches);
    }

    // Sees to it that the next Insert finds a gap. Needs slots.
    void MakeRoom() {
        if (marks[items.size() - 1] == 0)
            return;
        marks.push_back(0);
        items.push_back({});
    }

    void Insert(std::uint32_t number, Item const & item) {
        std::size_t slot = homeOf(number);
        while (gapsIn(groupAt(slot)) == 0)
            slot += c_wordSize;
        slot += firstIn(gapsIn(groupAt(slot)));
        marks[slot] = markOf(number);
        items[slot] = item;
    }

    // Calls visit(first, last) for each run of items between gaps, by ascending numbers.
    template <class Visit>
    void ForEachRun(Visit visit) const {
        auto const isTaken = [](std::uint8_t mark) { return mark != 0; };
        auto const itemAt = [this](auto mark) { return items.data() + (mark - marks.begin()); };
        auto first = std::find_if(marks.begin(), marks.end(), isTaken);
        while (first != marks.end()) {
            auto const last = std::find_if_not(first, marks.end(), isTaken);
            visit(itemAt(first), itemAt(last));
            first = std::find_if(last, marks.end(), isTaken);
        }
    }

private:
    static constexpr std::size_t c_overflow = 32;

    // The whole of a search, from home to gap.
    template <class Matches>
    [[gnu::noinline]] Item const * search(std::uint32_t number, Matches matches) const {
        for (std::size_t slot = homeOf(number);; slot += c_wordSize) {
            std::uint64_t const group = groupAt(slot);
            std::uint64_t candidates = candidatesIn(group, number);
            for (; candidates != 0; candidates &= candidates - 1) {
                Item const & item = items[slot + firstIn(candidates)];
                if (matches(item))
                    return &item;
            }
            if (gapsIn(group) != 0)
                return nullptr;
        }
    }

    std::size_t homeOf(std::uint32_t number) const {
        return static_cast<std::size_t>(std::uint64_t{number} * spread >> 32);
    }

    // The lowest bits have the least say in the home; bit 7 is what tells a mark from a gap.
    static std::uint8_t markOf(std::uint32_t number) { return static_cast<std::uint8_t>(number | 0x80); }

    // Marks of eight slots, the first in the lowest byte.
    std::uint64_t groupAt(std::size_t slot) const {
        std::uint64_t const group = load<std::uint64_t>(marks.data() + slot);
        return std::endian::native == std::endian::little ? group : __builtin_bswap64(group);
    }

    // Bit 7 of each byte that is a gap.
    static std::uint64_t gapsIn(std::uint64_t group) { return ~group & c_ones * 0x80; }

    // Bit 7 of each byte in front of the first gap that has the mark of the number; now and then of another.
    static std::uint64_t candidatesIn(std::uint64_t group, std::uint32_t number) {
        std::uint64_t const difference = group ^ c_ones * markOf(number);
        std::uint64_t const zeros = (difference - c_ones) & ~difference & c_ones * 0x80;
        return zeros & (gapsIn(group) - 1);
    }

    static std::size_t firstIn(std::uint64_t bits) {
        return static_cast<std::size_t>(std::countr_zero(bits)) / 8;
    }

    std::size_t spread = 0;
    std::vector<std::uint8_t> marks; // 0 in a gap; a word of gaps more than there are items
    std::vector<Item> items;
};

struct Name {
    char const * text;
    std::uint32_t key;
    std::uint32_t hash;
};

} // namespace

// All texts, under two numbers each: the key, which must lead to the text, and a cheaper hash of the text,
// which leads to the key. A text that is known is known by that hash, so that asking for a name costs no name
// hash and no walk along its collisions: those settled its key once and for all when it was stored.
struct Dictionary::Entries {
    struct Answer {
        char const * text; // null when it is not known
        std::uint32_t hash;
    };

    // Looks up a text that went through asked().
    [[gnu::always_inline]] Answer Find(std::string_view text, bool caseSensitive) const {
        if (text.size() > c_maxInWords)
            return findLong(text);
        return caseSensitive ? findInWords<asItStands>(text) : findBlind(text);
    }

    Name const * Find(std::uint32_t key) const {
        std::uint32_t const * const index =
            byKey.Find(key, [this, key](std::uint32_t i) { return names[i].key == key; });
        return index ? &names[*index] : nullptr;
    }

    // Stores a text that is not known yet, in its stored form, and gives its key.
    std::uint32_t Add(std::string_view text, std::uint32_t hash, _HMEMPOOL * pool) {
        makeRoom();
        std::uint32_t key = NameHash(text.data(), text.size());
        while (Find(key))
            ++key;
        char const * const stored = storeText(pool, text, key);
        byKey.Insert(key, static_cast<std::uint32_t>(names.size()));
        byHash.Insert(hash, stored);
        names.push_back({stored, key, hash});
        return key;
    }

    // Calls visit(Name) by ascending keys.
    template <class Visit>
    void ForEach(Visit visit) const {
        std::vector<Name> run;
        byKey.ForEachRun([&](std::uint32_t const * first, std::uint32_t const * last) {
            run.clear();
            std::transform(first, last, std::back_inserter(run),
                           [this](std::uint32_t i) { return names[i]; });
            std::sort(run.begin(), run.end(), [](Name const & l, Name const & r) { return l.key < r.key; });
            std::for_each(run.begin(), run.end(), visit);
        });
    }

    std::vector<Name> names; // in the order of storing

private:
    template <Fold fold>
    [[gnu::always_inline]] Answer findInWords(std::string_view text) const {
        return find(hashOfWords<fold>(text), text.size(),
                    [=](char const * stored) { return sameWords<fold>(text, stored); });
    }

    [[gnu::noinline]] Answer findBlind(std::string_view text) const { return findInWords<lowerCased>(text); }

    [[gnu::noinline]] Answer findLong(std::string_view text) const {
        return find(hashOfLong(text), text.size(),
                    [=](char const * stored) { return std::memcmp(text.data(), stored, text.size()) == 0; });
    }

    // Finds the text of that hash and length for which `isSame` holds.
    template <class IsSame>
    [[gnu::always_inline]] Answer find(std::uint64_t hash, std::size_t length, IsSame isSame) const {
        std::uint32_t const number = static_cast<std::uint32_t>(hash >> 32);
        char const * const * const text = byHash.Find(
            number, [=](char const * stored) { return labelOf(stored).length == length && isSame(stored); });
        return {text ? *text : nullptr, number};
    }

    // Takes all the memory that one more name needs, so that adding it either happens or changes nothing.
    void makeRoom() {
        if (names.size() == names.capacity())
            grow();
        byKey.MakeRoom();
        byHash.MakeRoom();
    }

    void grow() {
        std::size_t const spread = std::max<std::size_t>(12, names.capacity() * 9 / 4);
        SpreadTable<std::uint32_t> widerByKey(spread);
        SpreadTable<char const *> widerByHash(spread);
        for (std::size_t i = 0; i < names.size(); ++i) {
            widerByKey.MakeRoom();
            widerByKey.Insert(names[i].key, static_cast<std::uint32_t>(i));
            widerByHash.MakeRoom();
            widerByHash.Insert(names[i].hash, names[i].text);
        }
        names.reserve(spread / 3 * 2); // runs get too long in fuller tables
        byKey = std::move(widerByKey);
        byHash = std::move(widerByHash);
    }

    SpreadTable<std::uint32_t> byKey; // indices into names
    SpreadTable<char const *> byHash;
};

Dictionary::Dictionary(bool caseSensitive) : Dictionary(nullptr, caseSensitive) {}

Dictionary::Dictionary(_HMEMPOOL * pool, bool caseSensitive)
    : entries(std::make_unique<Entries>()),
      caseSensitive(caseSensitive),
      pool(pool ? pool : MemPoolDefault()) {}

Dictionary::~Dictionary() { Clear(); }

// At process end it is emptied, but the object stays: static objects that came up before the first call go
// after that, and one whose destructor still asks for a name must find a dictionary, if an empty one.
Dictionary & Dictionary::Instance() {
    static Dictionary * const dictionary = [] {
        std::atexit([] { Instance().Clear(); });
        return new Dictionary(false);
    }();
    return *dictionary;
}

Dictionary::Key Dictionary::GetKey(char const * text) {
    if (!text)
        return Key::INVALID;
    FoldBuffer buffer;
    std::string_view const name = asked(text, caseSensitive, buffer);
    Entries::Answer const answer = entries->Find(name, caseSensitive);
    if (answer.text)
        return Key(labelOf(answer.text).key);
    return Key(entries->Add(caseSensitive ? name : folded(name, buffer), answer.hash, pool));
}

bool Dictionary::FindKey(char const * text, Key & key) const {
    key = Key::INVALID;
    if (!text)
        return false;
    FoldBuffer buffer;
    char const * const known = entries->Find(asked(text, caseSensitive, buffer), caseSensitive).text;
    if (!known)
        return false;
    key = Key(labelOf(known).key);
    return true;
}

bool Dictionary::FindKey(std::uint32_t value, Key & key) const {
    if (!entries->Find(value))
        return false;
    key = Key(value);
    return true;
}

char const * Dictionary::GetString(Key key) const {
    Name const * const name = entries->Find(key.GetValue());
    return name ? name->text : "";
}

// Back to front: the pool hands its last block out first, so the next names lie in memory one behind the
// other.
void Dictionary::Clear() {
    std::for_each(entries->names.rbegin(), entries->names.rend(),
                  [this](Name const & name) { freeText(pool, name.text); });
    *entries = Entries();
}

void Dictionary::EditLock() { ++editLock; }

void Dictionary::EditUnlock() { --editLock; }

void Dictionary::walk(Visitor visitor, void const * context) const {
    entries->ForEach([=](Name const & name) { visitor(context, Key(name.key), name.text); });
}
