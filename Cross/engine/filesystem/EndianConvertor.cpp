#include "Cross/engine/filesystem/EndianConvertor.h"

#include "Cross/engine/core/Text.h"
#include "Cross/engine/filesystem/ByteStreamAdapter.h"

#include <algorithm>
#include <cinttypes>
#include <cstring>
#include <limits>
#include <stdexcept>
#include <string_view>
#include <type_traits>

namespace {

constexpr std::size_t c_blockSize = 2048;

constexpr std::uint16_t swapped(std::uint16_t word) {
    return static_cast<std::uint16_t>(word << 8 | word >> 8);
}

constexpr std::uint32_t swapped(std::uint32_t word) {
    return std::uint32_t{swapped(static_cast<std::uint16_t>(word))} << 16 |
           swapped(static_cast<std::uint16_t>(word >> 16));
}

constexpr std::uint64_t swapped(std::uint64_t word) {
    return std::uint64_t{swapped(static_cast<std::uint32_t>(word))} << 32 |
           swapped(static_cast<std::uint32_t>(word >> 32));
}

template <std::size_t width>
using WordOf = std::conditional_t<width == 2, std::uint16_t,
                                  std::conditional_t<width == 4, std::uint32_t, std::uint64_t>>;

// Copies values with their bytes swapped; to their own place, too. They go through words of their width: a
// float with foreign bytes in it must not pass through a float register, which may change them.
template <std::size_t width>
void copySwapped(void * to, void const * from, std::size_t count) {
    auto target = static_cast<unsigned char *>(to);
    auto source = static_cast<unsigned char const *>(from);
    for (; count > 0; --count, target += width, source += width) {
        WordOf<width> word;
        std::memcpy(&word, source, width);
        word = swapped(word);
        std::memcpy(target, &word, width);
    }
}

// The source stays as it is, so a block at a time goes out.
template <std::size_t width>
unsigned int writeSwapped(ByteStream & stream, void const * values, unsigned int size) {
    unsigned char block[c_blockSize];
    auto const source = static_cast<unsigned char const *>(values);
    unsigned int done = 0;
    while (done < size) {
        unsigned int const part = std::min<unsigned int>(size - done, sizeof block);
        copySwapped<width>(block, source + done, part / width);
        unsigned int const written = stream.Write(block, part);
        done += written;
        if (written != part)
            break;
    }
    return done;
}

// A bool holds 0 or 1 and no other byte.
void makeBools(bool * values, unsigned int count) {
    static_assert(sizeof(bool) == 1);
    auto const bytes = reinterpret_cast<unsigned char *>(values);
    std::transform(bytes, bytes + count, bytes,
                   [](unsigned char byte) { return static_cast<unsigned char>(byte != 0); });
}

// The units of a text as values that a converter knows; nobody looks at them but as bytes.
template <class Unit>
auto asValues(Unit * units) {
    using Value = std::conditional_t<sizeof(Unit) == 1, char, std::uint16_t>;
    if constexpr (std::is_const_v<Unit>)
        return reinterpret_cast<Value const *>(units);
    else
        return reinterpret_cast<Value *>(units);
}

template <class T>
bool fitsStream(std::size_t count) {
    return count <= std::numeric_limits<unsigned int>::max() / sizeof(T);
}

} // namespace

EndianConvertor::~EndianConvertor() = default;

template <class T>
unsigned int EndianConvertor::readValues(T * values, unsigned int count) {
    if (!stream || !fitsStream<T>(count))
        return 0;
    unsigned int const done = stream->Read(values, count * static_cast<unsigned int>(sizeof(T)));
    if constexpr (sizeof(T) > 1) {
        if (IsSwapped(format))
            copySwapped<sizeof(T)>(values, values, done / sizeof(T));
    }
    return done;
}

template <class T>
unsigned int EndianConvertor::writeValues(T const * values, unsigned int count) {
    if (!stream || !fitsStream<T>(count))
        return 0;
    unsigned int const size = count * static_cast<unsigned int>(sizeof(T));
    if constexpr (sizeof(T) > 1) {
        if (IsSwapped(format))
            return writeSwapped<sizeof(T)>(*stream, values, size);
    }
    return stream->Write(values, size);
}

unsigned int EndianConvertor::Read(double * values, unsigned int count) { return readValues(values, count); }

unsigned int EndianConvertor::Read(float * values, unsigned int count) { return readValues(values, count); }

unsigned int EndianConvertor::Read(std::uint64_t * values, unsigned int count) {
    return readValues(values, count);
}

unsigned int EndianConvertor::Read(std::uint32_t * values, unsigned int count) {
    return readValues(values, count);
}

unsigned int EndianConvertor::Read(std::uint16_t * values, unsigned int count) {
    return readValues(values, count);
}

unsigned int EndianConvertor::Read(std::uint8_t * values, unsigned int count) {
    return readValues(values, count);
}

unsigned int EndianConvertor::Read(std::int64_t * values, unsigned int count) {
    return readValues(values, count);
}

unsigned int EndianConvertor::Read(std::int32_t * values, unsigned int count) {
    return readValues(values, count);
}

unsigned int EndianConvertor::Read(std::int16_t * values, unsigned int count) {
    return readValues(values, count);
}

unsigned int EndianConvertor::Read(char * values, unsigned int count) { return readValues(values, count); }

unsigned int EndianConvertor::Read(bool * values, unsigned int count) {
    unsigned int const done = readValues(values, count);
    makeBools(values, done);
    return done;
}

unsigned int EndianConvertor::Write(double const * values, unsigned int count) {
    return writeValues(values, count);
}

unsigned int EndianConvertor::Write(float const * values, unsigned int count) {
    return writeValues(values, count);
}

unsigned int EndianConvertor::Write(std::uint64_t const * values, unsigned int count) {
    return writeValues(values, count);
}

unsigned int EndianConvertor::Write(std::uint32_t const * values, unsigned int count) {
    return writeValues(values, count);
}

unsigned int EndianConvertor::Write(std::uint16_t const * values, unsigned int count) {
    return writeValues(values, count);
}

unsigned int EndianConvertor::Write(std::uint8_t const * values, unsigned int count) {
    return writeValues(values, count);
}

unsigned int EndianConvertor::Write(std::int64_t const * values, unsigned int count) {
    return writeValues(values, count);
}

unsigned int EndianConvertor::Write(std::int32_t const * values, unsigned int count) {
    return writeValues(values, count);
}

unsigned int EndianConvertor::Write(std::int16_t const * values, unsigned int count) {
    return writeValues(values, count);
}

unsigned int EndianConvertor::Write(char const * values, unsigned int count) {
    return writeValues(values, count);
}

unsigned int EndianConvertor::Write(bool const * values, unsigned int count) {
    return writeValues(values, count);
}

// The length of the text that comes next, once it is known to be there: nobody allocates for a length that
// damage made up.
template <class Unit>
unsigned int EndianConvertor::readLength() {
    ByteStreamAdapter adapter(stream, this);
    std::uint32_t length = 0;
    adapter.Read(length);
    unsigned int const position = stream->GetPos();
    unsigned int const end = stream->GetLen();
    unsigned int const left = end > position ? end - position : 0;
    std::uint64_t const size = std::uint64_t{length} * sizeof(Unit);
    if (size > left) {
        std::string message;
        text::Printf(message, "'%s' at offset %u: a text of %" PRIu64 " bytes exceeds the %u bytes left",
                     stream->GetStreamName(), position, size, left);
        throw std::runtime_error(message);
    }
    return length;
}

template <class Unit>
void EndianConvertor::readText(Unit * buffer, unsigned int size) {
    unsigned int const length = readLength<Unit>();
    unsigned int const end = stream->GetPos() + length * static_cast<unsigned int>(sizeof(Unit));
    if (size > 0) {
        unsigned int const kept = std::min(length, size - 1);
        buffer[kept] = Unit{}; // first, so that the text ends even when the read fails
        ByteStreamAdapter(stream, this).Read(asValues(buffer), kept);
    }
    stream->SetPos(end);
}

template <class Unit>
void EndianConvertor::readText(std::basic_string<Unit> & text) {
    std::basic_string<Unit> units(readLength<Unit>(), Unit{});
    ByteStreamAdapter(stream, this).Read(asValues(units.data()), static_cast<unsigned int>(units.size()));
    text = std::move(units);
}

template <class Unit>
void EndianConvertor::writeText(Unit const * text) {
    auto const units = text ? std::basic_string_view<Unit>(text) : std::basic_string_view<Unit>();
    ByteStreamAdapter adapter(stream, this);
    if (!fitsStream<Unit>(units.size()))
        throw std::runtime_error(std::string("'") + stream->GetStreamName() +
                                 "': a text of 4 GiB or more cannot be stored");
    auto const length = static_cast<std::uint32_t>(units.size());
    adapter.Write(length);
    adapter.Write(asValues(units.data()), length);
}

void EndianConvertor::ReadString(char16_t * buffer, unsigned int size) { readText(buffer, size); }

void EndianConvertor::ReadString(std::u16string & text) { readText(text); }

void EndianConvertor::ReadString(char * buffer, unsigned int size) { readText(buffer, size); }

void EndianConvertor::ReadString(std::string & text) { readText(text); }

void EndianConvertor::WriteString(char16_t const * text) { writeText(text); }

void EndianConvertor::WriteString(char const * text) { writeText(text); }

void EndianConvertor::ReadNativeStruct(void * data, unsigned int size) {
    ByteStreamAdapter(stream, nullptr).ReadBytes(data, size);
}

void EndianConvertor::ReadGenericStruct(void * data, unsigned int size) { ReadNativeStruct(data, size); }

void EndianConvertor::WriteNativeStruct(void const * data, unsigned int size) {
    ByteStreamAdapter(stream, nullptr).WriteBytes(data, size);
}

void EndianConvertor::WriteGenericStruct(void const * data, unsigned int size) {
    WriteNativeStruct(data, size);
}

void EndianConvertor::BeginAlignStruct(std::uint32_t) {}

void EndianConvertor::EndAlignStruct() {}
