#include "Cross/engine/filesystem/ByteStreamAdapter.h"

#include "Cross/engine/core/Text.h"
#include "Cross/engine/filesystem/EndianConvertor.h"

#include <stdexcept>

ByteStreamAdapter::ByteStreamAdapter(ByteStream * stream, ByteStreamConverter * converter)
    : stream(stream), converter(converter) {
    if (!stream)
        throw std::invalid_argument("a typed read or write needs an open stream");
}

void ByteStreamAdapter::Read(bool * values, unsigned int count) {
    EndianConvertor plain(c_nativePlatform);
    if (count > 0)
        requireAll(converterOr(plain).Read(values, count), count, "read");
}

void ByteStreamAdapter::WriteString(char const * text) {
    EndianConvertor plain(c_nativePlatform);
    converterOr(plain).WriteString(text);
}

void ByteStreamAdapter::ReadString(char * buffer, unsigned int size) {
    EndianConvertor plain(c_nativePlatform);
    converterOr(plain).ReadString(buffer, size);
}

void ByteStreamAdapter::ReadString(std::string & text) {
    EndianConvertor plain(c_nativePlatform);
    converterOr(plain).ReadString(text);
}

// Where more than bytes is to be moved, an adapter without converter does what the native one does.
ByteStreamConverter & ByteStreamAdapter::converterOr(EndianConvertor & plain) const {
    return attached(converter ? *converter : plain);
}

void ByteStreamAdapter::failShort(char const * verb, unsigned int done, unsigned int size) const {
    std::string message;
    text::Printf(message, "'%s' at offset %u: only %u of %u bytes could be %s", stream->GetStreamName(),
                 stream->GetPos() - done, done, size, verb);
    throw std::runtime_error(message);
}

void ByteStreamAdapter::failSize(unsigned int count, std::size_t width) const {
    std::string message;
    text::Printf(message, "'%s' at offset %u: %u values of %zu bytes are more than a stream can hold",
                 stream->GetStreamName(), stream->GetPos(), count, width);
    throw std::runtime_error(message);
}
