#include "tools/Quote.h"

#include "Cross/engine/core/Text.h"
#include "Cross/engine/core/Utf.h"

namespace {

std::string formatUnit(char const * prefix, int digits, unsigned int unit) {
    std::string escape;
    text::Printf(escape, "%s%0*X", prefix, digits, unit);
    return escape;
}

// A unit of ASCII as it stands between quotes.
std::string escapeAscii(unsigned int unit) {
    switch (unit) {
    case '"':
        return "\\\"";
    case '\\':
        return "\\\\";
    case '\n':
        return "\\n";
    case '\r':
        return "\\r";
    case '\t':
        return "\\t";
    default:
        return unit < 0x20 || unit == 0x7F ? formatUnit("\\u", 4, unit)
                                           : std::string(1, static_cast<char>(unit));
    }
}

std::string quoteValidUtf8(std::string_view text) {
    std::string quoted = "\"";
    for (char const character : text) {
        auto const unit = static_cast<unsigned char>(character);
        quoted += unit < 0x80 ? escapeAscii(unit) : std::string(1, character);
    }
    return quoted + '"';
}

// Every unit beyond ASCII as an escape.
template <class Text>
std::string quoteMalformed(Text text, char const * prefix, int digits) {
    std::string quoted = "\"";
    for (auto const character : text) {
        unsigned int const unit = static_cast<std::make_unsigned_t<decltype(character)>>(character);
        quoted += unit < 0x80 ? escapeAscii(unit) : formatUnit(prefix, digits, unit);
    }
    return quoted + '"';
}

} // namespace

std::string Quote(std::string_view text) {
    std::u16string units;
    return utf::ToUtf16Strict(text, units) ? quoteValidUtf8(text) : quoteMalformed(text, "\\x", 2);
}

std::string Quote(std::u16string_view text) {
    std::string const bytes = utf::ToUtf8(text);
    return utf::ToUtf16(bytes) == text ? quoteValidUtf8(bytes) : quoteMalformed(text, "\\u", 4);
}

std::string QuoteJson(std::string_view text) { return quoteValidUtf8(utf::ToUtf8(utf::ToUtf16(text))); }

std::string QuoteJson(std::u16string_view text) { return quoteValidUtf8(utf::ToUtf8(text)); }
