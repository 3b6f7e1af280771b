#include "Cross/engine/scriptconfig/LuaConfig.h"

#include "Cross/engine/filesystem/RamStream.h"
#include "Cross/engine/scriptconfig/GlobalLua.h"
#include "Cross/engine/scriptconfig/LuaConfigSave.h"
#include "Cross/engine/scriptconfig/LuaPrint.h"
#include "tests/support/LuaScarcity.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TraceCapture.h"

#include <gtest/gtest.h>
#include <lua.hpp>
#include <optional>
#include <string>
#include <vector>

namespace {

using Names = std::vector<std::string>;

// Enters each field on the way, which neither ends the walk nor changes the field.
Names walk(LuaConfig & config) {
    Names names;
    for (auto field = config.IterateBegin(); field != config.IterateEnd(); ++field) {
        auto const type = field.GetType();
        names.push_back(field.GetName());
        config.PushTable(field.GetName());
        config.PopTable();
        EXPECT_EQ(field.GetType(), type) << field.GetName();
    }
    return names;
}

double number(LuaConfig & config, char const * name) {
    double value = -1;
    config.GetNumber(name, value);
    return value;
}

bool holds(LuaConfig & config, std::string const & condition) {
    return config.RunString(("assert(" + condition + ")").c_str(), true);
}

TEST(LuaConfigTest, WalksWholeKeysThenTextsInByteOrder) {
    LuaConfig config("", false);
    ASSERT_TRUE(
        config.RunString("t = {b = 1, a = 1, B = 1, ['\\195\\164'] = 1, [''] = 1, [10] = 1, [2] = 1, [0] = "
                         "1, ['7'] = 1, f = print,"
                         " [2^53] = 1, ['long name b'] = 1, ['long name a'] = 1,"
                         // no name reaches these
                         " [-1] = 1, [1.5] = 1, [true] = 1, ['nul\\0'] = 1, [2^60] = 1, [1/0] = 1, [{}] = 1}",
                         true));
    config.PushTable("t");
    Names const expected = {"0", "2", "10",          "9007199254740992", "",        "7", "B", "a",
                            "b", "f", "long name a", "long name b",      "\xC3\xA4"};
    EXPECT_EQ(walk(config), expected);

    char name[256] = "";
    for (unsigned int i = 0; i < expected.size(); ++i) {
        EXPECT_TRUE(config.AtEntry(i, name, sizeof(name)));
        EXPECT_EQ(name, expected[i]);
    }
    EXPECT_FALSE(config.AtEntry(config.CountEntry(), name, sizeof(name)));
    EXPECT_FALSE(config.AtEntry(0, name, 0));
    ASSERT_TRUE(config.AtEntry(3, name, 5)) << "a long name is cut";
    EXPECT_STREQ(name, "9007");
}

TEST(LuaConfigTest, WalkIsASnapshotThatOutlivesItsFields) {
    LuaConfig config("", false);
    config.RunString("t = {1, 'two', {}, x = true}  weak = setmetatable({t}, {__mode = 'v'})", true);
    {
        config.PushTable("t");
        auto field = config.IterateBegin();
        config.PopTable();
        auto const second = ++field;
        ++field;
        EXPECT_EQ(field.GetType(), LuaConfig::LT_TABLE);
        config.RunString("t[2] = nil  t = nil", true);
        lua_gc(config.GetState(), LUA_GCCOLLECT, 0);
        EXPECT_STREQ(second.GetName(), "2");
        EXPECT_EQ(second.GetType(), LuaConfig::LT_NONE);
        EXPECT_EQ((++field).GetType(), LuaConfig::LT_BOOLEAN);
        EXPECT_STREQ((++ ++field).GetName(), "") << "nothing comes behind the end";
        EXPECT_FALSE(field != config.IterateEnd());
    }
    lua_gc(config.GetState(), LUA_GCCOLLECT, 0);
    EXPECT_TRUE(holds(config, "weak[1] == nil")) << "nor does it keep its table longer";
}

// For scripts: works with the cursor, and tells whether the stack is as before.
int useCursor(lua_State * L) {
    auto & config = *static_cast<LuaConfig *>(lua_touserdata(L, lua_upvalueindex(1)));
    int const height = lua_gettop(L);
    config.PushTable("inside");
    config.SetNumber("x", 1);
    config.PopTable();
    config.CountEntry();
    lua_pushboolean(L, lua_gettop(L) == height);
    return 1;
}

void bindUseCursor(LuaConfig & config) {
    lua_State * const L = config.GetState();
    lua_pushlightuserdata(L, &config);
    lua_pushcclosure(L, useCursor, 1);
    lua_setglobal(L, "use");
}

TEST(LuaConfigTest, CountFollowsEveryChange) {
    LuaConfig config("", false);
    bindUseCursor(config);
    EXPECT_EQ(config.CountEntry(), 1u);
    config.SetString("b", "text");
    EXPECT_EQ(config.CountEntry(), 2u);
    config.ClearVariable("b");
    EXPECT_EQ(config.CountEntry(), 1u);
    config.RunString("c = {1, 2}  use()  d = 1", true);
    EXPECT_EQ(config.CountEntry(), 4u);
    config.PushTable("c");
    EXPECT_EQ(config.CountEntry(), 2u);
    config.PopTable();
    EXPECT_EQ(config.CountEntry(), 4u);
}

// `key` is the one that the name reaches, as Lua source.
void expectKey(char const * name, std::string const & key) {
    SCOPED_TRACE(name);
    LuaConfig config("", false);
    config.PushTable("t");
    config.SetNumber(name, 5);
    EXPECT_TRUE(holds(config, "t[" + key + "] == 5"));
    EXPECT_EQ(walk(config), Names{name});
    EXPECT_EQ(number(config, name), 5);
    config.ClearVariable(name);
    EXPECT_TRUE(holds(config, "next(t) == nil"));
    config.PushTable(name);
    EXPECT_TRUE(holds(config, "type(t[" + key + "]) == 'table'"));
}

TEST(LuaConfigTest, CanonicalDigitsReachTheNumberKey) {
    for (char const * name : {"0", "10", "9007199254740992"})
        expectKey(name, name);
    for (char const * name :
         {"9007199254740993", "99999999999999999999", "007", "00", "+7", "7.0", " 7", "7a", "0x7", ""})
        expectKey(name, "'" + std::string(name) + "'");
}

TEST(LuaConfigTest, SetGoesToTheKeyThatExists) {
    LuaConfig config("", false);
    config.RunString("t = {['7'] = 1, [8] = 1, ['8'] = 1}", true);
    config.PushTable("t");
    config.SetNumber("7", 2);
    config.SetString("8", "x");
    EXPECT_TRUE(holds(config, "t['7'] == 2 and t[7] == nil and t[8] == 'x' and t['8'] == 1"));
    auto field = config.IterateBegin();
    std::string text;
    double value = -1;
    EXPECT_TRUE(field.GetString(text) && !field.GetNumber(value));
    EXPECT_EQ(text, "x");
    ++ ++field;
    EXPECT_TRUE(field.GetNumber(value) && !field.GetString(text)) << "a walk tells the two keys apart";
    EXPECT_EQ(value, 1);
    EXPECT_FALSE((++field).GetNumber(value) || field.GetString(text)) << "there is no value at the end";
    config.PushTable(7u);
    EXPECT_TRUE(holds(config, "type(t[7]) == 'table' and t['7'] == 2")) << "an index is always the number";
}

TEST(LuaConfigTest, EnteringCreatesWhatIsMissingAndSparesWhatIsThere) {
    LuaConfig config("", false);
    config.PushTable("a");
    config.PushTable(3u);
    EXPECT_TRUE(holds(config, "next(a[3]) == nil")) << "created at once";
    config.PushTableGlobals();
    config.SetNumber("plain", 5);
    for (int i = 0; i < 3; ++i)
        config.PopTable();

    config.PushTable("plain");
    config.PushTable("deep");
    config.PushTable(1u);
    EXPECT_EQ(config.CountEntry(), 0u);
    config.ClearVariable("x");
    EXPECT_TRUE(holds(config, "plain == 5")) << "reads and clears destroy nothing";
    config.SetNumber("x", 7);
    config.PopTable();
    config.PopTable();
    config.SetString("y", "z");
    EXPECT_TRUE(holds(config, "plain.deep[1].x == 7 and plain.y == 'z'"));
    config.RunString("plain = 5", true);
    config.SetNumber("y", 1);
    EXPECT_TRUE(holds(config, "plain == 5")) << "it has taken the value's place once";
}

TEST(LuaConfigTest, CursorIsTheLuaStack) {
    LuaConfig config("", false);
    config.RunString("t = {x = 1}  x = 2", true);
    lua_State * const L = config.GetState();
    config.PopTable(); // the globals stay at the bottom
    lua_pushnumber(L, 9);
    EXPECT_EQ(number(config, "x"), 2) << "no table on top: the globals";
    lua_getglobal(L, "t");
    EXPECT_EQ(number(config, "x"), 1);
    EXPECT_TRUE(config.RunString("return 1, 2, 3", true));
    EXPECT_FALSE(config.RunString("error({})", false));
    EXPECT_EQ(lua_gettop(L), 3);
}

TEST(LuaConfigTest, RefusedPushesTakeTheirPops) {
    TraceCapture trace;
    LuaConfig config("deep", false);
    lua_State * const L = config.GetState();
    bindUseCursor(config);
    config.RunString("t = {}  t.t = t", true); // endless
    constexpr int pushes = 9000;
    for (int i = 0; i < pushes; ++i)
        config.PushTable("t");
    int const deepest = lua_gettop(L);
    EXPECT_GT(deepest, 7900);
    EXPECT_EQ(trace.lines, Names{"SCRIPT -- State 'deep': no room to enter another table"});

    // There is still room to work, for scripts, and for functions that scripts call.
    config.SetNumber("x", 4);
    EXPECT_EQ(walk(config), (Names{"t", "x"}));
    EXPECT_TRUE(holds(config, "t.x == 4 and use() and use(1, 'two') and use({}) and inside.x == 1"));

    for (int i = deepest; i <= pushes; ++i)
        config.PopTable();
    EXPECT_EQ(lua_gettop(L), deepest);
    config.PopTable();
    config.PushTableGlobals();
    EXPECT_EQ(lua_gettop(L), deepest) << "nothing is owed any more";
}

TEST(LuaConfigTest, GettersAreStrict) {
    LuaConfig config("", false);
    config.RunString("n = 2.5  s = '1\\0'  b = false  t = {}  f = function() end", true);
    for (char const * name : {"n", "s", "b", "t", "f", static_cast<char const *>(nullptr)}) {
        std::string const kind = name ? name : "null";
        SCOPED_TRACE(kind);
        float n = 9;
        bool b = true;
        std::string s = "kept";
        char buffer[8] = "kept";
        EXPECT_EQ(LCGetFloat(config, name, n), kind == "n");
        EXPECT_EQ(n, kind == "n" ? 2.5 : 9);
        EXPECT_EQ(LCGetBool(config, name, b), kind == "b");
        EXPECT_EQ(b, kind != "b");
        bool same = true;
        EXPECT_EQ(config.GetBoolean(name, same), kind == "b");
        EXPECT_EQ(same, b);
        EXPECT_EQ(LCGetString(config, name, s), kind == "s");
        EXPECT_EQ(s, kind == "s" ? std::string("1\0", 2) : "kept");
        EXPECT_EQ(config.GetString(name, buffer, 0), kind == "s");
        EXPECT_STREQ(buffer, "kept");
        EXPECT_EQ(config.GetString(name, buffer, 2), kind == "s");
        EXPECT_STREQ(buffer, kind == "s" ? "1" : "kept");
    }
}

TEST(LuaConfigTest, UnsignedNumbersFitOrFail) {
    constexpr std::uint32_t kept = 77;
    constexpr std::pair<char const *, std::uint32_t> cases[] = {
        {"v = 3.99", 3},          {"v = -0.99", 0}, {"v = 4294967295.5", 4294967295u},
        {"v = 4294967296", kept}, {"v = -1", kept}, {"v = 0/0", kept}};
    LuaConfig config("", false);
    for (auto const & [source, expected] : cases) {
        ASSERT_TRUE(config.RunString(source, true));
        std::uint32_t value = kept;
        EXPECT_EQ(LCGetULong(config, "v", value), expected != kept) << source;
        EXPECT_EQ(value, expected) << source;
    }
}

TEST(LuaConfigTest, FloatsAndUnsignedNumbersComeBackExactly) {
    LuaConfig config("", false);
    LuaConfigSave::FilePathOnImport(config);
    EXPECT_EQ(config.CountEntry(), 0u) << "a fresh state stays empty";
    LCSetFloat(config, "f", 0.1f);
    LCSetULong(config, "u", 0xFFFFFFFF);
    float f = 0.0f;
    std::uint32_t u = 0;
    double wide = 0.0;
    EXPECT_TRUE(LCGetFloat(config, "f", f) && LCGetULong(config, "u", u) && config.GetNumber("u", wide));
    EXPECT_EQ(f, 0.1f);
    EXPECT_EQ(u, 0xFFFFFFFFu);
    EXPECT_EQ(wide, 4294967295.0);
}

TEST(LuaConfigTest, WideTextIsCutBetweenCharacters) {
    LuaConfig config("", false);
    config.SetString("s", "\xC3\xA4\xF0\x9F\x98\x80\xFF"); // U+00E4, U+1F600, none
    char16_t buffer[8] = u"k";
    EXPECT_FALSE(LCGetWString(config, "missing", buffer, 8));
    char16_t const * const texts[] = {
        u"k", u"", u"\u00E4", u"\u00E4", u"\u00E4\U0001F600", u"\u00E4\U0001F600\uFFFD"};
    for (unsigned int size = 0; size < std::size(texts); ++size) {
        EXPECT_EQ(LCGetWString(config, "s", buffer, size), size > 0);
        EXPECT_EQ(std::u16string(buffer), texts[size]) << size;
    }
}

TEST(LuaConfigTest, DataStateShowsScriptsNoMoreThanItShould) {
    constexpr char const * conditions[] = {
        // what data files use
        "string.format('%d', 3) == '3' and ('x'):rep(2) == 'xx' and ('abc'):match('b(.)') == 'c'",
        "select('#', unpack({1, 2, 3}, 2)) == 2 and select('#', unpack({}, 3, 2)) == 0 and unpack({5}) == 5",
        // the libraries are behind the globals, not in them, and stay there
        "next(_G) == nil and _G._G == _G and getmetatable(_G) == false and not pcall(setmetatable, _G, {})",
        // no code from elsewhere, no environments, no hand on the collector
        "not (load or loadstring or loadfile or dofile or require or module or package or string.dump)",
        "not (getfenv or setfenv or collectgarbage or gcinfo or newproxy or coroutine or debug or io or os)",
        // calls that would bring down the standard library
        "not pcall(unpack, {}, -2^31, 2^31 - 1) and not pcall(unpack, {}, 1, 1e300) and not unpack({}, 0/0)",
        "not pcall(string.match, ('x'):rep(1e6), ('x?'):rep(1e6))",
        "not pcall(string.gfind, ('x'):rep(1e6), ('x?'):rep(1e6))",
        "not pcall(function() local function f() return f() + 1 end f() end)"};
    for (char const * condition : conditions) {
        LuaConfig config("", false);
        EXPECT_TRUE(holds(config, condition)) << condition;
        EXPECT_EQ(config.CountEntry(), 0u) << condition;
    }
}

std::string bytecode() {
    LuaConfig config("", true);
    lua_State * const L = config.GetState();
    luaL_loadstring(L, "leak = 1");
    std::string code;
    lua_Writer const append = [](lua_State *, void const * piece, std::size_t size, void * out) {
        static_cast<std::string *>(out)->append(static_cast<char const *>(piece), size);
        return 0;
    };
    lua_dump(L, append, &code);
    return code;
}

TEST(LuaConfigTest, LoadersTakeSourceAndNoBytecode) {
    TemporaryFolder const folder;
    std::string const code = bytecode();
    folder.WriteFile("code.lua", code);
    folder.WriteFile("marked.lua", "\xEF\xBB\xBF" + code);
    folder.WriteFile("part/one.lua", "\xEF\xBB\xBF#!comment\nlocal name = ... return {loaded = name}");
    folder.WriteFile("bad.lua", "#\n\n= 1");

    LuaConfig config("", true);
    EXPECT_FALSE(config.RunString(code.c_str(), false));
    lua_State * const L = config.GetState();
    lua_pushlstring(L, code.data(), code.size());
    lua_setglobal(L, "code");
    config.SetString("folder", (folder / "").c_str());
    config.RunString("package.path = folder .. '?.txt;' .. folder .. '?.lua'", true);
    constexpr char const * conditions[] = {
        "select(2, loadstring(code)) == 'bytecode is refused'",
        "not load(function() local piece = code code = nil return piece end)",
        "not loadfile(folder .. 'code.lua') and not loadfile(folder .. 'marked.lua')",
        "not pcall(dofile, folder .. 'code.lua') and not pcall(require, 'code') and leak == nil",

        "loadstring('return 1 + 1')() == 2 and select(2, loadstring('= 1', '=name')):find('^name:1:')",
        "load(coroutine.wrap(function() coroutine.yield('return 4') coroutine.yield('2') end))() == 42",
        "loadfile(folder .. 'part/one.lua')('x').loaded == 'x' and dofile(folder .. 'part/one.lua')",
        "select(2, loadfile(folder .. 'bad.lua')):find('bad.lua:3:', 1, true)",
        "require('part.one').loaded == 'part.one' and require('part.one') == package.loaded['part.one']",
        "select(2, pcall(require, 'none')):find(\"no file '\" .. folder .. \"none.lua'\", 1, true)",
        "select(2, pcall(require, 'bad')):find('error loading module', 1, true)"};
    for (char const * condition : conditions)
        EXPECT_TRUE(holds(config, condition)) << condition;
}

TEST(LuaConfigTest, RunTellsWhyWhenAsked) {
    TraceCapture trace;
    LuaConfig config("settings", false);
    EXPECT_FALSE(config.RunString("x = = 1", false));
    EXPECT_TRUE(trace.lines.empty());
    EXPECT_FALSE(config.RunString("error('why', 0)", true));
    EXPECT_FALSE(config.RunString("error({})", true));
    EXPECT_EQ(trace.lines,
              (Names{"SCRIPT -- State 'settings': why", "SCRIPT -- State 'settings': the error is no text"}));
    EXPECT_TRUE(config.RunString(nullptr, true));
}

// What is done with the state while memory runs out, and holds for its stack all the same.
void useUntilMemoryEnds(LuaConfig & config) {
    lua_State * const L = config.GetState();
    config.SetString("text", "a text that is new to this state");
    config.PushTable("created");
    int const height = lua_gettop(L);
    config.PushTableGlobals();
    config.PopTable();
    EXPECT_EQ(lua_gettop(L), height) << "a pop undoes its own push, whichever were refused";
    config.PushTable(4u);
    config.SetNumber("inner", 2);
    config.PopTable();
    config.PopTable();
    config.PushTable("plain");
    config.PushTable("below");
    config.SetNumber("x", 3);
    config.PopTable();
    config.PopTable();
    for (auto field = config.IterateBegin(); field != config.IterateEnd(); ++field)
        field.GetType();
    config.RunString("script = {}", true);
    config.ClearVariable("full");
    RamStream stream;
    stream.Open(0, c_streamWrite);
    LuaConfigSave::SaveLua(config, true, true, stream);
    EXPECT_EQ(lua_gettop(L), 1);
}

TEST(LuaConfigTest, NoMemoryIsNoCrashAndNoDamage) {
    bool everything = false;
    for (unsigned int allowed = 0; !everything; ++allowed) {
        SCOPED_TRACE(allowed);
        ASSERT_LT(allowed, 1000u);
        TraceCapture trace;
        LuaConfig config("small", false);
        config.RunString("plain = 1  full = {}", true);
        {
            LuaScarcity const scarcity(config.GetState(), allowed);
            useUntilMemoryEnds(config);
            everything = !scarcity.hasFailed;
        }
        EXPECT_EQ(trace.lines.empty(), everything);
        config.SetString("text", "again");
        EXPECT_TRUE(holds(config, "text == 'again' and (plain == 1 or type(plain) == 'table')"));
        EXPECT_TRUE(!everything ||
                    holds(config, "created[4].inner == 2 and plain.below.x == 3 and script and not full"));
    }
}

TEST(LuaConfigTest, ErrorsOfFinalizersEndHere) {
    TraceCapture trace;
    LuaConfig config("", true);
    ASSERT_TRUE(config.RunString("collectgarbage('stop') for i = 1, 100 do"
                                 " getmetatable(newproxy(true)).__gc = function() error('finalizer', 0) end "
                                 "end collectgarbage('restart')",
                                 true));
    for (int i = 0; i < 2000; ++i) {
        // What the name takes makes a finalizer due, which runs before the text is there.
        std::string const text = std::to_string(i);
        std::string const name = std::string(2000, 'x') + text;
        config.SetString(name.c_str(), text.c_str());
        std::string value;
        ASSERT_TRUE(config.GetString(name.c_str(), value)) << "nothing is lost to it";
        ASSERT_EQ(value, text);
    }
    ASSERT_FALSE(trace.lines.empty());
    EXPECT_EQ(trace.lines[0], "SCRIPT -- State '': finalizer");
}

TEST(LuaConfigTest, NamesStayRightWhenMoreAreReadThanAreKept) {
    LuaConfig config("", false);
    config.RunString("for i = 1, 3000 do _G['field' .. i] = i end", true);
    for (int i = 1; i <= 6000; ++i)
        ASSERT_EQ(number(config, ("field" + std::to_string(i % 3000 + 1)).c_str()), i % 3000 + 1);
}

TEST(LuaPrintTest, LinesGoToTheSinkOrElseToTheOutput) {
    std::string printed;
    luaxSetPrintSink([](char const * text, void * to) { *static_cast<std::string *>(to) = text; }, &printed);
    luax_print(nullptr, "%s %d", "line", 7);
    luaxSetPrintSink(nullptr, nullptr);
    EXPECT_EQ(printed, "line 7");
    testing::internal::CaptureStdout();
    luax_print(nullptr, "%s", "%n");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "%n\n");
}

TEST(GlobalLuaTest, IsOneScriptStateUntilItIsShutDown) {
    GlobalLua::GetState()->SetNumber("x", 1);
    EXPECT_TRUE(holds(*GlobalLua::GetState(), "x == 1 and os.time()"));
    EXPECT_EQ(walk(*GlobalLua::GetState()), Names{"x"}) << "but for what the constructor put there";
    GlobalLua::Shutdown();
    GlobalLua::Shutdown();
    EXPECT_EQ(GlobalLua::GetState()->GetType("x"), LuaConfig::LT_NONE);
}

} // namespace
