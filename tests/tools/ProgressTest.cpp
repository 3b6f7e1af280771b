#include "tools/Progress.h"

#include "Cross/engine/filesystem/RamStream.h"
#include "tests/support/HandClock.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

class ProgressTest : public testing::Test {
protected:
    // Reads some bytes of a stream when the clock shows a time.
    void Read(ByteStreamProxy const & stream, unsigned int size, std::uint32_t milliseconds) {
        clock.milliseconds = milliseconds;
        char bytes[100];
        EXPECT_EQ(stream->Read(bytes, size), size);
    }

    static RamStream * Hundred() {
        auto * const stream = new RamStream;
        stream->Open(100, c_streamWrite);
        char const bytes[100] = {};
        stream->Write(bytes, sizeof(bytes));
        stream->SetPos(0);
        return stream;
    }

    HandClock clock;
    std::ostringstream terminal, out, err;
};

} // namespace

TEST_F(ProgressTest, ShowsAfterASecondUntilTheOutputBegins) {
    {
        Progress const progress(terminal, out, err);
        ByteStreamProxy const first = Progress::Watch(ByteStreamProxy(Hundred())),
                              second = Progress::Watch(ByteStreamProxy(Hundred()));
        Read(first, 50, 999);
        EXPECT_EQ(terminal.str(), "");
        Read(first, 20, 1000);
        Read(first, 5, 1099); // too soon
        first->SetPos(0);
        Read(first, 50, 1200); // nothing new
        Read(second, 100, 1300);
        EXPECT_EQ(terminal.str(), "\r 35% read\r 87% read");
        out << "good";
        EXPECT_EQ(terminal.str(), "\r 35% read\r 87% read\r         \r");
        first->SetPos(75);
        Read(first, 25, 2000);
    }
    EXPECT_EQ(terminal.str(), "\r 35% read\r 87% read\r         \r");
    EXPECT_EQ(out.str(), "good");
    EXPECT_EQ(out.tie(), nullptr);
}

// The reason of a failure stands on a clean line, on the terminal where the progress was.
TEST_F(ProgressTest, FailuresWipeItToo) {
    Progress const progress(err, out, err);
    Read(Progress::Watch(ByteStreamProxy(Hundred())), 50, 1000);
    err << "failed";
    EXPECT_EQ(err.str(), "\r 50% read\r         \rfailed");
}

// A pipe tells no length, and a log may still be written to.
TEST_F(ProgressTest, MoreThanTheLengthIsAllOfIt) {
    Progress const progress(terminal, out, err);
    auto * const growing = new RamStream;
    growing->Open(100, c_streamWrite);
    ByteStreamProxy const stream = Progress::Watch(ByteStreamProxy(growing));
    growing->Write("more", 4);
    growing->SetPos(0);
    Read(stream, 4, 1000);
    EXPECT_EQ(terminal.str(), "\r100% read");
}

TEST_F(ProgressTest, StreamsStayAsTheyAreWithoutIt) {
    RamStream * const stream = Hundred();
    EXPECT_EQ(Progress::Watch(ByteStreamProxy(stream)).Get(), stream);
}
