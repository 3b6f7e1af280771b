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

TEST(ByteStreamProxy, CopyingMovesAndTheLastHolderCloses) {
    FilledStream memory;
    bool firstClosed = false, secondClosed = false;
    auto * const stream = new NotedStream(memory, firstClosed);
    {
        ByteStreamProxy const first(stream);
        ByteStreamProxy second(first); // also out of a const source
        EXPECT_FALSE(first);
        ByteStreamProxy & itself = second;
        second = itself;
        EXPECT_EQ(second.Get(), stream);

        ByteStreamProxy third(new NotedStream(memory, secondClosed));
        third = second;
        EXPECT_TRUE(secondClosed) << "what the target held";
        EXPECT_FALSE(second);
        EXPECT_EQ(third.Get(), stream);
    }
    EXPECT_TRUE(firstClosed);
}

// The C locale has no euro sign, so the C library refuses a format with one.
TEST(ByteStreamText, LinesEndAsTheFormatSays) {
    FilledStream memory;
    FailingStream stream(memory, 29);
    EXPECT_TRUE(BSWriteText(stream, "one", true));
    EXPECT_TRUE(BSWriteText(stream, "100%s", false));
    EXPECT_TRUE(BSPrintf(stream, "\n[%s]\n", "a\nb"));   // text from an argument stays
    EXPECT_TRUE(BSPrintf(stream, "x\r\n\n"));            // a pair stays a pair
    EXPECT_TRUE(BSPrintf(stream, "%s\n%d%%", "y\r", 5)); // the "\r" is the argument's, the "\n" stands alone
    EXPECT_FALSE(BSPrintf(stream, "x%ls", L"\u20AC"));
    EXPECT_FALSE(BSWriteText(stream, nullptr, true)) << "no room";
    EXPECT_FALSE(BSPrintf(stream, "%d", 1));
    EXPECT_EQ(memory.Content(), "one\n100%s\r\n[a\nb]\r\nx\r\n\r\ny\r\r\n5%");
}

TEST(ByteStreamAdapter, ValuesPassStraightToTheStreamWithoutConverter) {
    FilledStream stream;
    ByteStreamAdapter adapter(stream, nullptr);
    adapter.Write(1.5f);
    adapter.Write(std::uint16_t{0x1234});
    std::int64_t const numbers[] = {-2, 1};
    adapter.Write(numbers, 2);
    adapter.Write(true);
    EXPECT_EQ(stream.Content(), FromHex("0000C03F 3412 FEFFFFFFFFFFFFFF 0100000000000000 01"));
    bool flags[8]; // true or false, whatever the byte
    adapter.SetStreamPos(0);
    adapter.Read(flags, 8);
    EXPECT_EQ(std::memcmp(flags, "\0\0\1\1\1\1\1\1", 8), 0);
}

TEST(ByteStreamAdapter, ImpossibleTransfersThrowWithStreamAndOffset) {
    EndianConvertor converter(2);
    for (ByteStreamConverter * each : std::initializer_list<ByteStreamConverter *>{nullptr, &converter}) {
        FilledStream memory("0123456789");
        FailingStream stream(memory, 7);
        ByteStreamAdapter adapter(&stream, each);
        int value = 0;
        adapter.Write(&value, 0);
        adapter.Read(&value, 0);
        adapter.WriteBytes(nullptr, 0);
        adapter.ReadBytes(nullptr, 0);
        // 4 bytes in 32-bit arithmetic
        EXPECT_THROW(adapter.Read(&value, 0x40000001), std::runtime_error);
        EXPECT_THROW(adapter.Write(&value, 0x40000001), std::runtime_error);
        EXPECT_EQ(stream.transfers, 0u) << "neither nothing nor too much reaches the stream";

        adapter.Read(value);
        EXPECT_EQ(ReasonOf([&] { adapter.Read(value); }),
                  "'RamStream' at offset 4: only 3 of 4 bytes could be read");
        EXPECT_EQ(ReasonOf([&] { adapter.Write(value); }),
                  "'RamStream' at offset 7: only 0 of 4 bytes could be written");
    }
    EXPECT_THROW(ByteStreamAdapter(nullptr, nullptr), std::invalid_argument);
}

TEST(ByteStreamAdapter, TextsAreCutToTheBufferAndTheRestIsSkipped) {
    FilledStream stream;
    ByteStreamAdapter adapter(stream, nullptr);
    adapter.WriteString("abcd");
    adapter.WriteString(nullptr);
    EXPECT_EQ(stream.Content(), FromHex("04000000 61626364 00000000"));
    char const * const texts[] = {"....", "", "a", "ab", "abc", "abcd"}; // by size; 0 writes nothing
    for (unsigned int size = 0; size < std::size(texts); ++size) {
        char buffer[] = "....";
        adapter.SetStreamPos(0);
        adapter.ReadString(buffer, size);
        EXPECT_STREQ(buffer, texts[size]);
        EXPECT_EQ(adapter.GetStreamPos(), 8u);
    }
    std::string text = "old";
    adapter.ReadString(text);
    EXPECT_EQ(text, "");
}

} // namespace
