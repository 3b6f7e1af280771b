#pragma once

// Dictionary: interns text, so that a name is a 32-bit number from then on. A key is the name hash of its
// text (NameHash.h), hence the same in every run and on every machine, except that of two texts with one hash
// the one that comes later gets the next free value: keys out of a file must be checked against their texts.
//
// Threads: no lock. const members may run side by side; GetKey, Clear and the edit lock need the dictionary
// for themselves. Lifetime: texts passed in are copied; texts given out are the dictionary's own and stay
// valid, also while it grows, until Clear or its end. Single names are never removed.

#include "Cross/engine/core/Export.h"
#include "Cross/engine/memory/MemPool.h"

#include <cstdint>
#include <memory>

class CROSS_UTIL_API Dictionary {
public:
    // A name as a number. Keys compare and sort as unsigned numbers; keys of two dictionaries have nothing to
    // do with each other.
    class CROSS_UTIL_API Key {
    public:
        constexpr Key() = default;

        constexpr explicit Key(std::uint32_t value) : value(value) {}

        constexpr std::uint32_t GetValue() const { return value; }

        friend constexpr bool operator==(Key left, Key right) { return left.value == right.value; }

        friend constexpr bool operator<(Key left, Key right) { return left.value < right.value; }

        // The key of nothing, 0. The value is not reserved: a text whose hash is 0 is stored under it.
        static Key const INVALID;

    private:
        std::uint32_t value = 0;
    };

    // An empty dictionary. One that is not case-sensitive lower-cases the letters A to Z of every text and
    // cuts it to 1,024 characters, before anything else is done with it.
    explicit Dictionary(bool caseSensitive = true);

    // The same with the texts in `pool`, which stays the caller's and must outlive the dictionary; null means
    // the default pool.
    Dictionary(_HMEMPOOL * pool, bool caseSensitive);

    explicit Dictionary(_HMEMPOOL *) = delete; // a pool is no bool
    Dictionary(Dictionary const &) = delete;
    Dictionary & operator=(Dictionary const &) = delete;
    ~Dictionary();

    // The dictionary of the process, not case-sensitive and on the default pool. It comes up at the first
    // call. At process end it gives back what it holds, but the object stays: a static object that goes after
    // that and still asks for a name finds the dictionary empty.
    static Dictionary & Instance();

    // The key of the text, which is stored if it is new. Null gives INVALID and stores nothing.
    Key GetKey(char const * text);

    // Looks the text up without storing it. True, and `key` set, when it is known; else false and `key` is
    // INVALID. Null is not known.
    bool FindKey(char const * text, Key & key) const;

    // True, and `key` set to `value`, when a text has exactly this key; else false and `key` is untouched.
    // A literal 0 is spelt 0u here.
    bool FindKey(std::uint32_t value, Key & key) const;

    // The text of a key, "" (never null) when there is none. The empty text is a name like any other: only
    // FindKey tells the two apart.
    char const * GetString(Key key) const;

    // Forgets all texts and gives back their memory. Texts stored again may get other keys, where they
    // collide in another order.
    void Clear();

    // A count for callers to leave word that they rely on the present content; nothing here reads it.
    void EditLock();
    void EditUnlock();

    // Calls visit(Key, char const *) for every text, by ascending key. `visit` must not store in this
    // dictionary nor clear it.
    template <class Visit>
    void ForEach(Visit && visit) const {
        auto const call = [&visit](Key key, char const * text) { visit(key, text); };
        walk([](void const * context, Key key,
                char const * text) { (*static_cast<decltype(call) *>(context))(key, text); },
             &call);
    }

private:
    using Visitor = void (*)(void const * context, Key key, char const * text);
    struct Entries;

    void walk(Visitor visitor, void const * context) const;

    std::unique_ptr<Entries> const entries;
    std::int32_t editLock = 0;
    bool const caseSensitive;
    _HMEMPOOL * const pool;
};
