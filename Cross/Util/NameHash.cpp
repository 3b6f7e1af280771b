#include "Cross/Util/NameHash.h"

#include "Cross/engine/core/Text.h"

#include <cstring>

namespace {

constexpr std::size_t c_maxLowered = 2047;

struct State {
    std::uint32_t a = 0x9E3779B9;
    std::uint32_t b = 0x9E3779B9;
    std::uint32_t c = 0;

    void Mix() {
        a = (a - b - c) ^ (c >> 13);
        b = (b - c - a) ^ (a << 8);
        c = (c - a - b) ^ (b >> 13);
        a = (a - b - c) ^ (c >> 12);
        b = (b - c - a) ^ (a << 16);
        c = (c - a - b) ^ (b >> 5);
        a = (a - b - c) ^ (c >> 3);
        b = (b - c - a) ^ (a << 10);
        c = (c - a - b) ^ (b >> 15);
    }
};

std::uint64_t byteAt(char const * text, std::size_t i) { return static_cast<unsigned char>(text[i]); }

// Little-endian words. Compilers make a single load of them where the machine's byte order allows.
std::uint32_t wordAt(char const * text, std::size_t i) {
    return static_cast<std::uint32_t>(byteAt(text, i) | byteAt(text, i + 1) << 8 | byteAt(text, i + 2) << 16 |
                                      byteAt(text, i + 3) << 24);
}

std::uint64_t doubleWordAt(char const * text, std::size_t i) {
    return wordAt(text, i) | static_cast<std::uint64_t>(wordAt(text, i + 4)) << 32;
}

// The last bytes of a text, less than twelve of them, as one little-endian number.
struct Tail {
    std::uint64_t low = 0;  // the first eight
    std::uint32_t high = 0; // what is behind them
};

// Parts of a text may be read twice here, since bytes that meet themselves stay what they are under "or".
Tail tailOf(char const * text, std::size_t length) {
    if (length >= 8)
        return {doubleWordAt(text, 0),
                static_cast<std::uint32_t>(static_cast<std::uint64_t>(wordAt(text, length - 4)) >>
                                           8 * (12 - length))};
    if (length >= 4)
        return {wordAt(text, 0) | static_cast<std::uint64_t>(wordAt(text, length - 4)) << 8 * (length - 4),
                0};
    if (length > 0)
        return {byteAt(text, 0) | byteAt(text, length / 2) << 8 * (length / 2) |
                    byteAt(text, length - 1) << 8 * (length - 1),
                0};
    return {};
}

} // namespace

std::uint32_t NameHash(char const * text, std::size_t length) {
    State state;
    std::size_t rest = length;
    for (; rest >= 12; rest -= 12, text += 12) {
        state.a += wordAt(text, 0);
        state.b += wordAt(text, 4);
        state.c += wordAt(text, 8);
        state.Mix();
    }
    Tail const tail = tailOf(text, rest);
    state.a += static_cast<std::uint32_t>(tail.low);
    state.b += static_cast<std::uint32_t>(tail.low >> 32);
    state.c += static_cast<std::uint32_t>(length) + (tail.high << 8); // the low byte belongs to the length
    state.Mix();
    return state.c;
}

std::uint32_t NameHash(char const * text) {
    return text ? NameHash(text, std::strlen(text)) : NameHash("", 0);
}

std::uint32_t NameHashLower(char const * text) {
    char lowered[c_maxLowered];
    std::size_t length = 0;
    if (text)
        for (; length < c_maxLowered && text[length] != '\0'; ++length)
            lowered[length] = text::ToLower(text[length]);
    return NameHash(lowered, length);
}
