#include "Cross/Util/RenderStats.h"

#include "Cross/engine/filesystem/FilePath.h"
#include "Cross/engine/scriptconfig/LuaConfig.h"
#include "tests/support/ActingProxy.h"
#include "tests/support/AliasedFolder.h"
#include "tests/support/CrashFiles.h"

#include <gtest/gtest.h>

#include <limits>
#include <optional>
#include <sstream>

namespace {

constexpr float c_inf = std::numeric_limits<float>::infinity();
constexpr float c_nan = std::numeric_limits<float>::quiet_NaN();

// The line of one text of the table.
std::string shown(std::string const & x, std::string const & y, std::string const & text) {
    return R"({"call":"Draw","shape":"Text2D","frame":"RenderStats","position":[)" + x + "," + y +
           R"(],"text":")" + text + R"(","colour":"0xFFFFFFFF"})" + "\n";
}

// What each frame begins with.
std::string const c_cleared = R"({"call":"Clear","frame":"RenderStats"}
{"call":"SetAlwaysInFront","frame":"RenderStats","enable":true}
{"call":"SetAutoClear","frame":"RenderStats","enable":false}
)";
std::string const c_title = shown("0.05", "0.1", "Render Stats");
std::string const c_head = c_cleared + c_title + shown("0.05", "0.13", "Name") +
                           shown("0.65", "0.13", "Instances") + shown("0.75", "0.13", "Calls") +
                           shown("0.85", "0.13", "Shaders") + shown("0.95", "0.13", "Tris");

std::string row(std::string const & y, std::string const & name, std::vector<std::string> const & figures) {
    std::string text = shown("0.05", y, name);
    char const * const columns[] = {"0.65", "0.75", "0.85", "0.95"};
    for (std::size_t i = 0; i < 4; ++i)
        text += shown(columns[i], y, figures[i]);
    return text;
}

// Statistics that are on and never time out, and a proxy.
class RenderStatsTest : public testing::Test {
protected:
    RenderStatsTest() {
        stats.Enable(true);
        stats.SetUpdateTime(1e6f);
        DebugRender::Register(&proxy);
    }

    ~RenderStatsTest() override { DebugRender::Unregister(&proxy); }

    void Add(char const * name, std::uint32_t calls, std::uint32_t shaders, std::uint32_t tris) {
        RenderStats::StatEntry * const entry = stats.AddModelStat(name);
        ASSERT_NE(entry, nullptr) << name;
        entry->renderCalls = calls;
        entry->shaderChanges = shaders;
        entry->tris = tris;
    }

    // What a frame writes.
    std::string Frame(float dt = 0.0f) {
        out.str("");
        stats.UpdateAndDraw(dt);
        return out.str();
    }

    // The names of a frame's rows, each with a blank behind it.
    std::string Names(float dt = 0.0f) {
        std::istringstream lines(Frame(dt));
        std::string names;
        for (std::string line; std::getline(lines, line);) {
            std::size_t const text = line.find("\"text\":\"") + 8;
            if (line.find("[0.05,") != line.npos)
                names += line.substr(text, line.find('"', text) - text) + " ";
        }
        std::string const head = "Render Stats Name ";
        return names.substr(std::min(head.size(), names.size()));
    }

    std::ostringstream out;
    ActingProxy<DebugRender::Text2D> proxy{out};
    RenderStats stats;
};

} // namespace

TEST_F(RenderStatsTest, ShowsATable) {
    EXPECT_EQ(Frame(), c_head);
    Add("data/art/tank.model", 10, 2, 4294967295);
    Add("jeep%s", 1, 0, 7);
    stats.AddModelStat("tank.model");
    EXPECT_EQ(Frame(), c_head + row("0.17500001", "tank.model", {"2", "10", "2", "4294967295"}) +
                           row("0.20500001", "jeep%s", {"1", "1", "0", "7"}));

    for (int i = 2; i < 30; ++i)
        stats.AddModelStat(("m" + std::to_string(i)).c_str());
    std::string const full = Frame();
    std::string const last = row("0.8949996", "m24", {"1", "0", "0", "0"});
    EXPECT_EQ(full.substr(full.size() - last.size()), last) << "25 rows at most";

    DebugRender::Unregister(nullptr);
    EXPECT_EQ(Frame(), "");
}

TEST_F(RenderStatsTest, ModelsAreToldApartByTheirFileNames) {
    std::string const longest(RenderStats::c_maxName - 1, 'n');
    std::pair<std::string, std::string> const cases[] = {
        // what stands behind the last slash counts, letter by letter
        {"data/art/tank.model", "tank.model"},
        {"Tank.model", "Tank.model"},
        {"art\\tank.model", "art\\tank.model"},
        {"tank.mode", "tank.mode"},
        {"folder/", ""},
        // its first 255 characters count
        {"folder/" + longest + "behind", longest},
        {longest.substr(1), longest.substr(1)},
    };
    for (auto const & [name, stored] : cases) {
        RenderStats::StatEntry const * const entry = stats.AddModelStat(name.c_str());
        ASSERT_NE(entry, nullptr) << name;
        EXPECT_EQ(entry->name, stored);
        EXPECT_EQ(entry->instances, 1u);
        EXPECT_EQ(entry->renderCalls + entry->shaderChanges + entry->tris, 0u);
        EXPECT_EQ(stats.AddModelStat(("other/" + stored + (stored == longest ? "n" : "")).c_str()), nullptr);
        EXPECT_EQ(entry->instances, 2u);
    }
    EXPECT_EQ(stats.AddModelStat(nullptr), nullptr);
}

TEST_F(RenderStatsTest, SortsTheLargestFirstAndKeepsEqualOnesInOrder) {
    Add("a", 1, 5, 2);
    Add("b", 3, 5, 4294967295);
    Add("c", 2, 6, 2);
    stats.AddModelStat("c");
    using Stats = RenderStats;
    std::pair<Stats::SortMode, char const *> const cases[] = {
        {Stats::SortNone, "a b c "},          {static_cast<Stats::SortMode>(9), "a b c "},
        {Stats::SortInstances, "c a b "},     {Stats::SortRenderCalls, "b c a "},
        {Stats::SortShaderChanges, "c b a "}, {Stats::SortTris, "b c a "},
        {Stats::SortNone, "b c a "}, // what is sorted stays so
    };
    for (auto const & [mode, names] : cases) {
        stats.SetSortMode(mode);
        EXPECT_EQ(Names(), names) << mode;
    }
}

// The list is shown before it is emptied.
TEST_F(RenderStatsTest, TheListStartsAnewWhenItsTimeIsOver) {
    struct Case {
        std::optional<float> updateTime; // none: as it is
        float dt;
        bool keeps;
    };

    Case const cases[] = {
        {0.5f, 0.125f, false}, // a new update time is over at once
        {{}, 0.25f, true},
        {{}, 0.125f, true}, // 0.5 is not above 0.5
        {{}, 0.125f, false},
        {{}, 1.75f, false}, // many periods are one emptying, and leave a rest of 0.375
        {{}, 0.125f, true},
        {{}, 0.0625f, false},
        // what is no period changes nothing, not even the timer
        {-1.0f, 0.25f, true},
        {c_nan, 0.125f, true},
        {0.0f, 0.125f, false},
        // a timer that a step no longer lowers starts anew, and so does one that is no number
        {0.01f, 1e30f, false},
        {{}, c_inf, false},
        {{}, c_nan, true},
        {c_inf, 1.0f, true}, // for ever
    };
    for (Case const & test : cases) {
        if (test.updateTime)
            stats.SetUpdateTime(*test.updateTime);
        stats.AddModelStat("m");
        EXPECT_EQ(Names(test.dt), "m ") << &test - cases;
        EXPECT_EQ(Names(), test.keeps ? "m " : "") << &test - cases;
    }
    stats.SetUpdateTime(0.5f);
    stats.UpdateImmediately();
    Names(0.125f);
    EXPECT_EQ(Names(), "");

    RenderStats fresh; // 0.01 seconds
    fresh.Enable(true);
    fresh.AddModelStat("m");
    fresh.UpdateAndDraw(0.01f);
    EXPECT_EQ(fresh.AddModelStat("m"), nullptr);
    fresh.UpdateAndDraw(0.001f);
    EXPECT_NE(fresh.AddModelStat("m"), nullptr);
}

TEST_F(RenderStatsTest, OffCountsNothing) {
    Add("m", 1, 2, 3);
    stats.Enable(true);
    EXPECT_EQ(Names(), "m ") << "what is on goes on";
    out.str("");
    stats.Enable(false);
    EXPECT_EQ(out.str(), "{\"call\":\"Clear\",\"frame\":\"RenderStats\"}\n");
    EXPECT_EQ(stats.AddModelStat("m"), nullptr);
    EXPECT_EQ(Frame(1.0f), "");
    stats.Enable(true);
    EXPECT_EQ(Names(), "");
    EXPECT_FALSE(RenderStats().IsEnabled());
}

TEST_F(RenderStatsTest, AProxyMayChangeTheListItDraws) {
    Add("first", 1, 2, 3);
    Add("second", 1, 2, 3);
    int models = 0;
    proxy.act = [&] { // the list moves in the middle of a row
        for (int i = 0; i < 20; ++i)
            stats.AddModelStat(std::to_string(models++).c_str());
    };
    EXPECT_EQ(Names().substr(0, 17), "first second 0 1 ");
    proxy.act = [&] { stats.Enable(false); };
    EXPECT_EQ(Names(), "");
    stats.Enable(true);
    Add("third", 1, 2, 3);
    proxy.act = [&] { DebugRender::Unregister(&proxy); };
    Frame();
    EXPECT_EQ(out.str(), c_cleared + c_title);
}

TEST_F(RenderStatsTest, DumpsTheWholeListAsItIsShown) {
    AliasedFolder const folder("log");
    stats.Enable(false);
    stats.DumpStatsToLogFile();
    Frame();
    EXPECT_EQ(folder.CountEntries(), 0u) << "a dump waits while the statistics are off";
    stats.Enable(true);
    stats.SetSortMode(RenderStats::SortRenderCalls);
    Add("100%s%n", 10, 4, 5);
    stats.AddModelStat("100%s%n");
    stats.AddModelStat("100%s%n");
    Add("wraps", 0x80000001, 4294967295, 0);
    stats.AddModelStat("wraps");
    std::string want = "Name, Instances, Render Calls, Render Call Total, Shaders, Tris\n"
                       "wraps, 2, 2147483649, 2, 4294967295, 0\n"
                       "100%s%n, 3, 10, 30, 4, 5\n";
    for (int i = 2; i < 30; ++i) { // more than a frame shows
        std::string const name = "m" + std::to_string(i);
        stats.AddModelStat(name.c_str());
        want += name + ", 1, 0, 0, 0, 0\n";
    }
    stats.UpdateImmediately();
    Frame(1.0f); // empties the list, after the dump
    EXPECT_EQ(folder.ReadFile(folder.OnlyEntry()), want);
    EXPECT_EQ(folder.OnlyEntry().substr(0, 12), "renderstats.");
    EXPECT_TRUE(VisitedCrashFiles().empty()) << "the file is closed";

    // once, also with nowhere to write
    FilePath::RemoveAlias("log");
    stats.DumpStatsToLogFile();
    EXPECT_EQ(Frame(), c_head);
    FilePath::SetAlias("log", folder.Path().c_str());
    Frame();
    EXPECT_EQ(folder.CountEntries(), 1u);
}

// Scripts reach the one instance. What they change empties the list behind the next frame.
TEST_F(RenderStatsTest, ScriptsSwitchSortAndDump) {
    struct Case {
        char const * call;
        bool isOn;
        char const * first; // row of the next frame
        bool empties;
    };

    Case const cases[] = {
        {"assert(RenderStats_Get() == true)", true, "first", false},
        {"RenderStats_Set(0)", false, "first", true},
        {"RenderStats_Set(2)", true, "first", true},
        {"RenderStats_Disable()  assert(RenderStats_Get() == false)", false, "first", true},
        {"RenderStats_Toggle()", false, "first", true},
        {"RenderStats_Disable()  RenderStats_Toggle()", true, "first", true},
        {"RenderStats_Disable()  RenderStats_Enable()", true, "first", true},
        {"RenderStats_SetUpdateTime(2)", true, "first", true},
        {"RenderStats_SortTris()", true, "m3", true},
        {"RenderStats_SortShaderChanges()", true, "m2", true},
        {"RenderStats_SortRenderCalls()", true, "m1", true},
        {"RenderStats_SortInstances()", true, "m0", true},
        {"RenderStats_DumpToLogFile()", true, "m0", false},
        {"assert(not pcall(RenderStats_Set, '1'))", true, "m0", false},
    };
    AliasedFolder const folder("log");
    LuaConfig state("script", true);
    RenderStats & instance = *RenderStats::Instance();
    auto const frame = [&](float dt) {
        out.str("");
        instance.UpdateAndDraw(dt);
        return out.str();
    };
    for (Case const & test : cases) {
        instance.Enable(true);
        instance.SetUpdateTime(1e6f);
        frame(1.0f); // leaves an empty list and a second on the timer
        EXPECT_TRUE(state.RunString(test.call, true)) << test.call;
        EXPECT_EQ(instance.IsEnabled(), test.isOn) << test.call;
        instance.Enable(true);
        instance.AddModelStat("first");
        for (std::size_t i = 0; i < 4; ++i) {
            RenderStats::StatEntry & entry = *instance.AddModelStat(("m" + std::to_string(i)).c_str());
            std::uint32_t * const figures[] = {&entry.instances, &entry.renderCalls, &entry.shaderChanges,
                                               &entry.tris};
            *figures[i] = 100;
        }
        EXPECT_NE(frame(1.0f).find(shown("0.05", "0.17500001", test.first)), std::string::npos) << test.call;
        EXPECT_EQ(frame(0.0f) == c_head, test.empties) << test.call;
    }
    EXPECT_EQ(folder.CountEntries(), 1u) << "the one dump";
    instance.Enable(false);
}
