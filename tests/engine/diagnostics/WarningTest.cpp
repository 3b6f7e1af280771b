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

// Each call of a recording handler: its name, the category's last letter, and the lines.
std::vector<Lines> s_calls;

template <char Name>
void record(char const * const * lines, unsigned int count, std::uint32_t category) {
    s_calls.push_back({{Name, static_cast<char>(category)}});
    s_calls.back().insert(s_calls.back().end(), lines, lines + count);
}

void removeOthers(char const * const *, unsigned int, std::uint32_t category) {
    dbWarningHandlerRmv(category, &record<'a'>);
    dbWarningHandlerRmv(category, &removeOthers);
    dbWarningHandlerAdd(category, &record<'b'>);
}

void passOn(char const * const * lines, unsigned int, std::uint32_t) {
    dbWarningfAux(c_statistics, "%s", lines[0]);
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

TEST_F(Warning, ReachesTheHandlersOfItsCategoryInTheirOrderLineByLine) {
    for (dbWarningHandler handler : {&record<'b'>, &record<'a'>, &record<'b'>, dbWarningHandler{}})
        dbWarningHandlerAdd(c_inventory, handler); // again, or null: nothing
    dbWarningHandlerAdd(c_statistics, &record<'a'>);
    dbWarningfAux(c_inventory, "\n\ntail%d\n", 3);
    EXPECT_EQ(s_calls, (std::vector<Lines>{{"bV", "", "", "tail3", ""}, {"aV", "", "", "tail3", ""}}));
    dbWarningHandlerRmv(c_inventory, &record<'b'>);
    dbWarningHandlerRmv(c_inventory, &record<'b'>); // unknown: nothing
    dbWarningfAux(c_inventory, "%s", "");
    EXPECT_EQ(s_calls.size(), 3u);
    EXPECT_EQ(s_calls.back(), (Lines{"aV", ""}));
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
    EXPECT_TRUE(s_calls.empty())
        << "a handler that is gone is not called, one that came is called from the next on";
    dbWarningHandlerAdd(c_inventory, &passOn);
    dbWarningHandlerAdd(c_statistics, &record<'a'>);
    dbWarningfAux(c_inventory, "second");
    EXPECT_EQ(s_calls, (std::vector<Lines>{{"bV", "second"}, {"aT", "second"}}));
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
