#include "Cross/engine/filesystem/Chunky.h"
#include "Cross/engine/filesystem/FilePathHDRaw.h"
#include "tests/support/FailingStream.h"
#include "tests/support/ReasonOf.h"
#include "tests/support/StreamBytes.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cstring>
#include <functional>

namespace {

constexpr std::uint32_t c_menu = FourCC("MENU");
constexpr std::uint32_t c_item = FourCC("ITEM");
constexpr unsigned int c_endless = 0xFFFFFFFF;

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
    std::pair<PlatformType, std::string> const cases[] = {
        {0, exampleBytes()}, // the native one
        {1, exampleBytes()},
        {2, swapped},
    };
    for (auto const & [platform, bytes] : cases) {
        SCOPED_TRACE(platform);
        FilledStream stream;
        writeExample(stream, platform);
        EXPECT_EQ(stream.Content(), bytes);
        for (PlatformType const reader : {PlatformType{0}, platform}) {
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

    struct Case {
        std::string bytes;
        char const * reason;
    };

    std::string const mangled =
        "'RamStream' at offset 0: the chunk file was damaged by a conversion of its line ends";
    Case const cases[] = {
        // carried as text, to CR LF lines and to LF lines
        {replaced("\n", "\r\n"), mangled.c_str()},
        {replaced("\r\n", "\n"), mangled.c_str()},
        {replaced("XCHK", "XCHL"), "'RamStream' at offset 0: this is no chunk file"},
        {patched(8, 2), "'RamStream' at offset 0: chunk file format 2 is not known, only 1 is"},
        {exampleBytes().substr(0, 15),
         "'RamStream' at offset 0: only 15 of the 16 bytes of a chunk file's header are there"},
        // the header of a folder, and a folder that ends inside the header of its chunk
        {patched(16, 3), "chunk 'MENU' at offset 16 of 'RamStream': kind 3 is neither folder nor data"},
        {patched(28, 19), "'RamStream' at offset 39: the 19 bytes left are too few for a chunk"},
        {patched(28, 4000), "chunk 'MENU' at offset 16 of 'RamStream': size 4000 exceeds the 30 bytes left"},
    };
    for (Case const & row : cases) {
        FilledStream stream(row.bytes);
        EXPECT_EQ(ReasonOf([&] { readExample(stream, 0); }), row.reason);
    }
}

// A folder and a chunk in it, for each of the numbers; then what the numbers say is read or skipped.
TEST(ChunkyReader, ATreeReadsBackAndPopSkipsWhatWasNotRead) {
    FilledStream stream("in front");
    stream->SetPos(8);
    {
        Chunky chunky(stream, 2);
        for (std::uint32_t i = 0; i < 4; ++i) {
            chunky.WriteFolderChunkName(c_menu, i, i == 1 ? nullptr : "name");
            chunky.WriteDataChunkName(c_item, 10 + i, "item", 4);
            chunky.Write(i);
            chunky.Write(i);
            chunky.PopChunk();
            chunky.PopChunk();
        }
    }
    stream->SetPos(8);
    Chunky chunky(stream, 0);
    Chunky::ChunkInfo info;
    for (std::uint32_t i = 0; i < 4; ++i) {
        SCOPED_TRACE(i);
        ASSERT_TRUE(chunky.PeekChunk(info));
        EXPECT_EQ(info.kind, Chunky::CK_FOLDER);
        EXPECT_EQ(info.name, i == 1 ? "" : "name");
        unsigned int const header = info.headerOffset;
        EXPECT_EQ(header, chunky.GetStreamPos());
        EXPECT_EQ(chunky.ReadFolderChunk(c_menu, 9).GetVersion(), i);
        EXPECT_EQ(chunky.GetStreamPos(), info.bodyOffset);
        if (i == 2) { // go back and read it again
            chunky.PopChunk();
            chunky.SetStreamPos(header);
            chunky.ReadFolderChunk(c_menu, 9);
        }
        if (i > 0) { // the chunk of the first folder is never entered
            ASSERT_TRUE(chunky.PeekChunk(info));
            EXPECT_EQ(info.kind, Chunky::CK_DATA);
            EXPECT_EQ(info.id, c_item);
            EXPECT_EQ(info.version, 10 + i);
            EXPECT_EQ(info.name, "item");
            EXPECT_EQ(info.bodySize, 8u);
            chunky.ReadDataChunk(c_item, 10 + i);
            std::uint32_t value = 0;
            chunky.Read(value); // the second value is never read
            EXPECT_EQ(value, i);
            chunky.PopChunk();
            EXPECT_FALSE(chunky.PeekChunk(info));
        }
        chunky.PopChunk();
    }
    EXPECT_FALSE(chunky.PeekChunk(info));
}

TEST(ChunkyReader, ARefusedChunkLeavesThePosition) {
    struct Case {
        std::function<void(Chunky &)> enter;
        char const * reason;
    };

    Case const cases[] = {
        {[](Chunky & chunky) { chunky.ReadFolderChunk(c_item, 1); },
         "chunk 'MENU' at offset 16 of 'RamStream': it is a folder, where folder 'ITEM' is expected"},
        {[](Chunky & chunky) { chunky.ReadDataChunk(c_menu, 1); },
         "chunk 'MENU' at offset 16 of 'RamStream': it is a folder, where data chunk 'MENU' is expected"},
        {[](Chunky & chunky) { chunky.ReadFolderChunk(c_menu, 0); },
         "chunk 'MENU' at offset 16 of 'RamStream': version 1 is newer than 0, the newest known"},
    };
    FilledStream stream(exampleBytes());
    Chunky chunky(stream, 0);
    for (Case const & row : cases) {
        EXPECT_EQ(ReasonOf([&] { row.enter(chunky); }), row.reason);
        EXPECT_EQ(chunky.GetStreamPos(), 16u);
        EXPECT_EQ(stream->GetPos(), 16u);
    }
    chunky.ReadFolderChunk(c_menu, 7); // an older one is entered
    chunky.ReadDataChunk(c_item, 2);
    chunky.PopChunk();
    EXPECT_EQ(ReasonOf([&] { chunky.ReadDataChunk(c_item, 2); }),
              "'RamStream' at offset 69: data chunk 'ITEM' is expected, but nothing is left");
    chunky.PopChunk();
    EXPECT_EQ(ReasonOf([&] { chunky.PopChunk(); }),
              "'RamStream' at offset 69: there is no open chunk to end");
}

TEST(ChunkyReader, ReadsAndMovesAreBoundedByTheOpenChunk) {
    std::string bytes = exampleBytes();
    bytes += "behind the chunk";
    patch(bytes, 51, 7); // the data chunk ends inside its second word
    patch(bytes, 28, 27);
    FilledStream stream(bytes);
    Chunky chunky(stream, 0);
    std::uint32_t word = 0;
    EXPECT_EQ(ReasonOf([&] { chunky.Read(word); }),
              "'RamStream' at offset 0: no data chunk is open to read or write bytes in");
    chunky.ReadFolderChunk(c_menu, 1);
    EXPECT_THROW(chunky.Read(word), std::exception); // a folder holds chunks only
    chunky.ReadDataChunk(c_item, 2);
    std::string const noFolder = "chunk 'ITEM' at offset 39 of 'RamStream': a data chunk holds no chunks";
    EXPECT_EQ(ReasonOf([&] { chunky.ReadDataChunk(c_item, 2); }), noFolder);
    Chunky::ChunkInfo info;
    EXPECT_EQ(ReasonOf([&] { chunky.PeekChunk(info); }), noFolder);
    std::string text;
    EXPECT_EQ(ReasonOf([&] { chunky.ReadString(text); }),
              "'RamStream' at offset 63: a text of 7 bytes exceeds the 3 bytes left");
    EXPECT_EQ(ReasonOf([&] { chunky.Read(word); }),
              "chunk 'ITEM' at offset 39 of 'RamStream': 4 bytes at offset 63 exceed the 3 bytes left");
    EXPECT_EQ(chunky.GetStreamPos(), 63u); // nothing was read
    EXPECT_EQ(ReasonOf([&] { chunky.Write(word); }),
              "chunk 'ITEM' at offset 39 of 'RamStream': the chunk is being read and cannot be written");

    chunky.SetStreamPos(66);
    chunky.SetStreamPos(59);
    EXPECT_EQ(ReasonOf([&] { chunky.SetStreamPos(58); }),
              "chunk 'ITEM' at offset 39 of 'RamStream': position 58 is not from 59 to 66");
    EXPECT_THROW(chunky.SetStreamPos(67), std::exception);
    EXPECT_EQ(ReasonOf([&] { chunky.WriteDataChunk(c_item, 1, -1); }),
              "'RamStream' at offset 59: the chunk file is being read and cannot be written");
}

TEST(ChunkyReader, AFileCutAtAnyByteThrows) {
    std::string const whole = exampleBytes();
    for (std::size_t size = 0; size < whole.size(); ++size) {
        FilledStream stream(whole.substr(0, size));
        EXPECT_THROW(readExample(stream, 0), std::exception) << size;
    }
    // the same when the stream promises more than it gives; entering skips the 3 bytes of the name
    for (unsigned int size = 0; size < whole.size() - 3; ++size) {
        FilledStream memory(whole);
        FailingStream stream(memory, size);
        EXPECT_THROW(readExample(stream, 0), std::exception) << size;
    }
    // a name that breaks off tells nothing of its chunk
    FilledStream memory(whole);
    FailingStream stream(memory, 38);
    Chunky chunky(&stream, 0);
    Chunky::ChunkInfo info;
    EXPECT_THROW(chunky.PeekChunk(info), std::exception);
    EXPECT_EQ(info.id, 0u);
    EXPECT_EQ(info.name, "");
}

TEST(ChunkyReader, SizesAreCheckedAgainstWhatIsLeft) {
    struct Field {
        unsigned int offset; // of the word
        unsigned int header; // of its chunk
        unsigned int depth;  // folders to enter first
        std::uint32_t rest;  // the largest value that fits
        char const * name;
    };

    Field const fields[] = {
        {28, 16, 0, 30, "size"},
        {32, 16, 0, 3, "name length"}, // in front of a body of 30
        {51, 39, 1, 10, "size"},
        {55, 39, 1, 0, "name length"},
    };
    for (Field const & field : fields) {
        std::uint32_t const values[] = {0,          1,         field.rest - 1, field.rest, field.rest + 1,
                                        0x80000000, 0xFFFFFFFF};
        for (std::uint32_t const value : values) {
            std::string bytes = exampleBytes();
            patch(bytes, field.offset, value);
            FilledStream stream(bytes);
            Chunky chunky(stream, 0);
            if (field.depth > 0)
                chunky.ReadFolderChunk(c_menu, 1);
            Chunky::ChunkInfo info;
            bool const fits = value <= field.rest;
            std::string const reason = ReasonOf([&] { chunky.PeekChunk(info); });
            EXPECT_EQ(reason == "no exception", fits) << field.name << " " << value << ": " << reason;
            EXPECT_EQ(chunky.GetStreamPos(), field.header);
            EXPECT_EQ(stream->GetPos(), field.header);
            auto const enter = [&] {
                field.depth > 0 ? chunky.ReadDataChunk(c_item, 2) : chunky.ReadFolderChunk(c_menu, 1);
            };
            EXPECT_EQ(ReasonOf(enter), reason); // which looks at the name no further than to skip it
            EXPECT_LE(info.bodyOffset + info.bodySize, 69u);
        }
    }
}

TEST(ChunkyReader, DepthIsBoundedByMemoryOnly) {
    unsigned int const depth = 100000;
    FilledStream stream;
    {
        Chunky chunky(stream, 1);
        for (unsigned int i = 0; i < depth; ++i)
            chunky.WriteFolderChunkName(c_menu, i, nullptr);
        for (unsigned int i = 0; i < depth; ++i)
            chunky.PopChunk();
    }
    stream->SetPos(0);
    Chunky chunky(stream, 0);
    for (unsigned int i = 0; i < depth; ++i)
        ASSERT_EQ(chunky.ReadFolderChunk(c_menu, depth).GetVersion(), i);
    for (unsigned int i = 0; i < depth; ++i)
        chunky.PopChunk();
}

TEST(ChunkyWriter, GoingBackOverwritesInsideTheOpenChunk) {
    FilledStream stream;
    Chunky chunky(stream, 1);
    chunky.WriteDataChunk(c_item, 1, -1);
    unsigned int const start = chunky.GetStreamPos();
    chunky.WriteBytes("abcdef", 6);
    chunky.SetStreamPos(start + 1);
    chunky.WriteBytes("#", 1);
    EXPECT_THROW(chunky.SetStreamPos(start - 1), std::exception);
    EXPECT_THROW(chunky.SetStreamPos(start + 7), std::exception);
    std::uint32_t word = 0;
    EXPECT_EQ(ReasonOf([&] { chunky.Read(word); }),
              "chunk 'ITEM' at offset 16 of 'RamStream': the chunk is being written and cannot be read");
    EXPECT_EQ(ReasonOf([&] { chunky.ReadDataChunk(c_item, 1); }),
              "'RamStream' at offset 38: the chunk file is being written and cannot be read");
    EXPECT_THROW(chunky.WriteDataChunk(c_item, 1, -1), std::exception); // a data chunk holds no chunks
    chunky.PopChunk(); // ends behind everything that was written, wherever the position is
    EXPECT_THROW(chunky.WriteBytes("x", 1), std::exception);
    EXPECT_THROW(chunky.SetStreamPos(start), std::exception);
    chunky.WriteDataChunk(c_item, 1, -1);
    chunky.PopChunk();
    EXPECT_THROW(chunky.PopChunk(), std::exception);

    stream->SetPos(0);
    Chunky reader(stream, 0);
    Chunky::ChunkInfo info;
    ASSERT_TRUE(reader.PeekChunk(info));
    EXPECT_EQ(info.bodySize, 6u);
    EXPECT_EQ(stream.Content().substr(info.bodyOffset, 6), "a#cdef");
    reader.ReadDataChunk(c_item, 1);
    reader.PopChunk();
    reader.ReadDataChunk(c_item, 1);
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
    struct Case {
        unsigned int room; // for the headers of the file (16 bytes) and the chunk (20), and for bytes
        char const * reason;
    };

    Case const cases[] = {
        {35, "chunk 'ITEM' at offset 4294967276 of 'RamStream': the chunk reaches beyond 4 GiB"},
        {39,
         "chunk 'ITEM' at offset 4294967272 of 'RamStream': 4 bytes at offset 4294967292 reach beyond 4 GiB"},
        {40, "no exception"},
    };
    for (Case const & row : cases) {
        FilledStream memory;
        HighStream stream(memory, c_endless - row.room);
        EXPECT_EQ(ReasonOf([&] {
                      Chunky chunky(&stream, 1);
                      chunky.WriteDataChunk(c_item, 1, -1);
                      chunky.Write(std::uint32_t{7});
                      chunky.PopChunk();
                  }),
                  row.reason);
        EXPECT_EQ(stream.IsDiscarded(), row.room < 40);
    }
}

// Whatever the byte at which the stream fails: an exception, no further writes, and the stream is discarded.
TEST(ChunkyWriter, AFailedWriteGivesTheFileUp) {
    unsigned int const whole = static_cast<unsigned int>(exampleBytes().size()) + 8; // and two patched sizes
    for (unsigned int budget = 0; budget <= whole; ++budget) {
        FilledStream memory;
        FailingStream stream(memory, budget);
        std::string const reason = ReasonOf([&] { writeExample(stream, 1); });
        EXPECT_EQ(reason == "no exception", budget == whole) << budget << ": " << reason;
        EXPECT_EQ(stream.IsDiscarded(), budget < whole) << budget;
    }
    // inside the header of a chunk, its bytes, its size
    for (unsigned int const budget : {17u, 38u, 42u}) {
        FilledStream memory;
        FailingStream stream(memory, budget);
        Chunky chunky(&stream, 1);
        EXPECT_THROW(
            {
                chunky.WriteDataChunk(c_item, 1, -1);
                chunky.Write(std::uint32_t{7});
                chunky.PopChunk();
            },
            std::exception);
        std::string const reason = "'RamStream' at offset " + std::to_string(chunky.GetStreamPos()) +
                                   ": an earlier write failed, the chunk file is given up";
        EXPECT_EQ(ReasonOf([&] { chunky.WriteDataChunk(c_item, 1, -1); }), reason);
        EXPECT_EQ(ReasonOf([&] { chunky.PopChunk(); }), reason);
    }
}

TEST(ChunkyWriter, OnlyAWriterWithAnOpenChunkDiscards) {
    struct Case {
        char const * rule;
        std::function<void(ByteStream &)> use;
        bool isDiscarded;
    };

    Case const cases[] = {
        {"a whole file", [](ByteStream & stream) { writeExample(stream, 1); }, false},
        {"an open chunk that is read",
         [](ByteStream & stream) { Chunky(&stream, 0).ReadFolderChunk(c_menu, 1); }, false},
        {"an open chunk that is written",
         [](ByteStream & stream) { Chunky(&stream, 1).WriteDataChunk(c_item, 1, -1); }, true},
    };
    FilledStream memory;
    for (Case const & row : cases) {
        FailingStream stream(memory, c_endless);
        stream.SetPos(0);
        row.use(stream);
        EXPECT_EQ(stream.IsDiscarded(), row.isDiscarded) << row.rule;
    }
}

TEST(Chunky, TakesAProxysStreamOver) {
    FilledStream memory;
    ByteStreamProxy proxy(new FailingStream(memory, c_endless));
    {
        Chunky const chunky(proxy, 1);
        EXPECT_FALSE(proxy);
    }
    EXPECT_EQ(memory->GetLen(), 16u);
    EXPECT_THROW(Chunky(proxy, 1), std::exception);
    EXPECT_THROW(Chunky(static_cast<ByteStream *>(nullptr), 0), std::exception);
}

TEST(Chunky, AHalfWrittenFileDoesNotReplaceTheOldOne) {
    TemporaryFolder folder;
    std::string const path = folder / "menu";
    {
        ByteStreamProxy file(FilePathHDRaw::UnaliasedFileOpen(path.c_str(), c_streamWrite, false));
        writeExample(*file, 1);
    }
    EXPECT_EQ(folder.ReadFile("menu"), exampleBytes());
    {
        ByteStreamProxy file(FilePathHDRaw::UnaliasedFileOpen(path.c_str(), c_streamWrite, false));
        Chunky chunky(file, 1);
        chunky.WriteDataChunk(c_item, 1, -1);
    }
    EXPECT_EQ(folder.ReadFile("menu"), exampleBytes());
    EXPECT_EQ(folder.CountEntries(), 1u);

    ByteStreamProxy file(FilePathHDRaw::UnaliasedFileOpen(path.c_str(), c_streamRead, false));
    readExample(*file, 0);
}

} // namespace
