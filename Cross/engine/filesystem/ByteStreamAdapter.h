#pragma once

// Typed reads and writes over a ByteStream, through a converter where one is set. Every operation either does
// all that it was asked for or throws std::runtime_error.
//
// Threads: those of the stream. Lifetime: the adapter owns neither the stream nor the converter; both must
// outlive it.

#include "Cross/engine/core/Export.h"
#include "Cross/engine/filesystem/ByteStream.h"
#include "Cross/engine/filesystem/ByteStreamConverter.h"

#include <concepts>
#include <cstdint>
#include <string>

// The values that have a stored form. Pointers, structs and enums have none, and do not compile.
template <class T>
concept StreamValue = std::same_as<T, double> || std::same_as<T, float> || std::same_as<T, std::uint64_t> ||
    std::same_as<T, std::uint32_t> || std::same_as<T, std::uint16_t> || std::same_as<T, std::uint8_t> ||
    std::same_as<T, std::int64_t> || std::same_as<T, std::int32_t> || std::same_as<T, std::int16_t> ||
    std::same_as<T, char> || std::same_as<T, bool>;

class CROSS_ENGINE_API ByteStreamAdapter {
public:
    ByteStreamAdapter(ByteStream * stream, ByteStreamConverter * converter);
    ByteStreamAdapter(ByteStreamAdapter const &) = delete;
    ByteStreamAdapter & operator=(ByteStreamAdapter const &) = delete;

    // Null takes the converter away.
    void SetConverter(ByteStreamConverter * newConverter);

    unsigned int GetStreamPos() const;
    void SetStreamPos(unsigned int position);

    template <StreamValue T>
    void Write(T value) {
        Write(&value, 1);
    }

    template <StreamValue T>
    void Write(T const * values, unsigned int count) {
        std::uint64_t const size = std::uint64_t{count} * sizeof(T);
        if (converter)
            RequireAll(count ? converter->Write(values, count) : 0, size, "write");
        else
            WriteAll(values, size);
    }

    template <StreamValue T>
    void Read(T & value) {
        Read(&value, 1);
    }

    template <StreamValue T>
    void Read(T * values, unsigned int count) {
        std::uint64_t const size = std::uint64_t{count} * sizeof(T);
        if (converter)
            RequireAll(count ? converter->Read(values, count) : 0, size, "read");
        else
            ReadAll(values, size);
    }

    void WriteBytes(void const * bytes, unsigned int size);
    void ReadBytes(void * bytes, unsigned int size);

    // A text is stored as its length in bytes, a 32-bit word, and its bytes without a terminator; null counts
    // as "". The buffer form ends the text, cuts it to `size` - 1 bytes and skips the rest; it writes nothing
    // at size 0.
    void WriteString(char const * text);
    void ReadString(char * buffer, unsigned int size);
    void ReadString(std::string & text);

protected:
    void SetStream(ByteStream * newStream);

private:
    void WriteAll(void const * bytes, std::uint64_t size);
    void ReadAll(void * bytes, std::uint64_t size);
    void RequireAll(std::uint64_t done, std::uint64_t wanted, char const * verb) const;

    ByteStream * stream;
    ByteStreamConverter * converter;
};
