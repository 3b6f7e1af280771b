#pragma once

// The lines of sectioned files, as loading takes them. Private to ConfigFile and to tools that explain it.

#include "Cross/engine/core/Text.h"
#include "Cross/engine/filesystem/ByteStream.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>
#include <utility>

namespace configlines {

inline constexpr std::size_t c_longestLine = 1023;
inline constexpr std::size_t c_longestName = 255; // of a key or a section, as callers give it
inline constexpr std::string_view c_lineEnd = "\r\n";

// The lines of a stream without their ends. What is longer than c_longestLine comes in pieces.
class Reader {
public:
    explicit Reader(ByteStream & stream) : stream(stream) {}

    // False at the end. The line is valid until the next call.
    bool Next(std::string_view & line) {
        if (end - begin < c_longestLine)
            refill();
        std::string_view const window(buffer.data() + begin, std::min(end - begin, c_longestLine));
        std::size_t const length = findEnd(window);
        line = window.substr(0, length);
        begin += std::min(length + c_lineEnd.size(), window.size());
        isEnded = length < window.size();
        return !window.empty();
    }

    // Whether the last line had its end: a piece of a long one and the rest of a file have none.
    bool IsEnded() const { return isEnded; }

private:
    static std::size_t findEnd(std::string_view window) {
        char const * const first = window.data();
        char const * const last = first + window.size();
        for (char const * at = first; at < last; ++at) {
            at = static_cast<char const *>(std::memchr(at, '\r', static_cast<std::size_t>(last - at)));
            if (!at)
                break;
            if (at + 1 < last && at[1] == '\n')
                return static_cast<std::size_t>(at - first);
        }
        return window.size();
    }

    void refill() {
        std::memmove(buffer.data(), buffer.data() + begin, end - begin);
        end -= std::exchange(begin, 0);
        unsigned int count = 1;
        for (; count > 0 && end < buffer.size(); end += count)
            count = stream.Read(buffer.data() + end, static_cast<unsigned int>(buffer.size() - end));
    }

    ByteStream & stream;
    std::array<char, 32 * 1024> buffer;
    std::size_t begin = 0;
    std::size_t end = 0;
    bool isEnded = false;
};

inline bool IsBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

inline std::string_view Trimmed(std::string_view text) {
    while (!text.empty() && IsBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && IsBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

enum class Kind { empty, header, entry, malformed }; // empty: blank or a comment

// What a line says: the name of a section, or a key and its value. Views of the line, in its spelling.
struct Line {
    Kind kind;
    std::string_view name, value;
};

inline Line Parse(std::string_view line) {
    line = Trimmed(line);
    if (line.empty() || line.front() == ';')
        return {Kind::empty, {}, {}};
    if (line.front() == '[') {
        if (line.back() != ']')
            return {Kind::malformed, {}, {}};
        return {Kind::header, Trimmed(line.substr(1, line.size() - 2)), {}};
    }
    std::size_t const equals = line.find('=');
    if (equals == 0 || equals == std::string_view::npos)
        return {Kind::malformed, {}, {}};
    return {Kind::entry, Trimmed(line.substr(0, equals)), Trimmed(line.substr(equals + 1))};
}

} // namespace configlines
