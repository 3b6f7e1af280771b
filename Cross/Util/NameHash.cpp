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

std::uint32_t byteAt(char const * text, std::size_t i) { return static_cast<unsigned char>(text[i]); }

// Compilers make a single load of it where the machine's byte order allows.
std::uint32_t wordAt(char const * text, std::size_t i) {
    return byteAt(text, i) | byteAt(text, i + 1) << 8 | byteAt(text, i + 2) << 16 | byteAt(text, i + 3) << 24;
}

// The first `count` bytes, at most 4, as the low bytes of a word.
std::uint32_t partOfWord(char const * text, std::size_t count) {
    std::uint32_t word = 0;
    for (std::size_t i = 0; i < count; ++i)
        word |= byteAt(text, i) << (8 * i);
    return word;
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
    state.c += static_cast<std::uint32_t>(length);
    state.a += partOfWord(text, rest < 4 ? rest : 4);
    if (rest > 4)
        state.b += partOfWord(text + 4, rest < 8 ? rest - 4 : 4);
    if (rest > 8)
        state.c += partOfWord(text + 8, rest - 8) << 8; // the low byte belongs to the length
    state.Mix();
    return state.c;
}

std::uint32_t NameHash(char const * text) { return text ? NameHash(text, std::strlen(text)) : NameHash("", 0); }

std::uint32_t NameHashLower(char const * text) {
    char lowered[c_maxLowered];
    std::size_t length = 0;
    if (text)
        for (; length < c_maxLowered && text[length] != '\0'; ++length)
            lowered[length] = text::ToLower(text[length]);
    return NameHash(lowered, length);
}
