#include "Cross/engine/filesystem/ByteStreamAdapter.h"
#include "Cross/engine/filesystem/EndianConvertor.h"
#include "tests/support/FailingStream.h"
#include "tests/support/ReasonOf.h"
#include "tests/support/SlotOf.h"
#include "tests/support/StreamBytes.h"

#include <gtest/gtest.h>

#include <cstring>
#include <stdexcept>
#include <string>

namespace {

constexpr unsigned int c_endless = 0xFFFFFFFF;

// Notes in `closed` that it was destroyed.
class NotedStream : public FailingStream {
public:
    NotedStream(ByteStream & inner, bool & closed) : FailingStream(inner, c_endless), closed(closed) {}

    ~NotedStream() override { closed = true; }

private:
    bool & closed;
};

#if defined(__x86_64__)
TEST(ByteStream, VirtualFunctionsKeepTheirSlots) {
    EXPECT_TRUE(FollowTheDestructor({SlotOf(&ByteStream::IsOpen), SlotOf(&ByteStream::Read),
                                     SlotOf(&ByteStream::Write), SlotOf(&ByteStream::GetLen),
                                     SlotOf(&ByteStream::GetMode), SlotOf(&ByteStream::Flush),
                                     SlotOf(&ByteStream::SetPos), SlotOf(&ByteStream::GetPos)}));
}
#endif

class ByteStreamProxyTest : public testing::Test {
protected:
    FilledStream memory;
    bool firstClosed = false;
    bool secondClosed = false;
    ByteStream * firstStream = new NotedStream(memory, firstClosed);
    ByteStreamProxy first{firstStream};
};

TEST_F(ByteStreamProxyTest, CopyingMovesAlsoOutOfAConstSource) {
    ByteStreamProxy const second(first);
    EXPECT_FALSE(first);
    EXPECT_EQ(second.Get(), firstStream);
    ByteStreamProxy third(second);
    EXPECT_FALSE(second);
    EXPECT_EQ(third.Get(), firstStream);
    EXPECT_FALSE(firstClosed);
}

TEST_F(ByteStreamProxyTest, AssigningClosesWhatTheTargetHeld) {
    ByteStreamProxy second(new NotedStream(memory, secondClosed));
    second = first;
    EXPECT_TRUE(secondClosed);
    EXPECT_FALSE(firstClosed);
    EXPECT_EQ(second.Get(), firstStream);
    EXPECT_FALSE(first);
    second = ByteStreamProxy();
    EXPECT_TRUE(firstClosed);
    EXPECT_FALSE(second);
}

TEST_F(ByteStreamProxyTest, AssigningToItselfKeepsTheStream) {
    ByteStreamProxy & itself = first;
    first = itself;
    EXPECT_EQ(first.Get(), firstStream);
    EXPECT_FALSE(firstClosed);
}

TEST_F(ByteStreamProxyTest, DestroyingCloses) {
    { ByteStreamProxy const taken(first); }
    EXPECT_TRUE(firstClosed);
}

TEST(ByteStreamText, WriteTextAddsOneLineFeed) {
    FilledStream stream;
    EXPECT_TRUE(BSWriteText(stream, "one", true));
    EXPECT_TRUE(BSWriteText(stream, "two\n100%s", false));
    EXPECT_TRUE(BSWriteText(stream, nullptr, true));
    EXPECT_TRUE(BSWriteText(stream, "", false));
    EXPECT_EQ(stream.Content(), "one\ntwo\n100%s\n");
}

TEST(ByteStreamText, PrintfEndsTheLinesOfItsFormatOnly) {
    FilledStream stream;
    EXPECT_TRUE(BSPrintf(stream, "\n[%s]\n", "a\nb"));   // text from an argument stays
    EXPECT_TRUE(BSPrintf(stream, "x\r\n\n"));            // a pair stays a pair
    EXPECT_TRUE(BSPrintf(stream, "%s\n%d%%", "y\r", 5)); // the "\r" is the argument's, the "\n" stands alone
    EXPECT_EQ(stream.Content(), "\r\n[a\nb]\r\nx\r\n\r\ny\r\r\n5%");
}

// The C locale has no euro sign, so the C library refuses the format with one.
TEST(ByteStreamText, WhatIsNotWrittenGivesFalse) {
    FilledStream memory;
    FailingStream stream(memory, 3);
    EXPECT_FALSE(BSPrintf(stream, "x%ls", L"\u20AC"));
    EXPECT_TRUE(BSWriteText(stream, "abc", false));
    EXPECT_FALSE(BSWriteText(stream, "", true));
    EXPECT_FALSE(BSPrintf(stream, "%d", 1));
}

template <class T>
constexpr bool c_storable = requires(ByteStreamAdapter & adapter, T value) {
    adapter.Write(value);
};

enum SomeEnum { SE_ONE };

static_assert(c_storable<double> && c_storable<std::uint64_t> && c_storable<bool> && c_storable<char>);
static_assert(!c_storable<void *> && !c_storable<char const *> && !c_storable<SomeEnum>);

TEST(ByteStreamAdapter, ValuesPassStraightToTheStreamWithoutConverter) {
    FilledStream stream;
    ByteStreamAdapter adapter(stream, nullptr);
    adapter.Write(1.5f);
    adapter.Write(std::uint16_t{0x1234});
    std::int64_t const numbers[] = {-2, 1};
    adapter.Write(numbers, 2);
    adapter.Write(true);
    EXPECT_EQ(stream.Content(), FromHex("0000C03F 3412 FEFFFFFFFFFFFFFF 0100000000000000 01"));

    adapter.SetStreamPos(6);
    std::int64_t number = 0;
    adapter.Read(number);
    EXPECT_EQ(number, -2);
    EXPECT_EQ(adapter.GetStreamPos(), 14u);
}

TEST(ByteStreamAdapter, NothingEmptyReachesTheStream) {
    FilledStream memory;
    FailingStream stream(memory, 0);
    ByteStreamAdapter adapter(&stream, nullptr);
    EndianConvertor converter(c_nativePlatform);
    ByteStreamConverter * const converters[] = {nullptr, &converter};
    for (ByteStreamConverter * each : converters) {
        adapter.SetConverter(each);
        int value = 0;
        bool flag = false;
        adapter.Write(&value, 0);
        adapter.Read(&value, 0);
        adapter.Read(&flag, 0);
        adapter.WriteBytes(nullptr, 0);
        adapter.ReadBytes(nullptr, 0);
    }
    EXPECT_EQ(stream.transfers, 0u);
}

TEST(ByteStreamAdapter, ShortTransfersThrowWithStreamAndOffset) {
    EndianConvertor converter(2);
    ByteStreamConverter * const converters[] = {nullptr, &converter};
    for (ByteStreamConverter * each : converters) {
        FilledStream memory("0123456789");
        FailingStream stream(memory, 7);
        ByteStreamAdapter adapter(&stream, each);
        int value = 0;
        adapter.Read(value);
        EXPECT_EQ(ReasonOf([&] { adapter.Read(value); }),
                  "'RamStream' at offset 4: only 3 of 4 bytes could be read");
        EXPECT_EQ(ReasonOf([&] { adapter.Write(value); }),
                  "'RamStream' at offset 7: only 0 of 4 bytes could be written");
    }
    EXPECT_THROW(ByteStreamAdapter(nullptr, nullptr), std::invalid_argument);
}

// 0x40000001 values of 4 bytes are 4 bytes in 32-bit arithmetic.
TEST(ByteStreamAdapter, MoreThanAStreamCanHoldIsRefusedBeforeAnythingMoves) {
    FilledStream memory("0123456789");
    FailingStream stream(memory, c_endless);
    ByteStreamAdapter adapter(&stream, nullptr);
    int value = 0;
    EXPECT_THROW(adapter.Read(&value, 0x40000001), std::runtime_error);
    EXPECT_THROW(adapter.Write(&value, 0x40000001), std::runtime_error);
    EXPECT_EQ(stream.transfers, 0u);
}

TEST(ByteStreamAdapter, BoolsAreTrueOrFalseWhateverTheByte) {
    FilledStream stream(FromHex("00 01 02 FF"));
    ByteStreamAdapter adapter(stream, nullptr);
    bool flags[4];
    adapter.Read(flags, 4);
    unsigned char bytes[4];
    std::memcpy(bytes, flags, 4);
    EXPECT_EQ(bytes[0], 0);
    EXPECT_EQ(bytes[1], 1);
    EXPECT_EQ(bytes[2], 1);
    EXPECT_EQ(bytes[3], 1);
}

TEST(ByteStreamAdapter, TextsAreLengthAndBytes) {
    FilledStream stream;
    ByteStreamAdapter adapter(stream, nullptr);
    adapter.WriteString("abc");
    adapter.WriteString(nullptr);
    EXPECT_EQ(stream.Content(), FromHex("03000000 616263 00000000"));

    adapter.SetStreamPos(0);
    std::string text = "old";
    adapter.ReadString(text);
    EXPECT_EQ(text, "abc");
    adapter.ReadString(text);
    EXPECT_EQ(text, "");
}

TEST(ByteStreamAdapter, TextsAreCutToTheBufferAndTheRestIsSkipped) {
    struct Case {
        unsigned int size;
        char const * text;
    };

    Case const cases[] = {
        {5, "abcd"}, // just fits
        {4, "abc"},  // cut
        {1, ""},     // the terminator only
        {0, "...."}, // nothing is written
    };
    for (Case const & row : cases) {
        FilledStream stream(FromHex("04000000 61626364 07000000"));
        ByteStreamAdapter adapter(stream, nullptr);
        char buffer[] = "....";
        adapter.ReadString(buffer, row.size);
        EXPECT_STREQ(buffer, row.text);
        std::uint32_t next = 0;
        adapter.Read(next);
        EXPECT_EQ(next, 7u) << row.size;
    }
}

TEST(ByteStreamAdapter, ATextLongerThanTheStreamIsRefused) {
    for (char const * bytes : {"05000000 61626364", "FFFFFFFF 61626364"}) {
        FilledStream stream(FromHex(bytes));
        ByteStreamAdapter adapter(stream, nullptr);
        std::string text = "old";
        char buffer[] = "....";
        EXPECT_THROW(adapter.ReadString(text), std::runtime_error);
        adapter.SetStreamPos(0);
        EXPECT_THROW(adapter.ReadString(buffer, sizeof buffer), std::runtime_error);
        EXPECT_EQ(text, "old");
        EXPECT_STREQ(buffer, "....");
    }
}

} // namespace
