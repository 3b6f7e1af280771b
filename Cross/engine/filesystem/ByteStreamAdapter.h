#pragma once

// Typed reads and writes over a ByteStream, through a converter where one is set. Every operation either does
// all that it was asked for or throws: std::runtime_error, which names the stream and the offset, or what the
// stream itself throws.
//
// Threads: those of the stream. Lifetime: the adapter owns neither the stream nor the converter; both must
// outlive it. One converter may serve several adapters.

#include "Cross/engine/core/Export.h"
#include "Cross/engine/filesystem/ByteStream.h"
#include "Cross/engine/filesystem/ByteStreamConverter.h"

#include <concepts>
#include <cstdint>
#include <limits>
#include <string>

class EndianConvertor;

// The values that have a stored form. Pointers, structs and enums have none, and do not compile.
template <class T>
concept StreamValue = std::same_as<T, double> || std::same_as<T, float> || std::same_as<T, std::uint64_t> ||
    std::same_as<T, std::uint32_t> || std::same_as<T, std::uint16_t> || std::same_as<T, std::uint8_t> ||
    std::same_as<T, std::int64_t> || std::same_as<T, std::int32_t> || std::same_as<T, std::int16_t> ||
    std::same_as<T, char> || std::same_as<T, bool>;

class CROSS_ENGINE_API ByteStreamAdapter {
public:
    // A null stream throws std::invalid_argument; the converter may be null.
    ByteStreamAdapter(ByteStream * stream, ByteStreamConverter * converter);
    ByteStreamAdapter(ByteStreamAdapter const &) = delete;
    ByteStreamAdapter & operator=(ByteStreamAdapter const &) = delete;

    // Null takes the converter away.
    void SetConverter(ByteStreamConverter * newConverter) { converter = newConverter; }

    char const * GetStreamName() const { return stream->GetStreamName(); }

    unsigned int GetStreamPos() const { return stream->GetPos(); }

    void SetStreamPos(unsigned int position) { stream->SetPos(position); }

    template <StreamValue T>
    void Write(T value) {
        Write(&value, 1);
    }

    template <StreamValue T>
    void Write(T const * values, unsigned int count) {
        unsigned int const size = sizeOf<T>(count);
        if (converter && count > 0)
            requireAll(attached(*converter).Write(values, count), size, "written");
        else
            WriteBytes(values, size);
    }

    template <StreamValue T>
    void Read(T & value) {
        Read(&value, 1);
    }

    template <StreamValue T>
    void Read(T * values, unsigned int count) {
        unsigned int const size = sizeOf<T>(count);
        if (converter && count > 0)
            requireAll(attached(*converter).Read(values, count), size, "read");
        else
            ReadBytes(values, size);
    }

    // Any byte but 0 is true.
    void Read(bool * values, unsigned int count);

    // Never converted. A size of 0 does not reach the stream.
    void WriteBytes(void const * bytes, unsigned int size) {
        if (size > 0)
            requireAll(stream->Write(bytes, size), size, "written");
    }

    void ReadBytes(void * bytes, unsigned int size) {
        if (size > 0)
            requireAll(stream->Read(bytes, size), size, "read");
    }

    // A text is stored as its length in bytes, a 32-bit word, and its bytes without a terminator; null counts
    // as "". The buffer form ends the text, cuts it to `size` - 1 bytes and skips the rest; it writes nothing
    // into a buffer of size 0. A length that exceeds what is left of the stream throws before anything is
    // allocated.
    void WriteString(char const * text);
    void ReadString(char * buffer, unsigned int size);
    void ReadString(std::string & text);

private:
    template <class T>
    unsigned int sizeOf(unsigned int count) const {
        if (count > std::numeric_limits<unsigned int>::max() / sizeof(T)) [[unlikely]]
            failSize(count, sizeof(T));
        return count * static_cast<unsigned int>(sizeof(T));
    }

    void requireAll(unsigned int done, unsigned int size, char const * verb) const {
        if (done != size) [[unlikely]]
            failShort(verb, done, size);
    }

    ByteStreamConverter & attached(ByteStreamConverter & used) const {
        used.SetStream(stream);
        return used;
    }

    ByteStreamConverter & converterOr(EndianConvertor & plain) const;
    [[noreturn]] void failShort(char const * verb, unsigned int done, unsigned int size) const;
    [[noreturn]] void failSize(unsigned int count, std::size_t width) const;

    ByteStream * stream;
    ByteStreamConverter * converter;
};
