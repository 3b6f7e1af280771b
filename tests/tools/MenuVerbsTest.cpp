#include "tools/MenuLint.h"

#include "Cross/Util/Random.h"
#include "tests/tools/ToolRun.h"
#include "tests/util/CheatMenuSupport.h"

#include <iterator>
#include <set>

namespace {

MenuReport lint(std::string const & source) {
    LuaConfig state("", true);
    CheatMenu::RegisterLua(state);
    EXPECT_TRUE(state.RunString(source.c_str(), true)) << source;
    return LintMenu(state);
}

// The findings as "path: reason" lines.
std::string findings(std::string const & source) {
    std::string list;
    for (MenuReport::Finding const & finding : lint(source).findings)
        list += finding.path + ": " + finding.reason + "\n";
    return list;
}

using Words = std::vector<std::string>;

class MenuLint : public CheatMenuTest {
protected:
    // Lines that are good or not, with submenus; each has a name of its own.
    std::string RandomLines(int depth) {
        char const * const types[] = {"0", "0.5", "1", "1", "2", "7", "'1'", "0/0", "nil"};
        char const * const commands[] = {"''", "''", "nil", "7"};
        std::string lines = "{";
        for (unsigned int i = random.GetMax(6); i > 0; --i) {
            std::string const name = "n" + std::to_string(++count);
            lines += "{ name = '" + name + "', type = " + types[random.GetMax(9)];
            lines += ", command = " + std::string(commands[random.GetMax(4)]) + ", get = 'true'";
            if (depth > 0)
                lines += ", SubMenuItems = " + RandomLines(depth - 1);
            lines += "},";
        }
        return lines + "}";
    }

    // The names of a menu that is open, behind those of its parents, and of all below it.
    void Collect(std::size_t parents, std::set<std::string> & names) {
        Words const texts = Split(Texts());
        for (std::size_t line = parents; line < texts.size() && texts[line] != "Empty!"; ++line, Press("n")) {
            names.insert(texts[line]);
            Press("r");
            if (Split(Texts()).size() == texts.size())
                continue;
            Collect(texts.size(), names);
            Press("b");
        }
    }

    static Words Split(std::string const & text) {
        std::istringstream words(text);
        return {std::istream_iterator<std::string>(words), {}};
    }

    Random random;
    int count = 0;
};

} // namespace

TEST_F(MenuLint, TellsWhatIsDroppedAndWhatNeverWorks) {
    std::string const noNumber = "is dropped: it has no number \"type\"\n";
    std::string const set = "is never set: its \"set\" ";
    std::pair<std::string, std::string> const c_cases[] = {
        {"{ name = 'a', type = Separator }, { name = 'b', type = SubMenu }, { name = 'c', type = 9 }", ""},
        {"7, {}, { type = 3 }, { name = '', type = 3 }, [''] = 7",
         "[1]: is dropped: it has no text \"name\"\n[2]: is dropped: it has no text \"name\"\n"
         "[3]: is dropped: it has no text \"name\"\n[4] \"\": is dropped: its \"name\" is empty\n"
         "[\"\"]: is dropped: it has no text \"name\"\n"},
        {"{ name = 'a' }, { name = 'b', type = '1' }, { name = 'c', type = 0/0 }",
         "[1] \"a\": " + noNumber + "[2] \"b\": " + noNumber + "[3] \"c\": " + noNumber},
        {"{ name = 'M', type = SubMenu, SubMenuItems = { ['x\\n'] = { name = 'a', type = Command } } }",
         "[1] \"M\" > [\"x\\n\"] \"a\": is dropped: it has no text \"command\"\n"},
        {"[-1] = {}, [0.5] = {}, [true] = {}",
         ": 3 of its entries are dropped: their keys are no whole numbers from 0 and no texts\n"},
        {"{ name = 'a', type = Variable, set = '%f' }, { name = 'b', type = Variable, set = '%' },"
         "{ name = 'c', type = Variable, var_type = Float, set = '%s' },"
         "{ name = 'd', type = Variable, var_type = Float, set = '%f %f' },"
         "{ name = 'e', type = Variable, var_type = Float, set = '%9999f' },"
         "{ name = 'f', type = Variable, var_type = 2, set = '%' }",
         "[1] \"a\": " + set + "has a conversion that is none of a boolean, which is %s\n[2] \"b\": " + set +
             "ends within a conversion\n[3] \"c\": " + set +
             "has a conversion that is none of a float, such as %f\n[4] \"d\": " + set +
             "has more than one conversion\n[5] \"e\": " + set +
             "has a width or precision of more than three digits\n"},
    };
    for (auto const & [lines, expected] : c_cases)
        EXPECT_EQ(findings("SubMenuItems = {" + lines + "}"), expected) << lines;
    EXPECT_EQ(findings(""), ": there is no table \"SubMenuItems\": the menu is empty\n");
    EXPECT_EQ(
        findings("SubMenuItems = { { name = 'M', type = 0 } } SubMenuItems[1].SubMenuItems = SubMenuItems"),
        "[1] \"M\": stays empty: its lines are those of a menu around it\n");
}

TEST_F(MenuLint, AgreesWithTheMenu) {
    random.SetSeed(1);
    for (int round = 0; round < 40; ++round) {
        count = 0;
        std::string const source = "SubMenuItems = " + RandomLines(3);
        Load(source);
        std::set<std::string> names;
        Collect(0, names);
        MenuReport const report = lint(source);
        EXPECT_EQ(report.lines, names.size()) << source;
        for (MenuReport::Finding const & finding : report.findings) {
            Words const words = Split(finding.path);
            std::string const name = words.back().substr(1, words.back().size() - 2);
            EXPECT_EQ(names.count(name), 0u) << finding.path << source;
        }
        Menu().Enable(false);
    }
    EXPECT_EQ(trace.lines, Words());
}

// Deeper than a state has room for, be it a line or a table of lines that finds none.
TEST_F(MenuLint, EndsWhereTheRoomEnds) {
    std::set<std::string> reasons;
    for (int tables = 0; tables < 2; ++tables) {
        LuaConfig state("", true);
        EXPECT_TRUE(state.RunString("SubMenuItems = {} local lines = SubMenuItems for i = 1, 10000 do "
                                    "lines[1] = { name = 'x', type = 0, SubMenuItems = {} } "
                                    "lines = lines[1].SubMenuItems end",
                                    true));
        for (int i = 0; i < tables; ++i)
            state.PushTableGlobals();
        for (MenuReport::Finding const & finding : LintMenu(state).findings)
            reasons.insert(finding.reason);
    }
    EXPECT_EQ(reasons, (std::set<std::string>{"is dropped: the state has no room for another table",
                                              "stays empty: the state has no room for another table"}));
}

TEST_F(MenuLint, TheVerbNamesFileAndPath) {
    folder.WriteFile("good.lua", "SubMenuItems = { { name = 'M', type = SubMenu } }");
    folder.WriteFile("bad.lua", "SubMenuItems = { { name = 'M', type = SubMenu, SubMenuItems = { 1 } } }");
    folder.WriteFile("broken.lua", "SubMenuItems = {");
    std::string const good = folder / "good.lua", bad = folder / "bad.lua", broken = folder / "broken.lua",
                      none = folder / "none.lua";
    ToolResult result = RunTool({"menu", "lint", good});
    EXPECT_EQ(result.code, 0);
    EXPECT_EQ(result.out, "good: " + good + ": 2 menus, 1 line\n");
    result = RunTool({"menu", "lint", bad});
    EXPECT_EQ(result.code, 1);
    EXPECT_EQ(result.out, "1 finding: " + bad + ": 2 menus, 1 line load\n" + bad +
                              ": [1] \"M\" > [1]: is dropped: it has no text \"name\"\n");
    result = RunTool({"menu", "lint", broken});
    EXPECT_EQ(result.code, 2);
    EXPECT_EQ(result.err.find("failed: " + broken + ": is no menu file that runs\ntrace: "), 0u)
        << result.err;
    EXPECT_EQ(RunTool({"menu", "lint", "--json", bad}).out,
              "{\"verdict\": \"findings\", \"file\": \"" + bad +
                  "\", \"menus\": 2, \"lines\": 1, \"findings\": [{\"path\": \"[1] \\\"M\\\" > [1]\", "
                  "\"reason\": \"is dropped: it has no text \\\"name\\\"\"}]}\n");
    EXPECT_EQ(RunTool({"menu", "lint", none}).code, 2);
}
