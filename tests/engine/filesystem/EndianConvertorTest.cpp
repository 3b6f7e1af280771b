#include "Cross/engine/filesystem/EndianConvertor.h"
#include "Cross/engine/filesystem/ByteStreamAdapter.h"
#include "tests/support/FailingStream.h"
#include "tests/support/ReasonOf.h"
#include "tests/support/SlotOf.h"
#include "tests/support/StreamBytes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <initializer_list>
#include <numeric>
#include <stdexcept>
#include <vector>

namespace {

constexpr PlatformType c_swapped = 2;

#if defined(__x86_64__)
template <class... Values>
bool functionsKeepTheirSlots() {
    using C = ByteStreamConverter;
    return FollowTheDestructor({
        SlotOf<unsigned int (C::*)(Values *, unsigned int)>(&C::Read)...,
        SlotOf<void (C::*)(char16_t *, unsigned int)>(&C::ReadString),
        SlotOf<void (C::*)(std::u16string &)>(&C::ReadString),
        SlotOf<void (C::*)(char *, unsigned int)>(&C::ReadString),
        SlotOf<void (C::*)(std::string &)>(&C::ReadString),
        SlotOf(&C::ReadNativeStruct),
        SlotOf(&C::ReadGenericStruct),
        SlotOf<unsigned int (C::*)(Values const *, unsigned int)>(&C::Write)...,
        SlotOf<void (C::*)(char16_t const *)>(&C::WriteString),
        SlotOf<void (C::*)(char const *)>(&C::WriteString),
        SlotOf(&C::WriteNativeStruct),
        SlotOf(&C::WriteGenericStruct),
        SlotOf(&C::BeginAlignStruct),
        SlotOf(&C::EndAlignStruct),
        SlotOf(&C::GetFormat),
    });
}

TEST(ByteStreamConverter, VirtualFunctionsKeepTheirSlots) {
    EXPECT_TRUE(
        (functionsKeepTheirSlots<double, float, std::uint64_t, std::uint32_t, std::uint16_t, std::uint8_t,
                                 std::int64_t, std::int32_t, std::int16_t, char, bool>()));
}
#endif

// Writes a value for a platform, compares the bytes and reads it back.
template <class T>
void expectStored(T value, PlatformType platform, char const * hex) {
    FilledStream stream;
    EndianConvertor converter(platform);
    ByteStreamAdapter adapter(stream, &converter);
    adapter.Write(value);
    EXPECT_EQ(stream.Content(), FromHex(hex)) << value << " for platform " << platform;
    adapter.SetStreamPos(0);
    T back{};
    adapter.Read(back);
    EXPECT_EQ(back, value);
}

TEST(EndianConvertor, StoresEachTypeInThePlatformsOrder) {
    // 0 and 1 are native, every other value swaps
    expectStored(std::uint32_t{0x01020304}, 0, "04030201");
    expectStored(1.5, 1, "000000000000F83F");
    expectStored(1.5, c_swapped, "3FF8000000000000");
    expectStored(std::uint64_t{0x0102030405060708}, c_swapped, "0102030405060708");
    expectStored(std::uint16_t{0x0102}, 0xFFFFFFFF, "0102");
    expectStored(std::int64_t{-2}, c_swapped, "FFFFFFFFFFFFFFFE");
    expectStored(std::int32_t{-2}, c_swapped, "FFFFFFFE");
    expectStored(std::int16_t{-2}, c_swapped, "FFFE");
    expectStored('a', c_swapped, "61");
    expectStored(true, c_swapped, "01");
    // a signalling NaN when swapped, which a trip through a register would change
    expectStored(std::bit_cast<float>(0x0100A07F), c_swapped, "0100A07F");
}

TEST(EndianConvertor, ComesAndGoesInTheMidstOfAStream) {
    FilledStream stream;
    EndianConvertor convertor(c_swapped);
    ByteStreamAdapter adapter(stream, nullptr);
    for (ByteStreamConverter * const used :
         std::initializer_list<ByteStreamConverter *>{nullptr, &convertor, nullptr}) {
        adapter.SetConverter(used);
        adapter.Write(std::uint16_t{0x0102});
    }
    EXPECT_EQ(stream.Content(), FromHex("0201 0102 0201"));
}

TEST(EndianConvertor, LongArraysAreConvertedWithoutTouchingTheSource) {
    std::vector<std::uint32_t> values(5000);
    std::iota(values.begin(), values.end(), 0x01000000u);
    std::vector<std::uint32_t> const source = values;
    EndianConvertor converter(c_swapped);
    EXPECT_EQ(converter.Write(values.data(), 5000), 0u); // no stream yet
    EXPECT_THROW(converter.WriteString("x"), std::exception);

    FilledStream memory;
    converter.SetStream(memory);
    EXPECT_EQ(converter.Write(values.data(), 5000), 20000u);
    EXPECT_EQ(values, source);
    EXPECT_EQ(memory.Content().substr(4 * 4999), FromHex("01001387"));
    memory->SetPos(0);
    std::fill(values.begin(), values.end(), 0u);
    converter.Read(values.data(), 5000);
    EXPECT_EQ(values, source);

    FailingStream stream(memory, 3007);
    converter.SetStream(&stream);
    EXPECT_EQ(converter.Read(values.data(), 0x40000001), 0u); // 4 bytes in 32-bit arithmetic
    EXPECT_EQ(converter.Write(values.data(), 0x40000001), 0u);
    EXPECT_EQ(converter.Write(values.data(), 750), 3000u);
    EXPECT_EQ(converter.Write(values.data(), 5000), 7u);
}

TEST(EndianConvertor, TextsAreUnitsBehindALengthWord) {
    FilledStream stream;
    EndianConvertor converter(c_swapped);
    converter.SetStream(stream);
    converter.WriteString("ab");
    converter.WriteString(u"c\u20AC");
    EXPECT_EQ(stream.Content(), FromHex("00000002 6162  00000002 0063 20AC"));

    stream->SetPos(6);
    std::u16string wide;
    converter.ReadString(wide);
    EXPECT_EQ(wide, u"c\u20AC");
    stream->SetPos(6);
    char16_t buffer[] = u"..";
    converter.ReadString(buffer, 2);
    EXPECT_EQ(std::u16string(buffer, 2), std::u16string(u"c\0", 2));
    EXPECT_EQ(stream->GetPos(), 14u);

    // two units are there, three are announced
    FilledStream damaged(FromHex("00000003 0063 20AC 00"));
    converter.SetStream(damaged);
    EXPECT_EQ(ReasonOf([&] { converter.ReadString(wide); }),
              "'RamStream' at offset 4: a text of 6 bytes exceeds the 5 bytes left");
    FilledStream hostile(FromHex("FFFFFFFF 0063"));
    converter.SetStream(hostile);
    EXPECT_EQ(ReasonOf([&] { converter.ReadString(buffer, 2); }),
              "'RamStream' at offset 4: a text of 8589934590 bytes exceeds the 2 bytes left");
    EXPECT_EQ(wide, u"c\u20AC");
}

} // namespace
