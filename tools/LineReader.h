#pragma once

// The lines of a stream, read in blocks, so that memory stays small however long it is.

#include "Cross/engine/core/Text.h"
#include "Cross/engine/filesystem/ByteStream.h"

#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>
#include <string_view>

class LineReader {
public:
    // A line with its end has at most `longest` bytes; `tooLong` tells what one with more is.
    LineReader(ByteStream & stream, std::size_t longest, char const * tooLong)
        : stream(stream), longest(longest), tooLong(tooLong), buffer(2 * longest, 0) {}

    // Goes on to the next line. False at the end.
    bool Next() {
        std::size_t const length = findLine();
        if (length == 0)
            return false;
        line = std::string_view(buffer).substr(begin, length);
        begin += length;
        ++number;
        hasEnd = line.ends_with('\n');
        if (hasEnd)
            line.remove_suffix(1);
        if (line.ends_with('\r'))
            line.remove_suffix(1);
        return true;
    }

    // The line without its end, LF or CR LF, until the next call of Next.
    std::string_view Line() const { return line; }

    // False for a last line that just stops.
    bool HasEnd() const { return hasEnd; }

    // Counted from 1; 0 in front of the first line.
    std::uint64_t Number() const { return number; }

    // Throws std::runtime_error with the name of the stream and the number of the line.
    [[noreturn]] void Fail(char const * problem) const {
        std::string text;
        text::Printf(text, "%s: line %llu: %s", stream.GetStreamName(),
                     static_cast<unsigned long long>(number), problem);
        throw std::runtime_error(text);
    }

private:
    // The length of the next line with its end, in the buffer from `begin` on; 0 at the end of the stream.
    std::size_t findLine() {
        for (std::size_t searched = begin;;) {
            std::size_t const found = std::string_view(buffer.data(), end).find('\n', searched);
            bool const hasLine = found != std::string_view::npos;
            std::size_t const length = (hasLine ? found + 1 : end) - begin;
            if (length > longest || (length == longest && !hasLine)) {
                ++number;
                Fail(tooLong);
            }
            if (hasLine || !refill())
                return length;
            searched = length;
        }
    }

    // Moves what is left to the front and reads on behind it. False at the end of the stream.
    bool refill() {
        std::size_t const rest = end - begin;
        std::memmove(buffer.data(), buffer.data() + begin, rest);
        begin = 0;
        unsigned int const count =
            stream.Read(buffer.data() + rest, static_cast<unsigned int>(buffer.size() - rest));
        end = rest + count;
        return count != 0;
    }

    ByteStream & stream;
    std::size_t longest;
    char const * tooLong;
    std::string buffer;
    std::size_t begin = 0;
    std::size_t end = 0;
    std::string_view line;
    bool hasEnd = false;
    std::uint64_t number = 0;
};
