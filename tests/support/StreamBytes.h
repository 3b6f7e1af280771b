#pragma once

#include "Cross/engine/filesystem/RamStream.h"

#include <cctype>
#include <string>
#include <string_view>

// Bytes from a text of hexadecimal digits; everything that is none is skipped.
inline std::string FromHex(std::string_view text) {
    std::string digits;
    for (char const c : text)
        if (std::isxdigit(static_cast<unsigned char>(c)))
            digits += c;
    std::string bytes;
    for (std::size_t i = 0; i + 1 < digits.size(); i += 2)
        bytes += static_cast<char>(std::stoi(digits.substr(i, 2), nullptr, 16));
    return bytes;
}

// A stream in memory, open for writing, that begins with some bytes and stands in front of them.
class FilledStream {
public:
    explicit FilledStream(std::string_view bytes = {}) {
        stream.Open(16, c_streamWrite);
        stream.Write(bytes.data(), static_cast<unsigned int>(bytes.size()));
        stream.SetPos(0);
    }

    operator ByteStream *() { return &stream; }

    operator ByteStream &() { return stream; }

    RamStream * operator->() { return &stream; }

    std::string Content() {
        return stream.GetLen() ? std::string(static_cast<char *>(stream.GetBuffer()), stream.GetLen()) : "";
    }

private:
    RamStream stream;
};
