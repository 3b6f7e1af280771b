#include "Cross/engine/filesystem/FileStream.h"

#include "Cross/engine/filesystem/FilePathHDRaw.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TraceCapture.h"

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <string>

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

namespace stdfs = std::filesystem;

std::unique_ptr<ByteStream> open(std::string const & path, StreamMode mode) {
    return std::unique_ptr<ByteStream>(FilePathHDRaw::UnaliasedFileOpen(path.c_str(), mode, false));
}

bool put(ByteStream & stream, std::string const & text) {
    return stream.Write(text.data(), static_cast<unsigned int>(text.size())) == text.size();
}

class FileStreamTest : public testing::Test {
protected:
    FileStreamTest() { folder.WriteFile("file", "old"); }

    ~FileStreamTest() override {
        FileFaults::Instance().Clear();
        stdfs::permissions(folder.Path(), stdfs::perms::owner_all);
    }

    std::string content() const { return folder.ReadFile("file"); }

    TemporaryFolder folder;
    std::string const file = folder / "file";
};

TEST_F(FileStreamTest, NewContentTakesTheNameBehindLinksAtCloseOrAtTheFirstFlush) {
    ::chmod(file.c_str(), 0444);
    EXPECT_FALSE(open(file, c_streamWrite));
    ::chmod(file.c_str(), 0640);
    stdfs::create_symlink("file", folder / "first");
    stdfs::create_symlink(folder / "first", folder / "second");
    std::unique_ptr<ByteStream> stream = open(folder / "second", c_streamWrite);
    EXPECT_EQ(stream->GetStreamName(), folder / "second");
    put(*stream, "new");
    EXPECT_EQ(content(), "old");
    EXPECT_TRUE(stream->Flush());
    EXPECT_EQ(content(), "new");
    put(*stream, "+");
    stream.reset();
    EXPECT_EQ(content(), "new+");
    EXPECT_EQ(stdfs::status(file).permissions(), stdfs::perms(0640));
    EXPECT_TRUE(stdfs::is_symlink(folder / "second"));
    open(file, c_streamWrite); // nothing is content too
    EXPECT_EQ(content(), "");
    EXPECT_EQ(folder.CountEntries(), 3u);
}

TEST_F(FileStreamTest, DiscardKeepsWhatStoodThere) {
    for (char const * const name : {"file", "fresh"}) {
        std::unique_ptr<ByteStream> stream = open(folder / name, c_streamWrite);
        put(*stream, "unfinished");
        stream->Discard();
        EXPECT_FALSE(put(*stream, "more"));
        EXPECT_FALSE(stream->Flush());
    }
    EXPECT_EQ(content(), "old");
    EXPECT_EQ(folder.CountEntries(), 1u);

    // nor is what somebody else put there meanwhile touched
    std::unique_ptr<ByteStream> stream = open(folder / "new", c_streamWrite);
    stream->Discard();
    stdfs::remove(folder / "new");
    folder.WriteFile("new", "of somebody else");
    stream.reset();
    EXPECT_EQ(folder.ReadFile("new"), "of somebody else");

    stream = open(file, c_streamWrite);
    put(*stream, "flushed");
    stream->Flush();
    put(*stream, "unfinished");
    stream->Discard();
    stream.reset();
    EXPECT_EQ(content(), "flushed");
}

// Saves 200,000 bytes in pieces of both kinds, the ones that the buffer gathers and those that pass it.
bool save(std::string const & path) {
    std::unique_ptr<ByteStream> const stream = open(path, c_streamWrite);
    bool written = true;
    for (unsigned int size : {10u, 60'000u, 10u, 70'000u, 60'000u, 9'980u})
        written = written && put(*stream, std::string(size, 'n'));
    return written && stream->Flush();
}

TEST_F(FileStreamTest, FailedSavesLeaveTheOldFileAndOneTraceLine) {
    struct Case {
        char const * name;
        unsigned int failingWrite;
        bool failSync = false;
        bool failRename = false;
    };

    Case const cases[] = {
        {"file", 1},  {"file", 4},  {"file", 0, true, false}, {"file", 0, false, true},
        {"fresh", 1}, {"fresh", 4}, // a new file has no name to take
    };
    FileFaults & faults = FileFaults::Instance();
    for (Case const & row : cases) {
        SCOPED_TRACE(row.name + std::to_string(row.failingWrite));
        TraceCapture trace;
        faults.failingWrite = row.failingWrite;
        faults.failSync = row.failSync;
        faults.failRename = row.failRename;
        EXPECT_FALSE(save(folder / row.name));
        faults.Clear();
        EXPECT_EQ(trace.lines, std::vector<std::string>{
                                   "FILESYSTEM -- Failed to write file '" + folder / row.name + "': " +
                                   (row.failingWrite ? "No space left on device" : "Input/output error")});
        EXPECT_EQ(content(), "old");
        EXPECT_EQ(folder.CountEntries(), 1u);
    }
    EXPECT_TRUE(save(file)); // four writes were all that there are
    EXPECT_EQ(content(), std::string(200'000, 'n'));
}

TEST_F(FileStreamTest, AFlushedFileGoesOnWhenTheDiskHasRoomAgain) {
    TraceCapture trace;
    std::unique_ptr<ByteStream> stream = open(folder / "log", c_streamWrite);
    put(*stream, "one ");
    EXPECT_TRUE(stream->Flush());
    put(*stream, "two ");
    for (int i = 0; i < 2; ++i) {
        FileFaults::Instance().failingWrite = 1;
        EXPECT_FALSE(stream->Flush());
    }
    put(*stream, "three");
    EXPECT_TRUE(stream->Flush());
    EXPECT_EQ(folder.ReadFile("log"), "one two three");
    EXPECT_EQ(trace.lines.size(), 1u);
}

TEST_F(FileStreamTest, AFolderWithoutWriteRightIsWrittenInPlace) {
    stdfs::create_hard_link(file, folder / "same"); // the file itself, whatever takes its name
    ::chmod(folder.Path().c_str(), 0555);
    std::unique_ptr<ByteStream> stream;
    // no room for the new content shows before the old one is touched
    auto const oldHandler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit old;
    ::getrlimit(RLIMIT_FSIZE, &old);
    rlimit const low{50'000, old.rlim_max};
    TraceCapture trace;
    stream = open(file, c_streamWrite);
    put(*stream, std::string(100'000, 'x'));
    ::setrlimit(RLIMIT_FSIZE, &low);
    EXPECT_FALSE(stream->Flush());
    ::setrlimit(RLIMIT_FSIZE, &old);
    std::signal(SIGXFSZ, oldHandler);
    stream.reset();
    EXPECT_EQ(trace.lines.size(), 1u);
    EXPECT_EQ(content(), "old");

    ASSERT_TRUE(save(file));
    EXPECT_EQ(content(), std::string(200'000, 'n'));
    stream = open(file, c_streamWrite);
    put(*stream, "short");
    stream->Flush();
    put(*stream, "er");
    stream.reset();
    EXPECT_EQ(folder.ReadFile("same"), "shorter");
}

TEST_F(FileStreamTest, AFileOfSomebodyElseInAStickyFolderIsWrittenInPlace) {
    if (::geteuid() != 0)
        GTEST_SKIP() << "only the superuser can be two users";
    ::chmod(folder.Path().c_str(), 01777);
    ::chmod(file.c_str(), 0666);
    ASSERT_EQ(::seteuid(65534), 0);
    bool const saved = save(file);
    ASSERT_EQ(::seteuid(0), 0);
    EXPECT_TRUE(saved);
    EXPECT_EQ(content(), std::string(200'000, 'n'));
    EXPECT_EQ(folder.CountEntries(), 1u);
}

TEST_F(FileStreamTest, PositionsEndBelow4GiB) {
    unsigned int const last = 0xFFFFFFFF;
    stdfs::resize_file(file, last);
    std::unique_ptr<ByteStream> stream = open(file, c_streamRead);
    stream->SetPos(last - 2);
    char bytes[8];
    EXPECT_EQ(stream->Read(bytes, 8), 2u);
    stdfs::resize_file(file, 0x100000000);
    EXPECT_FALSE(open(file, c_streamRead));
    EXPECT_FALSE(open(file, c_streamWrite));

    TraceCapture trace;
    stream = open(folder / "fresh", c_streamWrite);
    stream->SetPos(last - 2);
    EXPECT_FALSE(put(*stream, "abc"));
    stream.reset();
    EXPECT_EQ(trace.lines.size(), 1u);
    EXPECT_FALSE(stdfs::exists(folder / "fresh"));
}

// A plain model beside the stream: whatever the order of moves and transfers, both hold the same.
TEST_F(FileStreamTest, BufferingDoesNotShow) {
    std::uint32_t state = 1;
    auto const below = [&state](std::uint32_t bound) {
        state = state * 1664525u + 1013904223u;
        return (state >> 8) % bound;
    };
    std::string model;
    std::unique_ptr<ByteStream> stream = open(file, c_streamWrite);
    unsigned int position = 0;
    for (int i = 0; i < 2000; ++i) {
        std::uint32_t const choice = below(10);
        if (choice < 5)
            stream->SetPos(position =
                               choice < 2 ? below(400'000) : position - std::min(position, below(2'000)));
        if (choice == 9) {
            EXPECT_TRUE(stream->Flush());
            ASSERT_TRUE(content() == model);
        }
        std::string const piece(below(choice == 0 ? 150'000 : 300), static_cast<char>('a' + i % 26));
        EXPECT_TRUE(put(*stream, piece));
        if (model.size() < position + piece.size() && !piece.empty())
            model.resize(position + piece.size());
        model.replace(position, piece.size(), piece);
        position += static_cast<unsigned int>(piece.size());
        ASSERT_EQ(stream->GetPos(), position);
        ASSERT_EQ(stream->GetLen(), model.size());
    }
    stream.reset();
    ASSERT_TRUE(content() == model);

    stream = open(file, c_streamRead);
    for (int i = 0; i < 2000; ++i) {
        if (below(3) == 0)
            stream->SetPos(below(600'000));
        std::size_t const from = std::min<std::size_t>(stream->GetPos(), model.size());
        std::string piece(below(i % 10 == 0 ? 150'000 : 300), '\0');
        piece.resize(stream->Read(piece.data(), static_cast<unsigned int>(piece.size())));
        ASSERT_TRUE(piece == model.substr(from, piece.size()));
    }
}

} // namespace
