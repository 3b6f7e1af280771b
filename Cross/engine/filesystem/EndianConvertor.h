#pragma once

// The converter of this engine: stores words and floats in the byte order of a platform. Formats 0 and 1 are
// native, every other value swaps the bytes of each value. Bytes, texts' units and structs are never swapped;
// the length word of a text is. Failures of its void operations throw std::runtime_error.

#include "Cross/engine/filesystem/ByteStreamConverter.h"

class CROSS_ENGINE_API EndianConvertor : public ByteStreamConverter {
public:
    explicit EndianConvertor(std::uint32_t format);
    ~EndianConvertor() override;

    unsigned int Read(double * values, unsigned int count) override;
    unsigned int Read(float * values, unsigned int count) override;
    unsigned int Read(std::uint64_t * values, unsigned int count) override;
    unsigned int Read(std::uint32_t * values, unsigned int count) override;
    unsigned int Read(std::uint16_t * values, unsigned int count) override;
    unsigned int Read(std::uint8_t * values, unsigned int count) override;
    unsigned int Read(std::int64_t * values, unsigned int count) override;
    unsigned int Read(std::int32_t * values, unsigned int count) override;
    unsigned int Read(std::int16_t * values, unsigned int count) override;
    unsigned int Read(char * values, unsigned int count) override;
    unsigned int Read(bool * values, unsigned int count) override;
    void ReadString(char16_t * buffer, unsigned int size) override;
    void ReadString(std::u16string & text) override;
    void ReadString(char * buffer, unsigned int size) override;
    void ReadString(std::string & text) override;
    void ReadNativeStruct(void * data, unsigned int size) override;
    void ReadGenericStruct(void * data, unsigned int size) override;

    unsigned int Write(double const * values, unsigned int count) override;
    unsigned int Write(float const * values, unsigned int count) override;
    unsigned int Write(std::uint64_t const * values, unsigned int count) override;
    unsigned int Write(std::uint32_t const * values, unsigned int count) override;
    unsigned int Write(std::uint16_t const * values, unsigned int count) override;
    unsigned int Write(std::uint8_t const * values, unsigned int count) override;
    unsigned int Write(std::int64_t const * values, unsigned int count) override;
    unsigned int Write(std::int32_t const * values, unsigned int count) override;
    unsigned int Write(std::int16_t const * values, unsigned int count) override;
    unsigned int Write(char const * values, unsigned int count) override;
    unsigned int Write(bool const * values, unsigned int count) override;
    void WriteString(char16_t const * text) override;
    void WriteString(char const * text) override;
    void WriteNativeStruct(void const * data, unsigned int size) override;
    void WriteGenericStruct(void const * data, unsigned int size) override;

    void BeginAlignStruct(std::uint32_t alignment) override;
    void EndAlignStruct() override;

    std::uint32_t GetFormat() const override { return format; }

private:
    std::uint32_t format;
};
