#pragma once

// The converter of this engine: stores values in the byte order of a platform. Platforms 0 and 1 are native,
// every other one swaps the bytes of each value, of the units of wide texts and of the length word of each
// text. Single bytes and structs stay as they are; records are not padded. The operations that give no result
// throw on failure, as those of ByteStreamAdapter do, and also when there is no stream yet.

#include "Cross/engine/core/Types.h"
#include "Cross/engine/filesystem/ByteStreamConverter.h"

inline constexpr PlatformType c_nativePlatform = 1;

class CROSS_ENGINE_API EndianConvertor : public ByteStreamConverter {
public:
    // `format` is a PlatformType.
    explicit EndianConvertor(std::uint32_t format) : format(format) {}

    ~EndianConvertor() override;

    // Whether the values of a platform have their bytes swapped.
    static bool IsSwapped(PlatformType platform) { return platform > c_nativePlatform; }

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
    template <class T>
    unsigned int readValues(T * values, unsigned int count);
    template <class T>
    unsigned int writeValues(T const * values, unsigned int count);
    template <class Unit>
    unsigned int readLength();
    template <class Unit>
    void readText(Unit * buffer, unsigned int size);
    template <class Unit>
    void readText(std::basic_string<Unit> & text);
    template <class Unit>
    void writeText(Unit const * text);

    std::uint32_t format;
};
