#include "Cross/engine/core/Utf.h"

#include <utility>

namespace utf {

namespace {

constexpr char32_t c_replacement = 0xFFFD;

// One character of a text, and the number of units that it takes there. Of a bad sequence it is the longest
// start of a good one, at least one unit, so that the good text behind it is never swallowed.
struct Decoded {
    char32_t code;
    std::size_t length;
    bool valid;
};

Decoded bad(std::size_t length) { return {c_replacement, length, false}; }

// What may follow a lead byte: the number of trail bytes and the range of the first of them, which is where
// overlong forms, surrogates and codes above 0x10FFFF show. The others are 0x80 to 0xBF.
struct Lead {
    unsigned int trailCount; // 0 for a byte that is no lead
    unsigned char lowest;
    unsigned char highest;
};

Lead leadOf(unsigned char byte) {
    if (byte < 0xC2 || byte > 0xF4)
        return {0, 0, 0};
    if (byte < 0xE0)
        return {1, 0x80, 0xBF};
    if (byte < 0xF0)
        return {2, static_cast<unsigned char>(byte == 0xE0 ? 0xA0 : 0x80),
                static_cast<unsigned char>(byte == 0xED ? 0x9F : 0xBF)};
    return {3, static_cast<unsigned char>(byte == 0xF0 ? 0x90 : 0x80),
            static_cast<unsigned char>(byte == 0xF4 ? 0x8F : 0xBF)};
}

// REQUIRES: `text` is not empty.
Decoded decode(std::string_view text) {
    unsigned char const first = static_cast<unsigned char>(text[0]);
    if (first < 0x80)
        return {first, 1, true};
    Lead lead = leadOf(first);
    if (lead.trailCount == 0)
        return bad(1);
    char32_t code = first & (0x3Fu >> lead.trailCount);
    for (std::size_t i = 1; i <= lead.trailCount; ++i) {
        unsigned char const trail = i < text.size() ? static_cast<unsigned char>(text[i]) : 0;
        if (trail < lead.lowest || trail > lead.highest)
            return bad(i);
        code = (code << 6) | (trail & 0x3Fu);
        lead.lowest = 0x80;
        lead.highest = 0xBF;
    }
    return {code, lead.trailCount + 1, true};
}

bool isHighSurrogate(char32_t unit) { return unit >= 0xD800 && unit < 0xDC00; }

bool isLowSurrogate(char32_t unit) { return unit >= 0xDC00 && unit < 0xE000; }

// REQUIRES: `text` is not empty.
Decoded decode(std::u16string_view text) {
    char32_t const first = text[0];
    if (!isHighSurrogate(first) && !isLowSurrogate(first))
        return {first, 1, true};
    if (isLowSurrogate(first) || text.size() == 1 || !isLowSurrogate(text[1]))
        return bad(1);
    return {0x10000 + ((first & 0x3FF) << 10) + (text[1] & 0x3FFu), 2, true};
}

void append(std::string & out, char32_t code) {
    auto const put = [&out](char32_t byte) { out.push_back(static_cast<char>(byte)); };
    if (code < 0x80) {
        put(code);
        return;
    }
    if (code < 0x800) {
        put(0xC0 | (code >> 6));
    } else if (code < 0x10000) {
        put(0xE0 | (code >> 12));
        put(0x80 | ((code >> 6) & 0x3F));
    } else {
        put(0xF0 | (code >> 18));
        put(0x80 | ((code >> 12) & 0x3F));
        put(0x80 | ((code >> 6) & 0x3F));
    }
    put(0x80 | (code & 0x3F));
}

void append(std::u16string & out, char32_t code) {
    if (code < 0x10000) {
        out.push_back(static_cast<char16_t>(code));
        return;
    }
    out.push_back(static_cast<char16_t>(0xD7C0 + (code >> 10)));
    out.push_back(static_cast<char16_t>(0xDC00 + (code & 0x3FF)));
}

// Appends the whole text to `out`, and tells whether all of it was well-formed.
template <class Text, class Result>
bool convert(Text text, Result & out) {
    bool valid = true;
    while (!text.empty()) {
        Decoded const next = decode(text);
        append(out, next.code);
        valid = valid && next.valid;
        text.remove_prefix(next.length);
    }
    return valid;
}

} // namespace

std::string ToUtf8(std::u16string_view text) {
    std::string result;
    result.reserve(text.size());
    convert(text, result);
    return result;
}

std::u16string ToUtf16(std::string_view text) {
    std::u16string result;
    result.reserve(text.size());
    convert(text, result);
    return result;
}

bool ToUtf16Strict(std::string_view text, std::u16string & result) {
    std::u16string converted;
    converted.reserve(text.size());
    bool const valid = convert(text, converted);
    if (!valid)
        converted.clear();
    result = std::move(converted);
    return valid;
}

} // namespace utf
