#pragma once

// fixedstring: a text in a plain array, for records that are copied as bytes. It has no length field: the
// address of the object is its text. At most N characters and the terminator; a longer text is cut, and a
// null one reads as "".

#include <cstddef>
#include <cstring>

// Operations on the characters of a fixedstring. Only char is used.
template <class Char>
struct tarnstring_trait;

template <>
struct tarnstring_trait<char> {
    // Length of `text`, but never more than `limit`; reads nothing behind the terminator.
    static std::size_t length(char const * text, std::size_t limit) { return ::strnlen(text, limit); }
};

template <std::size_t N, class Traits>
class fixedstring;

template <std::size_t N, class Char>
class fixedstring<N, tarnstring_trait<Char>> {
public:
    static constexpr std::size_t c_capacity = N; // characters without the terminator

    fixedstring() = default;

    fixedstring(Char const * text) { assign(text); }

    fixedstring & operator=(Char const * text) {
        assign(text);
        return *this;
    }

    Char const * c_str() const { return characters; }

    std::size_t length() const { return tarnstring_trait<Char>::length(characters, N); }

    bool empty() const { return characters[0] == Char{}; }

    bool operator==(Char const * text) const {
        return std::strncmp(characters, text ? text : "", N + 1) == 0;
    }

private:
    // The tail is filled with zeros, so that equal texts are equal bytes. `text` may lie inside this object.
    void assign(Char const * text) {
        std::size_t const count = text ? tarnstring_trait<Char>::length(text, N) : 0;
        if (count > 0)
            std::memmove(characters, text, count * sizeof(Char));
        std::memset(characters + count, 0, (N + 1 - count) * sizeof(Char));
    }

    Char characters[N + 1] = {};
};
