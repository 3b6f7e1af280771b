#pragma once

// Converts typed values on their way between a ByteStreamAdapter and its stream, for data that is stored for
// another platform. The adapter tells a converter its stream at each operation, so that one converter may
// serve several adapters in turn; it owns none of them.
//
// Threads and lifetime: those of the adapters that use it.

#include "Cross/engine/core/Export.h"

#include <cstdint>
#include <string>

class ByteStream;

class CROSS_ENGINE_API ByteStreamConverter {
public:
    // The virtual functions are called by position: their order stays.

    virtual ~ByteStreamConverter();

    // Each reads `count` values and gives the number of bytes read from the stream; fewer than count * sizeof
    // is a failure, and what the values then hold is of no use.
    virtual unsigned int Read(double * values, unsigned int count) = 0;
    virtual unsigned int Read(float * values, unsigned int count) = 0;
    virtual unsigned int Read(std::uint64_t * values, unsigned int count) = 0;
    virtual unsigned int Read(std::uint32_t * values, unsigned int count) = 0;
    virtual unsigned int Read(std::uint16_t * values, unsigned int count) = 0;
    virtual unsigned int Read(std::uint8_t * values, unsigned int count) = 0;
    virtual unsigned int Read(std::int64_t * values, unsigned int count) = 0;
    virtual unsigned int Read(std::int32_t * values, unsigned int count) = 0;
    virtual unsigned int Read(std::int16_t * values, unsigned int count) = 0;
    virtual unsigned int Read(char * values, unsigned int count) = 0;
    virtual unsigned int Read(bool * values, unsigned int count) = 0; // any byte but 0 is true

    // Texts in the form that WriteString gives them: the number of units, a 32-bit word, and the units
    // without a terminator; null counts as "". The buffer forms cut to fit and always end the text, the rest
    // of the stored text is skipped. `size` counts units of the buffer; at 0 nothing is written into it.
    virtual void ReadString(char16_t * buffer, unsigned int size) = 0;
    virtual void ReadString(std::u16string & text) = 0;
    virtual void ReadString(char * buffer, unsigned int size) = 0;
    virtual void ReadString(std::string & text) = 0;

    // Blocks of bytes that the caller describes as a whole; they are never converted.
    virtual void ReadNativeStruct(void * data, unsigned int size) = 0;
    virtual void ReadGenericStruct(void * data, unsigned int size) = 0;

    // Each writes `count` values and gives the number of bytes written; fewer than count * sizeof is a
    // failure.
    virtual unsigned int Write(double const * values, unsigned int count) = 0;
    virtual unsigned int Write(float const * values, unsigned int count) = 0;
    virtual unsigned int Write(std::uint64_t const * values, unsigned int count) = 0;
    virtual unsigned int Write(std::uint32_t const * values, unsigned int count) = 0;
    virtual unsigned int Write(std::uint16_t const * values, unsigned int count) = 0;
    virtual unsigned int Write(std::uint8_t const * values, unsigned int count) = 0;
    virtual unsigned int Write(std::int64_t const * values, unsigned int count) = 0;
    virtual unsigned int Write(std::int32_t const * values, unsigned int count) = 0;
    virtual unsigned int Write(std::int16_t const * values, unsigned int count) = 0;
    virtual unsigned int Write(char const * values, unsigned int count) = 0;
    virtual unsigned int Write(bool const * values, unsigned int count) = 0;

    virtual void WriteString(char16_t const * text) = 0;
    virtual void WriteString(char const * text) = 0;
    virtual void WriteNativeStruct(void const * data, unsigned int size) = 0;
    virtual void WriteGenericStruct(void const * data, unsigned int size) = 0;

    // Brackets around a record: a converter whose platform pads records may align here. `alignment` in bytes.
    virtual void BeginAlignStruct(std::uint32_t alignment) = 0;
    virtual void EndAlignStruct() = 0;

    // The platform that the converter stores for.
    virtual std::uint32_t GetFormat() const = 0;

    // The stream that all of the above work on; the adapter sets it.
    void SetStream(ByteStream * newStream) { stream = newStream; }

protected:
    ByteStream * stream = nullptr;
};
