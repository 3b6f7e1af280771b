#include "Cross/engine/filesystem/Chunky.h"
#include "tests/support/FailingStream.h"
#include "tests/support/ReasonOf.h"
#include "tests/support/StreamBytes.h"

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <initializer_list>
#include <memory>

namespace {

constexpr std::uint32_t c_menu = FourCC("MENU");
constexpr std::uint32_t c_item = FourCC("ITEM");
constexpr unsigned int c_endless = 0xFFFFFFFF;
constexpr char const * c_passes = "no exception";

// The example of docs/formats.md.
std::string exampleBytes() {
    return FromHex("58 43 48 4B 0D 0A 1A 0A  01 00 00 00  01 00 00 00"
                   "01 00 00 00  55 4E 45 4D  01 00 00 00  1E 00 00 00  03 00 00 00  74 6F 70"
                   "02 00 00 00  4D 45 54 49  02 00 00 00  0A 00 00 00  00 00 00 00"
                   "07 00 00 00  02 00 00 00  47 6F");
}

void writeExample(ByteStream & stream, PlatformType platform) {
    Chunky chunky(&stream, platform);
    chunky.WriteFolderChunkName(c_menu, 1, "top");
    chunky.WriteDataChunk(c_item, 2, -1);
    chunky.Write(std::uint32_t{7});
    chunky.WriteString("Go");
    chunky.PopChunk();
    chunky.PopChunk();
}

void readExample(ByteStream & stream, PlatformType platform) {
    Chunky chunky(&stream, platform);
    chunky.ReadFolderChunk(c_menu, 1);
    chunky.ReadDataChunk(c_item, 2);
    std::uint32_t number = 0;
    std::string text;
    chunky.Read(number);
    chunky.ReadString(text);
    chunky.PopChunk();
    chunky.PopChunk();
    EXPECT_EQ(number, 7u);
    EXPECT_EQ(text, "Go");
}

// Puts a native word into bytes.
void patch(std::string & bytes, unsigned int offset, std::uint32_t word) {
    std::memcpy(&bytes[offset], &word, sizeof word);
}

TEST(ChunkyFormat, ExactBytesForEachPlatform) {
    std::string const swapped =
        FromHex("58 43 48 4B 0D 0A 1A 0A  01 00 00 00  02 00 00 00"
                "00 00 00 01  4D 45 4E 55  00 00 00 01  00 00 00 1E  00 00 00 03  74 6F 70"
                "00 00 00 02  49 54 45 4D  00 00 00 02  00 00 00 0A  00 00 00 00"
                "00 00 00 07  00 00 00 02  47 6F");
    for (PlatformType const platform : {0u, 1u, 2u}) { // 0 is the native one
        FilledStream stream;
        writeExample(stream, platform);
        EXPECT_EQ(stream.Content(), platform == 2 ? swapped : exampleBytes());
        for (PlatformType const reader : {0u, platform}) {
            stream->SetPos(0);
            readExample(stream, reader);
        }
    }
    FilledStream stream(swapped);
    EXPECT_EQ(ReasonOf([&] { readExample(stream, 1); }),
              "'RamStream' at offset 0: the chunk file was written for platform 2, not for platform 1");
}

TEST(ChunkyFormat, ForeignOrDamagedFilesAreNamedAsWhatTheyAre) {
    auto const replaced = [](std::string from, std::string const & to) {
        std::string bytes = exampleBytes();
        for (std::size_t at = 0; (at = bytes.find(from, at)) != std::string::npos; at += to.size())
            bytes.replace(at, from.size(), to);
        return bytes;
    };
    auto const patched = [](unsigned int offset, std::uint32_t word) {
        std::string bytes = exampleBytes();
        patch(bytes, offset, word);
        return bytes;
    };

    std::string const mangled =
        "'RamStream' at offset 0: the chunk file was damaged by a conversion of its line ends";
    std::pair<std::string, std::string> const cases[] = {
        // carried as text, to CR LF lines and to LF lines
        {replaced("\n", "\r\n"), mangled},
        {replaced("\r\n", "\n"), mangled},
        {replaced("XCHK", "XCHL"), "'RamStream' at offset 0: this is no chunk file"},
        {patched(8, 2), "'RamStream' at offset 0: chunk file format 2 is not known, only 1 is"},
        {exampleBytes().substr(0, 15),
         "'RamStream' at offset 0: only 15 of the 16 bytes of a chunk file's header are there"},
        // the header of a folder, and a folder that ends inside the header of its chunk
        {patched(16, 3), "chunk 'MENU' at offset 16 of 'RamStream': kind 3 is neither folder nor data"},
        {patched(28, 19), "'RamStream' at offset 39: the 19 bytes left are too few for a chunk"},
        // sizes one above what is left, and such as would wrap
        {patched(28, 31), "chunk 'MENU' at offset 16 of 'RamStream': size 31 exceeds the 30 bytes left"},
        {patched(32, 34),
         "chunk 'MENU' at offset 16 of 'RamStream': name length 34 exceeds the 33 bytes left"},
        {patched(51, 11), "chunk 'ITEM' at offset 39 of 'RamStream': size 11 exceeds the 10 bytes left"},
        {patched(28, 0xFFFFFFFF),
         "chunk 'MENU' at offset 16 of 'RamStream': size 4294967295 exceeds the 30 bytes left"},
        {patched(55, 0xFFFFFFFF),
         "chunk 'ITEM' at offset 39 of 'RamStream': name length 4294967295 exceeds the 10 bytes left"},
    };
    for (auto const & [bytes, reason] : cases) {
        FilledStream stream(bytes);
        EXPECT_EQ(ReasonOf([&] { readExample(stream, 0); }), reason);
    }
}

// Each step is refused for its reason and leaves the position, or passes.
struct Step {
    std::function<void(Chunky &)> act;
    char const * reason;
};

void expectReasons(Chunky & chunky, std::initializer_list<Step> steps) {
    for (Step const & step : steps) {
        unsigned int const before = chunky.GetStreamPos();
        EXPECT_EQ(ReasonOf([&] { step.act(chunky); }), step.reason);
        EXPECT_TRUE(chunky.GetStreamPos() == before || step.reason == c_passes) << step.reason;
    }
}

void readWord(Chunky & chunky) {
    std::uint32_t word = 0;
    chunky.Read(word);
}

void writeWord(Chunky & chunky) { chunky.Write(std::uint32_t{7}); }

void readItem(Chunky & chunky) { chunky.ReadDataChunk(c_item, 2); }

void writeItem(Chunky & chunky) { chunky.WriteDataChunk(c_item, 1, -1); }

void peek(Chunky & chunky) {
    Chunky::ChunkInfo info;
    chunky.PeekChunk(info);
}

void pop(Chunky & chunky) { chunky.PopChunk(); }

std::function<void(Chunky &)> enterFolder(std::uint32_t id, std::uint32_t version) {
    return [id, version](Chunky & chunky) { chunky.ReadFolderChunk(id, version); };
}

std::function<void(Chunky &)> moveTo(unsigned int position) {
    return [position](Chunky & chunky) { chunky.SetStreamPos(position); };
}

TEST(ChunkyReader, PopSkipsWhatWasNotReadAndAFolderCanBeReadAgain) {
    FilledStream stream("in front" + exampleBytes() + exampleBytes().substr(16)); // two trees
    stream->SetPos(8);
    Chunky chunky(stream, 0);
    Chunky::ChunkInfo info;
    for (int round = 0; round < 2; ++round) {
        ASSERT_TRUE(chunky.PeekChunk(info));
        EXPECT_TRUE(info.kind == Chunky::CK_FOLDER && info.id == c_menu && info.version == 1 &&
                    info.name == "top" && info.bodySize == 30);
        EXPECT_EQ(info.headerOffset, 24u);
        EXPECT_EQ(chunky.ReadFolderChunk(c_menu, 9).GetVersion(), 1u);
        chunky.PopChunk(); // its chunk was never entered
        ASSERT_TRUE(chunky.PeekChunk(info));
        EXPECT_TRUE(info.headerOffset == 77 && info.id == c_menu);
        chunky.SetStreamPos(24);
    }
    chunky.ReadFolderChunk(c_menu, 1);
    chunky.ReadDataChunk(c_item, 2);
    readWord(chunky); // the text was never read
    chunky.PopChunk();
    EXPECT_FALSE(chunky.PeekChunk(info));
}

// A name of a data chunk is for people: a reader that knows the chunk by its kind takes it with any.
TEST(ChunkyReader, DataChunksMayHaveNames) {
    FilledStream stream;
    {
        Chunky chunky(stream, 2);
        chunky.WriteDataChunkName(c_item, 3, "first", -1);
        chunky.Write(std::uint32_t{7});
        chunky.PopChunk();
    }
    stream->SetPos(0);
    Chunky chunky(stream, 0);
    Chunky::ChunkInfo info;
    ASSERT_TRUE(chunky.PeekChunk(info));
    EXPECT_TRUE(info.kind == Chunky::CK_DATA && info.name == "first" && info.bodySize == 4);
    EXPECT_EQ(chunky.ReadDataChunk(c_item, 3).GetVersion(), 3u);
    std::uint32_t number = 0;
    chunky.Read(number);
    EXPECT_EQ(number, 7u);
}

TEST(ChunkyReader, WhatDoesNotFitIsRefusedAndMovesNothing) {
    std::string bytes = exampleBytes() + "behind the chunk";
    patch(bytes, 51, 7); // the data chunk ends inside its second word
    patch(bytes, 28, 27);
    FilledStream stream(bytes);
    Chunky chunky(stream, 0);
    expectReasons(
        chunky,
        {
            {readWord, "'RamStream' at offset 0: no data chunk is open to read or write bytes in"},
            {peek, c_passes}, // reads the header of the file
            {enterFolder(c_item, 1),
             "chunk 'MENU' at offset 16 of 'RamStream': it is a folder, where folder 'ITEM' is expected"},
            {[](Chunky & each) { each.ReadDataChunk(c_menu, 1); },
             "chunk 'MENU' at offset 16 of 'RamStream': it is a folder, where data chunk 'MENU' is expected"},
            {enterFolder(c_menu, 0),
             "chunk 'MENU' at offset 16 of 'RamStream': version 1 is newer than 0, the newest known"},
            {enterFolder(c_menu, 7), c_passes}, // an older one is entered
            {readItem, c_passes},
            {readItem, "chunk 'ITEM' at offset 39 of 'RamStream': a data chunk holds no chunks"},
            {peek, "chunk 'ITEM' at offset 39 of 'RamStream': a data chunk holds no chunks"},
            {readWord, c_passes},
            {[](Chunky & each) {
                 std::string text;
                 each.ReadString(text);
             },
             "chunk 'ITEM' at offset 39 of 'RamStream': 4 bytes at offset 63 exceed the 3 bytes left"},
            {readWord,
             "chunk 'ITEM' at offset 39 of 'RamStream': 4 bytes at offset 63 exceed the 3 bytes left"},
            {writeWord,
             "chunk 'ITEM' at offset 39 of 'RamStream': the chunk is being read and cannot be written"},
            {moveTo(58), "chunk 'ITEM' at offset 39 of 'RamStream': position 58 is not from 59 to 66"},
            {moveTo(67), "chunk 'ITEM' at offset 39 of 'RamStream': position 67 is not from 59 to 66"},
            {moveTo(66), c_passes},
            {writeItem, "'RamStream' at offset 66: the chunk file is being read and cannot be written"},
            {pop, c_passes},
            {readItem, "'RamStream' at offset 66: data chunk 'ITEM' is expected, but nothing is left"},
            {pop, c_passes},
            {pop, "'RamStream' at offset 66: there is no open chunk to end"},
        });
}

TEST(ChunkyReader, AFileCutAtAnyByteThrows) {
    std::string const whole = exampleBytes();
    // the stream promises more than it gives; entering skips the 3 bytes of the name
    for (unsigned int size = 0; size < whole.size() - 3; ++size) {
        FilledStream memory(whole);
        FailingStream stream(memory, size);
        EXPECT_THROW(readExample(stream, 0), std::exception) << size;
    }
}

TEST(ChunkyWriter, GoingBackOverwritesInsideTheOpenChunk) {
    FilledStream memory;
    FailingStream stream(memory, c_endless);
    Chunky chunky(&stream, 1);
    writeItem(chunky);
    unsigned int const start = chunky.GetStreamPos();
    chunky.WriteBytes("abcdef", 6);
    expectReasons(
        chunky,
        {
            {moveTo(start - 1), "chunk 'ITEM' at offset 16 of 'RamStream': position 35 is not from 36 to 42"},
            {moveTo(start + 7), "chunk 'ITEM' at offset 16 of 'RamStream': position 43 is not from 36 to 42"},
            {readWord,
             "chunk 'ITEM' at offset 16 of 'RamStream': the chunk is being written and cannot be read"},
            {readItem, "'RamStream' at offset 42: the chunk file is being written and cannot be read"},
            {writeItem, "chunk 'ITEM' at offset 16 of 'RamStream': a data chunk holds no chunks"},
            {moveTo(start + 1), c_passes},
            {[](Chunky & each) { each.WriteBytes("#", 1); }, c_passes},
            {pop, c_passes}, // ends behind everything that was written, wherever the position is
            {moveTo(start), "'RamStream' at offset 42: position 36 is not from 42 to 42"},
        });
    EXPECT_EQ(memory.Content().substr(28, 4), FromHex("06000000"));
    EXPECT_EQ(memory.Content().substr(start), "a#cdef");
    EXPECT_FALSE(stream.IsDiscarded());
}

TEST(ChunkyWriter, AChunkThatIsLeftOpenGivesTheFileUp) {
    FilledStream memory;
    ByteStreamProxy proxy(new FailingStream(memory, c_endless));
    auto const & stream = *static_cast<FailingStream *>(proxy.Get());
    Chunky chunky(proxy, 1);
    EXPECT_FALSE(proxy) << "the chunk file owns the stream";
    EXPECT_THROW(Chunky(proxy, 1), std::exception);

    FailingStream left(memory, c_endless);
    writeItem(*std::make_unique<Chunky>(&left, 1));
    EXPECT_TRUE(left.IsDiscarded());
    EXPECT_FALSE(stream.IsDiscarded());
}

// A stream whose first byte stands at a high position.
class HighStream : public FailingStream {
public:
    HighStream(ByteStream & inner, unsigned int first) : FailingStream(inner, c_endless), first(first) {}

    void SetPos(unsigned int position) override { FailingStream::SetPos(position - first); }

    unsigned int GetPos() override { return first + FailingStream::GetPos(); }

private:
    unsigned int first;
};

TEST(ChunkyWriter, WhatReachesBeyondFourGigabytesGivesTheFileUp) {
    std::pair<unsigned int, char const *> const cases[] = {
        // room for the headers of the file (16 bytes) and the chunk (20), and for bytes
        {35, "chunk 'ITEM' at offset 4294967276 of 'RamStream': the chunk reaches beyond 4 GiB"},
        {39,
         "chunk 'ITEM' at offset 4294967272 of 'RamStream': 4 bytes at offset 4294967292 reach beyond 4 GiB"},
    };
    for (auto const & [room, reason] : cases) {
        FilledStream memory;
        HighStream stream(memory, c_endless - room);
        EXPECT_EQ(ReasonOf([&] {
                      Chunky chunky(&stream, 1);
                      writeItem(chunky);
                      writeWord(chunky);
                  }),
                  reason);
    }
}

// Whatever the byte at which the stream fails: an exception, no further writes, and the stream is discarded.
TEST(ChunkyWriter, AFailedWriteGivesTheFileUp) {
    unsigned int const whole = static_cast<unsigned int>(exampleBytes().size()) + 8; // and two patched sizes
    for (unsigned int budget = 0; budget <= whole; ++budget) {
        FilledStream memory;
        FailingStream stream(memory, budget);
        std::string const reason = ReasonOf([&] { writeExample(stream, 1); });
        EXPECT_EQ(reason == c_passes, budget == whole) << budget << ": " << reason;
        EXPECT_EQ(stream.IsDiscarded(), budget < whole) << budget;
    }
    FilledStream memory;
    FailingStream stream(memory, 38);
    Chunky chunky(&stream, 1);
    writeItem(chunky);
    EXPECT_THROW(writeWord(chunky), std::exception);
    for (auto const & act : {writeWord, pop})
        EXPECT_EQ(ReasonOf([&] { act(chunky); }),
                  "'RamStream' at offset 38: an earlier write failed, the chunk file is given up");
}

} // namespace
