#include "Cross/Util/WarningTrace.h"

#include "Cross/Util/UtilSocket.h"
#include "Cross/engine/core/Types.h"
#include "Cross/engine/diagnostics/Warning.h"
#include "Cross/engine/scriptconfig/LuaConfig.h"
#include "tests/support/TraceCapture.h"

#include <gtest/gtest.h>

namespace {

constexpr std::uint32_t c_stat = FourCC("STAT");
constexpr std::uint32_t c_test = FourCC("TEST");

using Lines = std::vector<std::string>;

// Lines of the trace from one warning of a category; without a handler it goes to stderr instead.
Lines traceOf(std::uint32_t category) {
    TraceCapture const trace;
    testing::internal::CaptureStderr();
    dbWarningfAux(category, "one\n%s\n", "100%s%n");
    EXPECT_EQ(testing::internal::GetCapturedStderr().empty(), !trace.lines.empty());
    return trace.lines;
}

bool isOn(std::uint32_t category) { return !traceOf(category).empty(); }

} // namespace

TEST(WarningTrace, IsSwitchedByCategory) {
    DisableWarningTraceOutput(c_stat);
    EXPECT_FALSE(isOn(c_stat));
    EnableWarningTraceOutput(c_stat);
    SetWarningTraceOutput(c_stat, true);
    EXPECT_EQ(traceOf(c_stat), (Lines{"one", "100%s%n", ""})) << "once, though switched on twice";
    SetWarningTraceOutput(c_test, false);
    EXPECT_FALSE(isOn(c_test));
    EXPECT_TRUE(isOn(c_stat));
    SetWarningTraceOutput(c_stat, false);
    EXPECT_FALSE(isOn(c_stat));
}

TEST(WarningTrace, ScriptsNameTheCategoryAsText) {
    struct Case {
        char const * text; // of a script
        std::uint32_t category;
    };

    Case const c_cases[] = {
        {"STAT", 0x53544154},
        // the letters behind the fourth do not count, fewer give a smaller value
        {"STATX", 0x53544154},
        {"AB", 0x4142},
        {"", 0},
        // bytes above 127 are negative and fill what is above them
        {"\\195AB", 0xFFC34142},
    };
    LuaConfig script("console", true);
    for (Case const & test : c_cases) {
        auto const run = [&](std::string const & call, std::string const & rest) {
            EXPECT_TRUE(script.RunString((call + "('" + test.text + "'" + rest + ")").c_str(), true));
            return isOn(test.category);
        };
        EXPECT_TRUE(run("WarningEnable", "")) << test.text;
        EXPECT_FALSE(run("WarningDisable", "")) << test.text;
        EXPECT_TRUE(run("WarningSet", ", true")) << test.text;
        EXPECT_FALSE(run("WarningSet", ", false")) << test.text;
    }

    TraceCapture const trace;
    for (char const * const wrong : {"WarningEnable()", "WarningDisable(nil)", "WarningSet('STAT')"})
        EXPECT_FALSE(script.RunString(wrong, false)) << wrong;
}

TEST(UtilSocket, StartsAndShutDownsBalance) {
    EXPECT_EQ(UtilSocketShutDown(), -1);
    EXPECT_EQ(UtilSocketStartUp(), 0);
    EXPECT_EQ(UtilSocketStartUp(), 0);
    EXPECT_EQ(UtilSocketShutDown(), 0);
    EXPECT_EQ(UtilSocketShutDown(), 0);
    EXPECT_EQ(UtilSocketShutDown(), -1);
}
