#include "Cross/engine/scriptconfig/LuaConfigSave.h"

#include "Cross/engine/scriptconfig/LuaConfig.h"
#include "tests/support/CommaLocale.h"
#include "tests/support/FailingStream.h"
#include "tests/support/StreamBytes.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TraceCapture.h"

#include <gtest/gtest.h>
#include <lua.hpp>
#include <string>
#include <string_view>

namespace {

constexpr unsigned int c_endless = 0xFFFFFFFF;

bool load(LuaConfig & config, std::string_view source) {
    FilledStream stream(source);
    return LuaConfigSave::LoadLua(config, stream);
}

std::string save(LuaConfig & config, bool tables = true, bool plain = true) {
    FilledStream memory;
    FailingStream stream(memory, c_endless);
    EXPECT_TRUE(LuaConfigSave::SaveLua(config, tables, plain, stream));
    EXPECT_FALSE(stream.IsDiscarded());
    return memory.Content();
}

std::string saveSource(std::string const & source) {
    LuaConfig config("", false);
    EXPECT_TRUE(load(config, source));
    return save(config);
}

TEST(LuaConfigSaveTest, WritesSortedSource) {
    constexpr char const * source = R"lua(
local shared = {x = 'ä'}
t = {z = true, a = 'say "hi"\\\n\0009\127\r', B = {}, ['end'] = 1, ['no name'] = 2, [''] = 3, ['1'] = 'text',
     [1] = 'number', [2] = false, [-3] = 0.1, [2.5] = 1e300, [1/0] = -1e-7, [true] = 1/0, [false] = -1/0,
     nan = 0/0, zero = 0, negative = -1/(1/0), large = 2^53 - 1, larger = 2^53, nested = {shared, shared},
     f = print, [{}] = 1, ['key\0'] = 123456789.125})lua";
    EXPECT_EQ(saveSource(source), R"lua(t = {
	[-3] = 0.1,
	[1] = "number",
	[2] = false,
	[2.5] = 1e+300,
	[1/0] = -1e-07,
	[""] = 3,
	["1"] = "text",
	B = {},
	a = "say \"hi\"\\\010\0009\127\013",
	["end"] = 1,
	["key\000"] = 123456789.125,
	large = 9007199254740991,
	larger = 9007199254740992,
	nan = 0/0,
	negative = -1/(1/0),
	nested = {
		[1] = {
			x = "ä",
		},
		[2] = {
			x = "ä",
		},
	},
	["no name"] = 2,
	z = true,
	zero = 0,
	[false] = -1/0,
	[true] = 1/0,
}
)lua");
}

TEST(LuaConfigSaveTest, FlagsSelectTablesAndPlainGlobals) {
    LuaConfig config("", true);
    ASSERT_TRUE(load(config,
                     "b = 1  a = {x = 1}  c = 'text'  f = function() end  _G['odd name'] = true  _G[3] = {}"
                     "  print = 5  _G._G = 7"));
    std::string const tables = "_G[3] = {}\na = {\n\tx = 1,\n}\n";
    std::string const plain = "b = 1\nc = \"text\"\n_G[\"odd name\"] = true\nprint = 5\n_G = 7\n";
    config.PushTable("a"); // wherever the cursor is, it is the globals that are written
    EXPECT_EQ(save(config, true, false), tables);
    EXPECT_EQ(save(config, false, true), plain);
    EXPECT_EQ(save(config, true, true), tables + plain);
    EXPECT_EQ(config.CountEntry(), 1u) << "the cursor stays";
}

// Numbers of every size and texts of every byte, from a generator of its own.
constexpr char const * c_randomTable = R"lua(
local seed = 1
local function random(n) seed = seed * 16807 % 2147483647 return seed % n end
t = {}
for i = 1, 3000 do
    t[i] = math.ldexp(random(2^30) - 2^29, random(2100) - 1100) * (random(2^30) + 1)
    t[-i] = string.char(random(256), random(256), 48 + random(10))
end
)lua";

TEST(LuaConfigSaveTest, RandomValuesComeBackEqual) {
    CommaLocale const comma; // changes no number
    LuaConfig read("", false);
    ASSERT_TRUE(load(read, saveSource(c_randomTable)));
    EXPECT_TRUE(load(read, "local loaded = t " + std::string(c_randomTable) +
                               "for k, v in pairs(t) do assert(loaded[k] == v, k) end"));
}

TEST(LuaConfigSaveTest, LargeAndDeepTablesLoadAgain) {
    constexpr std::tuple<char const *, char const *, char const *> cases[] = {
        // rule, source, check of the state read back
        {"more fields and globals than a function has constants",
         "t = {} for i = 1, 132000 do t['k' .. i] = i + 0.5 _G['k' .. i] = i + 0.5 end",
         "t.k1 == 1.5 and t.k132000 == 132000.5 and k1 == 1.5 and k132000 == 132000.5"},
        {"names that a block uses itself",
         "t = {t = {}, ['end'] = {}} for i = 1, 60000 do t.t[i] = i t['end'][-i] = i end",
         "#t.t == 60000 and t['end'][-60000] == 60000"},
        {"deep tables, behind more constants than an instruction reaches",
         "for i = 1, 300 do _G['a' .. i] = i .. 'x' end"
         " function make(depth) return depth == 1 and {x = 1} or {['key' .. depth] = make(depth - 1)} end"
         " t126, t150 = make(126), make(150)",
         "(function() for _, depth in ipairs({126, 150}) do local t = _G['t' .. depth]"
         " for i = depth, 2, -1 do t = t['key' .. i] end assert(t.x == 1) end return true end)()"},
        {"every level large",
         "t = {} local inner = t for i = 1, 149 do inner.deep = {} inner = inner.deep end"
         " for i = 1, 60000 do inner[i] = i end",
         "(function() local inner = t while inner.deep do inner = inner.deep end return #inner == 60000 "
         "end)()"},
    };
    for (auto const & [rule, made, check] : cases) {
        SCOPED_TRACE(rule);
        std::string const source = saveSource(made);
        LuaConfig read("", false);
        ASSERT_TRUE(load(read, source));
        EXPECT_TRUE(read.RunString((std::string("assert(") + check + ")").c_str(), true));
    }
}

TEST(LuaConfigSaveTest, WhatCannotBeWrittenIsDiscarded) {
    constexpr std::pair<char const *, char const *> cases[] = {
        {"t = {} t.a = {b = t}", "a table contains itself"},
        {"t = _G", "a table contains itself"},
        {"t = {} local inner = t for i = 2, 151 do inner[1] = {} inner = inner[1] end",
         "tables are nested deeper than 150"},
        {"a = {} for i = 2, 100 do a = {a} end t = {a} for i = 2, 51 do t = {t} end",
         "tables are nested deeper than 150"},
        // 2^60 fields from 60 tables
        {"t = {} for i = 1, 60 do t = {t, t} end", "there are more fields than a stream can hold"},
    };
    for (auto const & [source, reason] : cases) {
        SCOPED_TRACE(source);
        LuaConfig config("", false);
        ASSERT_TRUE(load(config, source));
        TraceCapture trace;
        FilledStream memory;
        FailingStream stream(memory, c_endless);
        EXPECT_FALSE(LuaConfigSave::SaveLua(config, true, true, stream));
        EXPECT_TRUE(stream.IsDiscarded());
        EXPECT_EQ(trace.lines,
                  std::vector<std::string>{std::string("SCRIPT -- Failed to save 'RamStream': ") + reason});
        config.RunString("a = nil  t = 1", true);
        EXPECT_EQ(save(config), "t = 1\n") << "the state is as good as before";
    }
}

class FlushlessStream : public FailingStream {
public:
    using FailingStream::FailingStream;

    bool Flush() override { return false; }
};

TEST(LuaConfigSaveTest, FailingStreamIsDiscarded) {
    LuaConfig config("", false);
    load(config, "for i = 1, 20000 do _G['name' .. i] = i end");
    for (unsigned int limit : {0u, 100000u, c_endless}) {
        SCOPED_TRACE(limit);
        TraceCapture trace;
        FilledStream memory;
        FlushlessStream stream(memory, limit);
        EXPECT_FALSE(LuaConfigSave::SaveLua(config, true, true, stream));
        EXPECT_TRUE(stream.IsDiscarded());
        EXPECT_EQ(trace.lines, std::vector<std::string>{
                                   "SCRIPT -- Failed to save 'RamStream': the stream cannot be written"});
    }
}

TEST(LuaConfigSaveTest, LoadsTextOnly) {
    using namespace std::string_view_literals;
    constexpr std::pair<std::string_view, bool> cases[] = {
        {"x = 1"sv, true},
        {""sv, true},
        {"\xEF\xBB\xBFx = 1"sv, true},
        {"#!first line\nx = 1"sv, true},
        {"#"sv, true},
        // bytecode, behind what is skipped too
        {"\xEF\xBB\xBF\x1BLuaQ"sv, false},
        {"\x1B"sv, false},
        // errors
        {"x = 1 error('run')"sv, false},
        {"\xEF\xBB\xBF\xEF\xBB\xBFx = 1"sv, false},
        {"x = \0"sv, false},
    };
    for (auto const & [source, loads] : cases) {
        SCOPED_TRACE(testing::PrintToString(source));
        TraceCapture trace;
        LuaConfig config("", false);
        config.PushTable("cursor");
        EXPECT_EQ(load(config, source), loads);
        EXPECT_EQ(trace.lines.size(), loads ? 0u : 1u);
        EXPECT_EQ(lua_gettop(config.GetState()), 2);
    }
}

TEST(LuaConfigSaveTest, RestOfAStreamIsRunWhollyOrNotAtAll) {
    TraceCapture trace;
    LuaConfig config("", false);
    FilledStream stream("rubbish x = 5");
    stream->SetPos(8);
    EXPECT_TRUE(LuaConfigSave::LoadLua(config, stream));
    EXPECT_TRUE(LuaConfigSave::LoadLua(config, stream)) << "nothing is left";
    EXPECT_EQ(config.GetType("x"), LuaConfig::LT_NUMBER);

    FilledStream memory("y = 5\n          ");
    FailingStream damaged(memory, 6);
    EXPECT_FALSE(LuaConfigSave::LoadLua(config, damaged));
    EXPECT_EQ(config.GetType("y"), LuaConfig::LT_NONE);
    EXPECT_EQ(trace.lines,
              std::vector<std::string>{"SCRIPT -- Failed to load 'RamStream': cannot read all of it"});
}

TEST(LuaConfigSaveTest, FailedLoadsNameTheFile) {
    TemporaryFolder const folder;
    LuaConfig config("", false);
    TraceCapture trace;
    folder.WriteFile("wrong.lua", "x = 1\nx = = 2");
    EXPECT_FALSE(LuaConfigSave::LoadLua(config, (folder / "none.lua").c_str()));
    EXPECT_FALSE(LuaConfigSave::LoadLua(config, (folder / "wrong.lua").c_str()));
    EXPECT_FALSE(LuaConfigSave::LoadLua(config, static_cast<char const *>(nullptr)));
    ASSERT_EQ(trace.lines.size(), 3u);
    EXPECT_EQ(trace.lines[0], "SCRIPT -- Failed to load '" + folder / "none.lua" + "': cannot open the file");
    EXPECT_NE(trace.lines[1].find("wrong.lua:2:"), std::string::npos) << trace.lines[1];
}

} // namespace
