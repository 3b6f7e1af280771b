#include "Cross/engine/diagnostics/Warning.h"

#include "tests/support/TraceCapture.h"

#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>

namespace {

using Lines = std::vector<std::string>;

constexpr std::uint32_t c_inventory = 0x494E56;
constexpr std::uint32_t c_statistics = 0x53544154;

// One call of a handler.
struct Call {
    char handler;
    std::uint32_t category;
    Lines lines;
};

std::vector<Call> s_calls;

template <char Name>
void record(char const * const * lines, unsigned int count, std::uint32_t category) {
    s_calls.push_back({Name, category, Lines(lines, lines + count)});
}

void removeOthers(char const * const *, unsigned int, std::uint32_t category) {
    dbWarningHandlerRmv(category, &record<'a'>);
    dbWarningHandlerRmv(category, &removeOthers);
    dbWarningHandlerAdd(category, &record<'b'>);
}

void passOn(char const * const * lines, unsigned int, std::uint32_t) {
    dbWarningfAux(c_statistics, "%s", lines[0]);
}

std::string handlersCalled() {
    std::string names;
    for (Call const & call : s_calls)
        names += call.handler;
    return names;
}

class Warning : public testing::Test {
protected:
    Warning() { s_calls.clear(); }

    ~Warning() override {
        for (std::uint32_t category : {c_inventory, c_statistics})
            for (dbWarningHandler handler : {&record<'a'>, &record<'b'>, &removeOthers, &passOn})
                dbWarningHandlerRmv(category, handler);
    }
};

} // namespace

TEST_F(Warning, ReachesTheHandlersOfItsCategoryInTheirOrder) {
    for (dbWarningHandler handler : {&record<'b'>, &record<'a'>, &record<'b'>, dbWarningHandler{}})
        dbWarningHandlerAdd(c_inventory, handler); // again, or null: nothing
    dbWarningHandlerAdd(c_statistics, &record<'a'>);
    dbWarningfAux(c_inventory, "%s %d", "ghost", 3);
    ASSERT_EQ(handlersCalled(), "ba");
    EXPECT_EQ(s_calls[0].category, c_inventory);
    EXPECT_EQ(s_calls[0].lines, Lines{"ghost 3"});
    dbWarningHandlerRmv(c_inventory, &record<'b'>);
    dbWarningHandlerRmv(c_inventory, &record<'b'>); // unknown: nothing
    dbWarningfAux(c_inventory, "ghost");
    EXPECT_EQ(handlersCalled(), "baa");
}

TEST_F(Warning, TextIsSplitAtItsLineEnds) {
    std::pair<char const *, Lines> const cases[] = {
        {"", {""}},
        {"one", {"one"}},
        {"one\ntwo", {"one", "two"}},
        {"\n\ntail\n", {"", "", "tail", ""}},
    };
    dbWarningHandlerAdd(c_inventory, &record<'a'>);
    for (auto const & [text, lines] : cases) {
        dbWarningfAux(c_inventory, "%s", text);
        EXPECT_EQ(s_calls.back().lines, lines) << text;
    }
}

TEST_F(Warning, WithoutAHandlerOneLineGoesToStderrAndNoneToTheTrace) {
    TraceCapture const trace;
    dbWarningHandlerAdd(c_statistics, &record<'a'>);
    testing::internal::CaptureStderr();
    dbWarningfAux(c_inventory, "two\nlines");
    dbWarningfAux(c_statistics, "handled");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Warning INV: two lines\n");
    EXPECT_TRUE(trace.lines.empty());
}

TEST_F(Warning, HandlersMayChangeTheHandlersAndRaiseWarnings) {
    dbWarningHandlerAdd(c_inventory, &removeOthers);
    dbWarningHandlerAdd(c_inventory, &record<'a'>);
    dbWarningfAux(c_inventory, "first");
    EXPECT_EQ(handlersCalled(), "")
        << "a handler that is gone is not called, one that came is called from the next on";
    dbWarningHandlerAdd(c_inventory, &passOn);
    dbWarningHandlerAdd(c_statistics, &record<'a'>);
    dbWarningfAux(c_inventory, "second");
    EXPECT_EQ(handlersCalled(), "ba");
    EXPECT_EQ(s_calls[1].category, c_statistics);
}

TEST_F(Warning, ThreadsMayAddAndRemoveWhileOthersRaise) {
    static thread_local int t_heard;
    dbWarningHandler const hear = [](char const * const *, unsigned int, std::uint32_t) { ++t_heard; };
    dbWarningHandlerAdd(c_inventory, hear);
    std::thread changing([] {
        for (int i = 0; i < 500; ++i) {
            dbWarningHandlerAdd(c_statistics, &removeOthers);
            dbWarningHandlerRmv(c_statistics, &removeOthers);
        }
    });
    t_heard = 0;
    for (int i = 0; i < 500; ++i)
        dbWarningfAux(c_inventory, "ghost");
    changing.join();
    dbWarningHandlerRmv(c_inventory, hear);
    EXPECT_EQ(t_heard, 500);
}
