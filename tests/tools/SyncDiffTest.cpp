#include "tools/syncdiff/SyncDiff.h"

#include "tests/support/ReasonOf.h"
#include "tests/support/StreamBytes.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/tools/ToolRun.h"

#include <gtest/gtest.h>

namespace {

SyncReport diff(std::string const & first, std::string const & second) {
    FilledStream firstStream(first), secondStream(second);
    return DiffSync(firstStream, secondStream);
}

// One frame with two units, as a block prints it.
std::string frame(int number, std::string const & x, std::string const & alive) {
    return "Total CRC: [ 1f0c93ab ]\nSim: \n{\n  frame: [ " + std::to_string(number) +
           " ]\n  unit: \n  {\n    pos: [ " + x + " ]\n    alive: [ true <1> ]\n  }\n" +
           "  unit: \n  {\n    pos: [ 0.0 <0> ]\n    alive: [ " + alive + " ]\n  }\n}\n";
}

std::string const c_alive = "true <1>";

std::string replaced(std::string text, std::string const & what, std::string const & with) {
    return text.replace(text.find(what), what.size(), with);
}

} // namespace

TEST(SyncDiff, NamesFrameGroupAndValueOfTheFirstDifference) {
    std::string const good = frame(7, "1.0 <3f800000>", c_alive) + frame(8, "1.0 <3f800000>", c_alive);

    struct Case {
        char const * rule;
        std::string other;
        char const * frame;
        char const * path;
        std::uint64_t firstLine, secondLine, laterGroups;
    };

    Case const c_cases[] = {
        {"a value", replaced(good, "3f800000", "3f800001"), "7", "Sim/unit/pos", 7, 7, 0},
        {"a value in the second block",
         frame(7, "1.0 <3f800000>", c_alive) + frame(8, "1.0 <3f800002>", c_alive), "8", "Sim/unit/pos", 22,
         22, 0},
        {"each later group counts once",
         frame(7, "2.0 <40000000>", "false <0>") + frame(8, "2.0 <40000000>", c_alive), "7", "Sim/unit/pos",
         7, 7, 2},
        {"the frame itself", frame(9, "1.0 <3f800000>", c_alive) + frame(8, "1.0 <3f800000>", c_alive), "",
         "Sim/frame", 4, 4, 0},
        {"a line more in a group: the comparison goes on behind the group",
         replaced(frame(7, "1.0 <3f800000>", c_alive), "    alive", "    between moves\n    alive") +
             frame(8, "2.0 <40000000>", c_alive),
         "7", "Sim/unit", 8, 8, 1},
        {"a group less",
         replaced(good, "  unit: \n  {\n    pos: [ 0.0 <0> ]\n    alive: [ true <1> ]\n  }\n", ""), "7",
         "Sim", 10, 10, 0},
        {"a value less", replaced(good, "    pos: [ 1.0 <3f800000> ]\n", ""), "7", "Sim/unit", 7, 7, 0},
        {"cut short", good.substr(0, good.size() - 2), "8", "Sim", 30, 0, 0},
    };
    for (Case const & test : c_cases) {
        SCOPED_TRACE(test.rule);
        SyncReport const report = diff(good, test.other);
        EXPECT_TRUE(report.linesDiffer);
        EXPECT_EQ(report.frame, test.frame);
        EXPECT_EQ(report.path, test.path);
        EXPECT_EQ(report.difference[0].number, test.firstLine);
        EXPECT_EQ(report.difference[1].number, test.secondLine);
        EXPECT_EQ(report.laterGroups, test.laterGroups);
        SyncReport const reverse = diff(test.other, good);
        EXPECT_EQ(reverse.path, test.path);
        EXPECT_EQ(reverse.difference[0].number, test.secondLine);
    }
    EXPECT_TRUE(diff(good, good).AreEqual());
    EXPECT_EQ(diff(good, good).lines, 30u);
}

TEST(SyncDiff, TotalsAloneAreADifference) {
    SyncReport const report =
        diff("Total CRC: [ 1\nTotal CRC: [ 3 ]\n", "Total CRC: [ 2 ]\nTotal CRC: [ 4 ]\n");
    EXPECT_FALSE(report.AreEqual());
    EXPECT_FALSE(report.linesDiffer);
    EXPECT_EQ(report.totals[0] + "|" + report.totals[1], "1|2");
}

// A block that closes more than it opened, and one that is cut inside a group, are compared all the same.
TEST(SyncDiff, UnbalancedGroupsAreCompared) {
    std::string const begin = "Total CRC: [ 1 ]\n}\n}\na: \n{\n  b: [ 1 ]\n";
    EXPECT_TRUE(diff(begin, begin).AreEqual());
    EXPECT_EQ(
        diff(begin + "no group {\nno end }\n  c: [ 1 ]", begin + "no group {\nno end }\n  c: [ 2 ]").path,
        "a/c");
    EXPECT_EQ(diff(begin + "x\nTotal CRC: [ 3 ]\nd: [ 1 ]\n", begin + "y\nTotal CRC: [ 3 ]\nd: [ 2 ]\n")
                  .laterGroups,
              1u);
    EXPECT_EQ(diff(begin + "  c: [ 1 ]", begin + "  c: [ 2 ]").path, "a/c");
    EXPECT_EQ(diff(begin + "Total CRC: [ 3 ]\n", begin + "x\n").path, "a");
    EXPECT_EQ(diff(begin + "Total CRC: [ 3 ]\nd: [ 1 ]\n", begin + "Total CRC: [ 3 ]\nd: [ 2 ]\n").path, "d");
}

TEST(SyncDiff, WhatIsNoBlockIsRefusedWithItsLine) {
    std::string const block = "Total CRC: [ 1 ]\n";
    std::string deep = block;
    for (int depth = 0; depth < 10'001; ++depth)
        deep += "g: \n{\n";

    std::pair<std::string, std::string> const c_cases[] = {
        {"", "line 0: this is no printed sync block"},
        {std::string("\x7F"
                     "ELF\0\n\xFF",
                     7),
         "line 1: this is no printed sync block"},
        {block + std::string(16'384, 'x'), "line 2: the line is longer than a printed block has"},
        {deep, "line 20003: groups are nested too deep"},
    };
    std::string const longest = block + std::string(16'383, 'x') + "\n";
    EXPECT_TRUE(diff(longest, longest).AreEqual());
    for (auto const & [text, reason] : c_cases) {
        std::string const told = ReasonOf([&text = text] { diff(text, text); });
        EXPECT_NE(told.find(reason), std::string::npos) << told;
    }
}

TEST(SyncDiff, DistancesComeFromTheBitPatterns) {
    std::tuple<char const *, char const *, std::vector<std::string>> const c_cases[] = {
        {"[ 1.0 <3f800000> ]", "[ 1.0 <3f800001> ]", {"number 1: 1 unit in the last place"}},
        {"[ (0.0 <0>, 1.0 <3f800000>) ]",
         "[ (-0.0 <80000000>, 2.0 <40000000>) ]",
         {"number 1: 0 units in the last place", "number 2: 8388608 units in the last place"}},
        {"[ 1e-45 <1> ]", "[ -1e-45 <80000001> ]", {"number 1: 2 units in the last place"}},
        {"[ nan <7fc00000> ]", "[ 1.0 <3f800000> ]", {"number 1: not a number"}},
        {"[ true <1> ]", "[ false <0> ]", {}},
        {"[ 12 ]", "[ 13 ]", {}},
        {"[ 1.0 <3f800000> ]", "[ nan <7fc00000> ]", {"number 1: not a number"}},
        {"[ 1.0 <3f800000> ]", "[ 1 ]", {}},
        {"[ a <b ]", "[ a <c ]", {}},
        {"[ a <x> ]", "[ a <y> ]", {}},
        {"[ a <b", "[ a <c", {}},
    };
    for (auto const & [first, second, distances] : c_cases)
        EXPECT_EQ(SyncDistances(first, second), distances) << first;
}

TEST(SyncDiff, TheVerbPrintsVerdictPlaceAndSurroundings) {
    TemporaryFolder folder;
    folder.WriteFile("left.txt", frame(137, "1.0 <3f800000>", c_alive));
    folder.WriteFile("right.txt", frame(137, "1.0 <3f800001>", c_alive));
    std::string const left = folder / "left.txt", right = folder / "right.txt";
    ToolResult result = RunTool({"sync", "diff", left, right});
    EXPECT_EQ(result.code, 1);
    EXPECT_EQ(result.out, "different: frame 137, Sim/unit/pos\n"
                          "  " +
                              left +
                              ", line 7: pos: [ 1.0 <3f800000> ]\n"
                              "  " +
                              right +
                              ", line 7: pos: [ 1.0 <3f800001> ]\n"
                              "  number 1: 1 unit in the last place\n"
                              "around it:\n"
                              "      frame: [ 137 ]\n"
                              "      unit: \n"
                              "      {\n"
                              "  -     pos: [ 1.0 <3f800000> ]\n"
                              "  +     pos: [ 1.0 <3f800001> ]\n"
                              "        alive: [ true <1> ]\n"
                              "      }\n"
                              "      unit: \n"
                              "later: 0 more differing groups\n");
    EXPECT_EQ(
        RunTool({"sync", "diff", "--json", left, right}).out,
        "{\"verdict\": \"different\", \"equalLines\": 6, \"frame\": \"137\", \"path\": "
        "\"Sim/unit/pos\", \"sides\": [{\"file\": \"" +
            left +
            "\", \"total\": null, \"line\": 7, \"text\": \"    pos: [ 1.0 <3f800000> ]\"}, {\"file\": \"" +
            right +
            "\", \"total\": null, \"line\": 7, \"text\": \"    pos: [ 1.0 <3f800001> ]\"}], "
            "\"distances\": [\"number 1: 1 unit in the last place\"], \"laterGroups\": 0}\n");
    result = RunTool({"sync", "diff", left, left});
    EXPECT_EQ(result.code, 0);
    EXPECT_EQ(result.out, "equal: 15 lines\n");
    result = RunTool({"sync", "diff", left, folder / "none.txt"});
    EXPECT_EQ(result.code, 2);
    EXPECT_EQ(result.err, "failed: " + (folder / "none.txt") + ": does not exist\n");
}
