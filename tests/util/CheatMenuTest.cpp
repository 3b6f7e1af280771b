// How menus load, what their lines do, and that scripts may do what they like.

#include "tests/util/CheatMenuSupport.h"

#include <cstring>

namespace {

using Lines = std::vector<std::string>;

std::string const c_getFloat = "CheatMenu: error running float get-function "
                               "'g_cheat_value_that_nobody_will_ever_use=";

// A line whose only sign of life is the letter that its command appends to `log`.
std::string command(std::string const & name) {
    return "{ name = '" + name + "', type = Command, command = 'log = log .. \"" + name + "\"' },";
}

std::string variable(std::string const & name, std::string const & rest) {
    return "{ name = '" + name + "', type = Variable, " + rest + " },";
}

// A menu of one line of a float with these functions.
std::string floatLine(std::string const & get, std::string const & set) {
    return variable("v", "var_type = Float, get = [[" + get + "]], set = [[" + set + "]]");
}

} // namespace

TEST_F(CheatMenuTest, ComesAndGoesOnce) {
    CheatMenu * const menu = CheatMenu::Instance();
    EXPECT_FALSE(CheatMenu::Initialize());
    EXPECT_EQ(CheatMenu::Instance(), menu);
    EXPECT_FALSE(menu->IsEnabled());
    EXPECT_TRUE(CheatMenu::Shutdown());
    EXPECT_EQ(CheatMenu::Instance(), nullptr);
    EXPECT_FALSE(CheatMenu::Shutdown());

    EXPECT_EQ(CheatMenu::s_emptyItem.command, "NotInitialized");
    EXPECT_EQ(Value("SubMenu .. Command .. Variable .. Separator .. Boolean .. Float"), "012301");
}

TEST_F(CheatMenuTest, TakesGoodLinesAndDropsOthers) {
    std::pair<std::string, char const *> const cases[] = {
        {"", "Empty! "},
        // number keys come first, then names in byte order
        {"b = " + command("b") + "B = " + command("B") + "[3] = " + command("3") + "[0] = " + command("0"),
         "0 3 B b "},
        // keys that no name reaches
        {"[-1] = " + command("x") + "[1.5] = " + command("x") + "[true] = " + command("x"), "Empty! "},
        // every line has a name, which is a text
        {"1, 'x', {}, { type = Command, command = '' }, { name = 7, type = 1, command = '' }," + command("a"),
         "a "},
        {"{ name = '', type = Command, command = '' }, { type = Separator }", "Empty! "},
        // and a number as its type, whose fraction does not count
        {"{ name = 'x' }, { name = 'x', type = '1', command = '' }, { name = 'x', type = 0/0 },"
         "{ name = 'a', type = 1.9, command = '' }, { name = 'b', type = -0.9 }, { name = 'c', type = 1/0 }",
         "a b c "},
        // only a command needs more than that
        {"{ name = 'x', type = Command }, { name = 'x', type = Command, command = 7 },"
         "{ name = 'a', type = 7 }, { name = 'b', type = Variable, var_type = 9 }",
         "a b "},
        // what is not good of a submenu is lost, and nothing else
        {"{ name = 'a', type = SubMenu, SubMenuItems = 7 }," + command("b"), "a b "},
    };
    for (auto const & [lines, texts] : cases) {
        LoadLines(lines);
        EXPECT_EQ(Texts(), texts) << lines;
    }
    EXPECT_EQ(trace.lines, Lines());
}

TEST_F(CheatMenuTest, AFileThatSetsNoLinesHasNone) {
    LoadLines(command("a"));
    for (char const * const source : {"", "SubMenuItems = 7", "local SubMenuItems = {}"}) {
        Load(source);
        EXPECT_EQ(Texts(), "Empty! ") << source;
    }
    EXPECT_EQ(trace.lines, Lines());
    LoadLines(command("a"));
    EXPECT_EQ(Texts(), "a ") << "back in the globals";

    // What cannot be run leaves the globals as they were.
    for (char const * const source : {"SubMenuItems = {", "SubMenuItems = {} error('x')"}) {
        trace.lines.clear();
        Load(source);
        EXPECT_EQ(Texts(), "Empty! ") << source;
        EXPECT_EQ(trace.lines.back(), "CheatMenu - Can't find file '" + File() + "'");
        EXPECT_EQ(Value("SubMenuItems[1].name"), "a");
    }
    Menu().LoadCheatMenu(nullptr, true);
    EXPECT_EQ(trace.lines.back(), "CheatMenu - Can't find file ''");
}

TEST_F(CheatMenuTest, TheKeysWalkTheTree) {
    LoadLines(command("A") + "{ name = '-', type = Separator }," +
              "{ name = 'M', type = SubMenu, SubMenuItems = {" + command("B") + command("C") +
              "    { name = 'E', type = SubMenu } } }, { name = 'N', type = SubMenu }");
    Run("log = ''");

    std::tuple<char const *, char const *, char const *> const cases[] = {
        // keys, log, texts
        {"a", "A", "A M N "},
        {"r", "A", "A M N "},                    // right runs nothing
        {"naaaara", "A", "A M N "},              // neither does a separator
        {"na", "A", "A M N B C E "},             // and is no obstacle
        {"apapa", "AB", "A M N B C E Empty! "},  // up from the first to the last, which opens
        {"npppna", "AB", "A M N B C E Empty! "}, // no line to run
        {"l", "AB", "A M N B C E "},             // left on none goes back
        {"npa", "AB", "A M N B C E Empty! "},    // to the same line
        {"bna", "ABB", "A M N B C E "},          // down from the last to the first
        {"l", "ABB", "A M N "},
        {"nna", "ABBA", "A M N "},
        {"pr", "ABBA", "A M N Empty! "},
        {"b", "ABBA", "A M N "},
    };
    EXPECT_EQ(Texts(), "A M N ");
    for (auto const & [keys, log, texts] : cases) {
        Press(keys);
        EXPECT_EQ(Value("log"), log) << keys;
        EXPECT_EQ(Texts(), texts) << keys;
    }
    // Closed by left at the top; then no key does anything, and it opens where it was.
    Press("pprl");
    EXPECT_FALSE(Menu().IsEnabled());
    Press("nparlb");
    EXPECT_EQ(Value("log"), "ABBA");
    Menu().Toggle();
    Press("na");
    EXPECT_EQ(Texts(), "A M N B C E ");
}

TEST_F(CheatMenuTest, VariablesAreShownAndChanged) {
    Run("on, speed, odd = true, 9.5, ''");
    std::string const limits = "min = 2, max = 10, stepsize = 0.25, ";
    LoadLines(variable("on", "get = 'on', set = 'on = %s', stepsize = 5") +
              variable("speed", "var_type = 1.5, " + limits + "get = 'speed', set = 'speed = %.2f'") +
              variable("plain", "var_type = Float, get = 'speed', set = 'speed = %f'") +
              variable("other", "var_type = 2, get = 'error()', set = 'odd = 1'"));

    std::pair<char const *, char const *> const cases[] = {
        {"a", "false 9.5"},        {"rl", "false 9.5"}, {"l", "true 9.5"},
        {"na", "true 9.5"},                             // an action does nothing to a float
        {"r", "true 9.75"},        {"rrr", "true 10"},  // at its limit
        {"ll", "true 9.5"},        {"nr", "true 10.5"}, // other limits, and steps of 1
        {"pr", "true 10"},                              // back within them by any step
        {"nlllllllllp", "true 1"}, {"l", "true 2"},     {"nnral", "true 2"}, // kinds that nobody knows
        {"nblra", "true 2"},                                                 // a closed menu
    };
    for (auto const & [keys, values] : cases) {
        Press(keys);
        EXPECT_EQ(Value("tostring(on) .. ' ' .. speed"), values) << keys;
    }
    Menu().Enable(true);
    EXPECT_EQ(Texts(), "on speed 2.000 plain 2.000 other ");
    Run("speed = 0/0");
    Press("nr");
    EXPECT_EQ(Value("speed"), "2") << "what is not above the least is the least";
    EXPECT_EQ(Value("odd .. tostring(g_cheat_value_that_nobody_will_ever_use)"), "nil");
    EXPECT_EQ(trace.lines, Lines());
}

TEST_F(CheatMenuTest, WhatFailsIsTraced) {
    std::tuple<char const *, char const *, bool> const cases[] = {
        {"7", "7.000", false},
        // values of another kind count as none
        {"'7'", "0.000", false},
        {"nil", "0.000", false},
        {"", "0.000", true},
        {"(", "0.000", true},
        {"error({})", "0.000", true},
    };
    for (auto const & [get, shown, fails] : cases) {
        trace.lines.clear();
        LoadLines(floatLine(get, ""));
        EXPECT_EQ(Texts(), "v " + std::string(shown) + " ");
        EXPECT_EQ(trace.lines, fails ? Lines{c_getFloat + get + "'"} : Lines()) << get;
    }
    trace.lines.clear();
    LoadLines(variable("b", "get = 'nobody()', set = 'error(%s)'"));
    Press("a");
    LoadLines("{ name = 'c', type = Command, command = 'error(1)' }");
    Press("a");
    EXPECT_EQ(trace.lines, (Lines{"CheatMenu: error running boolean get-function "
                                  "'g_cheat_value_that_nobody_will_ever_use=nobody()'",
                                  "CheatMenu: error running boolean set-function 'error(true)'",
                                  "CheatMenu: error running function 'error(1)'"}));
}

TEST_F(CheatMenuTest, ASetFunctionTakesOneArgumentOfItsKind) {
    struct Case {
        char const * set;
        char const * result; // of the step from 1 to 2, or of the switch from true to false
    };

    Case const floats[] = {
        {"s(%f)", "2"},
        {"s('%08.3lf')", "0002.000"},
        {"s('%-4.gx')", "2   x"},
        {"s('%+e')", "+2.000000e+00"},
        {"s('%A')", "0X1P+1"},
        // a statement may do without it, and say per cent
        {"s('100%%')", "100%"},
        {"s('%%%G%%')", "%2%"},
        {"s(1)", "1"},
        // what would read another argument does not run
        {"s('%s')", nullptr},
        {"s('%d')", nullptr},
        {"s('%n')", nullptr},
        {"s('%*f')", nullptr},
        {"s('%.*f')", nullptr},
        {"s('%1$f')", nullptr},
        {"s('%Lf')", nullptr},
        {"s('%llf')", nullptr},
        {"s('%f%f')", nullptr},
        {"s('%f') -- %", nullptr},
        {"s('%1000.0f')", nullptr},
        {"s('%.1000f')", nullptr},
        {"s('%5%')", nullptr},
    };
    Case const booleans[] = {
        {"s(%s)", "false"},     {"s('%-7.2s')", "fa     "}, {"s('%%')", "%"},       {"s('%f')", nullptr},
        {"s('%d')", nullptr},   {"s('%ls')", nullptr},      {"s('%07s')", nullptr}, {"s('%*s')", nullptr},
        {"s('%s%s')", nullptr}, {"s('%n')", nullptr},       {"s() --%-", nullptr},
    };
    Run("function s(value) result = value end");
    auto const check = [this](Case const & test, char const * kind, std::string const & rest) {
        trace.lines.clear();
        Run("result = nil");
        LoadLines(variable("v", "set = [[" + std::string(test.set) + "]], " + rest));
        Press("r");
        EXPECT_EQ(Value("result"), test.result ? test.result : "nil") << test.set;
        std::string const error =
            "CheatMenu: error running " + std::string(kind) + " set-function '" + test.set;
        EXPECT_EQ(trace.lines, test.result ? Lines() : Lines{error + "'"});
    };
    for (Case const & test : floats)
        check(test, "float", "var_type = Float, get = '1'");
    for (Case const & test : booleans)
        check(test, "boolean", "get = 'true'");
}

TEST_F(CheatMenuTest, ReloadsAtTheEndOfAFrame) {
    LoadLines(command("A") + command("B") + command("C"));
    Press("p");
    folder.WriteFile("menu.lua", "menu_reload() SubMenuItems = {" + command("D") + command("E") + "}");
    Run("log = ''");
    Menu().Reload();
    EXPECT_EQ(trace.lines, Lines());
    EXPECT_EQ(Texts(), "A B C ") << "the frame is drawn first";
    EXPECT_EQ(Texts(), "D E ");
    EXPECT_EQ(trace.lines, Lines{"Cheatmenu: Reloaded"}) << "a file that asks for it while it runs has it";
    Press("a");
    EXPECT_EQ(Value("log"), "E") << "a selection behind the end is on the last line";

    // Without its file, closed, and once.
    trace.lines.clear();
    std::filesystem::remove(File());
    Menu().Enable(false);
    Menu().Reload();
    Frame();
    Frame();
    ASSERT_EQ(trace.lines.size(), 3u);
    EXPECT_EQ(trace.lines[1], "CheatMenu - Can't find file '" + File() + "'");
    EXPECT_EQ(trace.lines[2], "Cheatmenu: Reloaded");

    // An empty menu's selection goes anywhere, and a name can wait for its file.
    Menu().Enable(true);
    Press("ppp");
    EXPECT_EQ(Texts(), "Empty! ");
    folder.WriteFile("other.lua", "SubMenuItems = {" + command("F") + command("G") + "}");
    Menu().LoadCheatMenu((folder / "other.lua").c_str(), false);
    EXPECT_EQ(Texts(), "Empty! ");
    Menu().Reload();
    Frame();
    Press("a");
    EXPECT_EQ(Texts() + Value("log"), "F G EG");
}

TEST_F(CheatMenuTest, TablesThatMeetThemselvesStayEmpty) {
    Load("SubMenuItems = { { name = 'M', type = SubMenu } }"
         "SubMenuItems[1].SubMenuItems = SubMenuItems");
    Press("rr");
    EXPECT_EQ(Texts(), "M Empty! ");
    // The same lines beside each other are no circle.
    Load("local lines = { { name = 'x', type = Separator }, { name = 'a', type = Command, command = '' } }"
         "SubMenuItems = { { name = 'M', type = SubMenu, SubMenuItems = lines },"
         "                 { name = 'N', type = SubMenu, SubMenuItems = lines } }");
    Press("r");
    EXPECT_EQ(Texts(), "M N a ");
    Press("lnr");
    EXPECT_EQ(Texts(), "M N a ");
}

TEST_F(CheatMenuTest, LargeMenusLoadWhole) {
    Load("SubMenuItems = {} for i = 1, 10000 do SubMenuItems[i] = { name = i .. '', type = Separator } end "
         "SubMenuItems[10001] = { name = ('x'):rep(10000), type = Command, command = 'ran = true' }");
    EXPECT_EQ(Texts(), std::string(10000, 'x') + " ");
    Press("pa");
    EXPECT_EQ(Value("ran"), "true");

    std::string const nested = " SubMenuItems = {} local lines = SubMenuItems for i = 1, depth do "
                               "lines[1] = { name = i .. '', type = SubMenu, SubMenuItems = {} } "
                               "lines = lines[1].SubMenuItems end";
    // Two tables per menu: beyond some 4,000 the state has no room for more.
    for (int const depth : {1000, 10000}) {
        Load("depth = " + std::to_string(depth) + nested);
        Press(std::string(1000, 'r'));
        std::string const texts = Texts();
        EXPECT_NE(texts.find(" 999 1000 "), std::string::npos) << depth;
        EXPECT_EQ(texts.ends_with(" 1000 Empty! "), depth == 1000);
    }
    Press(std::string(9000, 'r'));
    EXPECT_TRUE(Texts().ends_with(" Empty! "));
}

// What scripts do to the menu that runs them: the frame or the key ends, and nothing of the old lines is
// used.
TEST_F(CheatMenuTest, ScriptsMayTakeTheMenuAway) {
    struct Case {
        char const * act;
        char const * texts; // of the next frame; none when there is no menu
    };

    std::string const other = folder / "other.lua";
    folder.WriteFile("other.lua",
                     "SubMenuItems = { { name = 'new', type = Separator }, { name = 'b', type = 7 } }");
    Case const cases[] = {
        {"menu_load(other)", "b "},   {"menu_load('nowhere')", "Empty! "},
        {"menu_reload()", "M x "}, // at the end of the frame, which has closed the submenu
        {"menu_toggle()", nullptr},   {"menu_back() menu_back()", nullptr},
        {"menu_shutdown()", nullptr},
    };
    Run("other = '" + other + "' function act() end function get() act() return 1 end");
    auto const load = [this](Case const & test, std::string const & line) {
        CheatMenu::Initialize();
        LoadLines("{ name = 'M', type = SubMenu, SubMenuItems = {" + line + command("x") + "} }," +
                  command("x"));
        Press("r");
        Run("function act() act = function() end " + std::string(test.act) + " end");
    };
    auto const check = [this](Case const & test, std::string const & context) {
        bool const isOpen = CheatMenu::Instance() && Menu().IsEnabled();
        EXPECT_EQ(isOpen, test.texts != nullptr) << context << test.act;
        if (!isOpen)
            return;
        Frame();
        EXPECT_EQ(Texts(), test.texts) << context << test.act;
    };
    for (Case const & test : cases) {
        for (std::string const & line : {floatLine("get()", ""), variable("v", "get = 'get() == 1'")}) {
            load(test, line);
            std::string const drawn = Drawn();
            bool const goesOn = drawn.rfind("\"text\":\"x\"") > drawn.find("\"text\":\"v\"");
            EXPECT_EQ(goesOn, std::strcmp(test.act, "menu_reload()") == 0) << line << test.act;
            check(test, "get while drawn: " + line);
        }
        for (char const * const key : {"l", "r"}) {
            load(test, floatLine("get()", "set = %f"));
            Run("set = nil");
            Press(key);
            EXPECT_EQ(Value("set"), key[0] == 'l' ? "0" : "2");
            check(test, "float get: ");
            load(test, variable("v", "get = 'true', set = 'get(%s)'"));
            Press(key);
            check(test, "boolean set: ");
        }
        load(test, "{ name = 'c', type = Command, command = 'act() error()' },");
        Press("a");
        EXPECT_EQ(trace.lines.back(), "CheatMenu: error running function 'act() error()'");
        check(test, "command: ");
    }
}

TEST_F(CheatMenuTest, AMenuFileMayLoadAnotherOrShutTheMenuDown) {
    folder.WriteFile("other.lua", "SubMenuItems = {" + command("new") + "}");
    Load("menu_load('" + folder / "other.lua" + "') SubMenuItems = {" + command("old") + "}");
    EXPECT_EQ(Texts(), "new ");
    Load("menu_load('" + File() + "')");
    EXPECT_EQ(Texts(), "Empty! ") << "a file that loads itself ends where Lua has enough";
    LoadLines(command("a"));
    folder.WriteFile("menu.lua", "menu_shutdown() error(1)");
    trace.lines.clear();
    Menu().Reload();
    Frame();
    EXPECT_EQ(CheatMenu::Instance(), nullptr);
    ASSERT_EQ(trace.lines.size(), 3u);
    EXPECT_EQ(trace.lines[1], "CheatMenu - Can't find file '" + File() + "'");
}
