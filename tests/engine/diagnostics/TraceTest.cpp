#include "Cross/engine/diagnostics/Trace.h"

#include "tests/support/HeapLimit.h"
#include "tests/support/OnFourThreads.h"
#include "tests/support/TraceCapture.h"

#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <string_view>

namespace {

// The sink goes when the test ends, whatever the test puts in place.
class Trace : public testing::Test {
protected:
    ~Trace() override { dbTraceSetSink(nullptr, nullptr); }
};

void countLine(char const *, void * count) { ++*static_cast<int *>(count); }

} // namespace

TEST_F(Trace, TheSinkGetsTheBareText) {
    TraceCapture capture;
    for (std::size_t length : {0u, 1023u, 1024u, 100000u}) {
        dbTimeStampedTracefAux("%s%d", std::string(length, 'x').c_str(), 7);
        EXPECT_EQ(capture.lines.back(), std::string(length, 'x') + "7");
    }
}

TEST_F(Trace, ASinkMayTraceReplaceItselfAndThrow) {
    static int s_later;
    s_later = 0;
    testing::internal::CaptureStderr();
    dbTraceSetSink(
        [](char const *, void *) {
            dbTimeStampedTracefAux("dropped");
            dbTraceSetSink(&countLine, &s_later);
        },
        nullptr);
    dbTimeStampedTracefAux("first");
    EXPECT_EQ(s_later, 0);
    dbTimeStampedTracefAux("second");
    EXPECT_EQ(s_later, 1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");

    dbTraceSetSink([](char const *, void *) { throw std::runtime_error("full"); }, nullptr);
    EXPECT_THROW(dbTimeStampedTracefAux("third"), std::runtime_error);
    dbTraceSetSink(&countLine, &s_later);
    dbTimeStampedTracefAux("fourth");
    EXPECT_EQ(s_later, 2);
}

TEST_F(Trace, AnExhaustedHeapCutsTheText) {
    static std::size_t s_length;
    s_length = 0;
    dbTraceSetSink([](char const * text, void *) { s_length = std::string_view(text).size(); }, nullptr);
    std::string const text(5000, 'x');
    {
        HeapLimit const limit(0);
        dbTimeStampedTracefAux("%s", text.c_str());
    }
    EXPECT_EQ(s_length, 1023u);
}

TEST_F(Trace, GoesToStderrWithATimeStamp) {
    testing::internal::CaptureStderr();
    dbTimeStampedTracefAux("UTIL -- %s", "100%s%n");
    std::string const printed = testing::internal::GetCapturedStderr();
    EXPECT_TRUE(testing::internal::RE::FullMatch(
        printed, "\\[[0-9][0-9]:[0-9][0-9]:[0-9][0-9]\\.[0-9][0-9][0-9]\\] UTIL -- 100%s%n\n"))
        << printed;
}

TEST_F(Trace, LinesOfThreadsNeverMeetInTheSink) {
    TraceCapture const capture;
    OnFourThreads([](int thread) {
        for (int i = 0; i < 500; ++i)
            dbTimeStampedTracefAux("%s", std::string(2000, static_cast<char>('a' + thread)).c_str());
    });
    EXPECT_EQ(capture.lines.size(), 2000u);
    for (std::string const & line : capture.lines)
        EXPECT_EQ(line, std::string(2000, line[0]));
}
