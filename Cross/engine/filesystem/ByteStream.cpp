#include "Cross/engine/filesystem/ByteStream.h"

#include "Cross/engine/core/Text.h"

#include <cstdarg>
#include <cstdint>
#include <limits>
#include <string_view>
#include <utility>

ByteStream::ByteStream(char const * name) : name(name ? name : "") {}

ByteStream::~ByteStream() = default;

// Taking over comes before closing: a proxy that is assigned to itself gets its own stream back.
ByteStreamProxy & ByteStreamProxy::operator=(ByteStreamProxy const & source) {
    ByteStream * const taken = source.Release();
    delete std::exchange(stream, taken);
    return *this;
}

ByteStream * ByteStreamProxy::Release() const { return std::exchange(stream, nullptr); }

namespace {

bool writeAll(ByteStream & stream, std::string_view text) {
    if (text.size() > std::numeric_limits<std::uint32_t>::max())
        return false;
    auto const size = static_cast<unsigned int>(text.size());
    return size == 0 || stream.Write(text.data(), size) == size;
}

std::string withLineEnds(std::string_view format) {
    std::string converted;
    for (std::size_t i = 0; i < format.size(); ++i) {
        if (format[i] == '\n' && (i == 0 || format[i - 1] != '\r'))
            converted += '\r';
        converted += format[i];
    }
    return converted;
}

} // namespace

bool BSWriteText(ByteStream & stream, char const * text, bool lineEnd) {
    return writeAll(stream, text ? text : "") && (!lineEnd || writeAll(stream, "\n"));
}

bool BSPrintf(ByteStream & stream, char const * format, ...) {
    std::string const converted = withLineEnds(format);
    std::string written;
    std::va_list arguments;
    va_start(arguments, format);
    // The compiler has checked the arguments against `format` at the call; line ends do not change them.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
    bool const formatted = text::VPrintf(written, converted.c_str(), arguments);
#pragma GCC diagnostic pop
    va_end(arguments);
    return formatted && writeAll(stream, written);
}
