#include "Cross/Util/lua/LuaBindingObj.h"

#include "Cross/Util/Inv.h"
#include "Cross/Util/lua/LuaLibNames.h"
#include "Cross/engine/scriptconfig/LuaConfig.h"
#include "Cross/engine/scriptconfig/LuaLibMan.h"
#include "Cross/engine/scriptconfig/LuaLibrary.h"
#include "samples/inventory/Inventory.h"
#include "tests/support/AliasedFolder.h"
#include "tests/support/LuaScarcity.h"

#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <sstream>
#include <utility>
#include <vector>

namespace {

using Texts = std::vector<std::string>;

// What happened: calls with their arguments, and libraries with what they were asked.
Texts s_events;

// Notes the values, with blanks between them.
template <class... Values>
void take(Values... values) {
    std::ostringstream text;
    text << std::boolalpha;
    char const * blank = "";
    ((text << std::exchange(blank, " ") << values), ...);
    s_events.push_back(text.str());
}

void takeAll(char const * text, float number, bool flag, int whole, unsigned int count) {
    take(text, number, flag, whole, count);
}

void takeNothing() { s_events.push_back("nothing"); }

bool isPositive(float number) { return number > 0.0f; }

bool takeEight(char const * a, float b, float c, float d, char const * e, int f, int g, int h) {
    take(a, b, c, d, e, f, g, h);
    return true;
}

void leaveSomething() { lua_pushnumber(LuaBinding::GetContext(), 1.0); }

bool dropSomething(float) {
    lua_pop(LuaBinding::GetContext(), 1);
    return true;
}

void throwBinding() { throw LuaBinding::Exception("%s%d", std::string(2000, 'x').c_str(), 7); }

void throwOther() { throw std::range_error("100%s"); }

void raiseLua() { luaL_error(LuaBinding::GetContext(), "raised"); }

// Calls another bound function, which must not change whose call this is.
void nest() {
    lua_State * const state = LuaBinding::GetContext();
    lua_getglobal(state, "takeNothing");
    lua_call(state, 0, 0);
    s_events.push_back(LuaBinding::GetContext() == state ? "same context" : "lost context");
}

// Ends all bindings of the library in the middle of the call of one, which goes on.
std::function<void()> s_endAll;

void endAll() { s_endAll(); }

class TestLibrary : public LuaLibrary {
public:
    TestLibrary() { LuaLibMan::AddLibrary("test", this); }

    ~TestLibrary() override { LuaLibMan::RemLibrary("test", this); }

    bool BindState(LuaConfig & config) override {
        using LuaBinding::Bind;
        using LuaBinding::Obj;
        using TakeEight =
            fastdelegate::FastDelegate8<char const *, float, float, float, char const *, int, int, int, bool>;
        using EightObj = LuaBinding::ObjInternal8<char const *, float, float, float, char const *, int, int,
                                                  int, TakeEight, bool>;
        for (Obj const & object :
             {Bind(config, "takeAll", &takeAll), Bind(config, "takeNothing", &takeNothing),
              Bind(config, "isPositive", &isPositive), Bind(config, "takeInt", &take<int>),
              Bind(config, "takeUnsigned", &take<unsigned int>), Bind(config, "takeBool", &take<bool>),
              Bind(config, "takeText", &take<char const *>), Bind(config, "leaveSomething", &leaveSomething),
              Bind(config, "dropSomething", &dropSomething), Bind(config, "throwBinding", &throwBinding),
              Bind(config, "throwOther", &throwOther), Bind(config, "raiseLua", &raiseLua),
              Bind(config, "nest", &nest), Bind(config, "endAll", &endAll),
              Obj(new EightObj(&config, "takeEight", &takeEight))})
            StoreLuaBindingObj(config, object);
        s_endAll = [this, &config] { ClearLuaBindingObj(config); };
        return true;
    }

    bool ReleaseState(LuaConfig & config) override {
        ClearLuaBindingObj(config);
        return true;
    }
};

// Notes what it is asked.
class NotingLibrary : public LuaLibrary {
public:
    explicit NotingLibrary(std::string const & name, bool fails = false) : name(name), fails(fails) {
        LuaLibMan::AddLibrary(name.c_str(), this);
    }

    ~NotingLibrary() override { LuaLibMan::RemLibrary(name.c_str(), this); }

    bool BindState(LuaConfig & config) override {
        s_events.push_back(name + " binds " + config.GetName());
        if (fails)
            throw std::range_error(name);
        return true;
    }

    bool ReleaseState(LuaConfig & config) override {
        s_events.push_back(name + " releases " + config.GetName());
        return true;
    }

    std::string name;
    bool fails;
};

// Runs a statement and gives the error's text without the place in front, "" when it ran; the stack must be
// as high as before.
std::string run(LuaConfig & config, std::string const & statement) {
    lua_State * const state = config.GetState();
    int const height = lua_gettop(state);
    std::string error;
    if (luaL_loadstring(state, statement.c_str()) != 0 || lua_pcall(state, 0, 0, 0) != 0) {
        error = lua_tostring(state, -1);
        error.erase(0, error.find(":1: ") == error.npos ? 0 : error.find(":1: ") + 4);
        lua_pop(state, 1);
    }
    EXPECT_EQ(lua_gettop(state), height) << statement;
    EXPECT_EQ(LuaBinding::GetContext(), nullptr) << statement;
    return error;
}

struct BindingTest : testing::Test {
    BindingTest() { s_events.clear(); }

    std::optional<TestLibrary> library{std::in_place};
    std::optional<LuaConfig> config{std::in_place, "test", true};
};

} // namespace

TEST_F(BindingTest, ArgumentsAreCheckedAndConverted) {
    auto const wrong = [](int position, std::string const & types, std::string const & function) {
        return "Invalid parameter " + std::to_string(position) + " (type " + types + ") in function " +
               function;
    };
    std::string const notInt = wrong(1, "expected=int, received=number", "takeInt");
    std::string const notUnsigned = wrong(1, "expected=unsigned int, received=number", "takeUnsigned");
    std::string const count = "Invalid number of parameters (expected=5, received=6) in function takeAll";

    struct Case {
        char const * statement;
        char const * call; // null: the function is not called
        std::string error;
    };

    Case const cases[] = {
        {"takeAll('a', 1.5, true, -3, 4)", "a 1.5 true -3 4", ""},
        // numbers as text are numbers, but for a bool; numbers are texts
        {"takeAll(7, '0.5', 0, '-3', '4')", "7 0.5 false -3 4", ""},
        {"takeBool('1')", nullptr, wrong(1, "expected=bool, received=string", "takeBool")},
        {"takeBool(1)", "true", ""},
        // the count comes before the types
        {"takeAll({}, 1.5, true, -3, 4, 5)", nullptr, count},
        // the first wrong argument is told, and nothing is called
        {"takeAll('a', {}, true, 1.5, 4)", nullptr, wrong(2, "expected=float, received=table", "takeAll")},
        {"takeEight('x', 1, 2, 3, 'y', 1.5, 5, 6)", nullptr,
         wrong(6, "expected=int, received=number", "takeEight")},
        {"takeText(true)", nullptr, wrong(1, "expected=const char*, received=boolean", "takeText")},
        // whole numbers: fractions, ranges, NaN
        {"takeInt(1 + 2 ^ -52)", nullptr, notInt},
        {"takeInt(2147483648)", nullptr, notInt},
        {"takeInt(-2147483648)", "-2147483648", ""},
        {"takeInt(-2147483649)", nullptr, notInt},
        {"takeInt(0/0)", nullptr, notInt},
        {"takeUnsigned(4294967295)", "4294967295", ""},
        {"takeUnsigned(4294967296)", nullptr, notUnsigned},
        {"takeUnsigned(-1)", nullptr, notUnsigned},
        // results
        {"assert(isPositive(1) == true and isPositive(-1) == false and select('#', isPositive(1)) == 1)",
         nullptr, ""},
        {"assert(select('#', takeNothing()) == 0)", "nothing", ""},
        {"assert(takeEight('x', 1, 2, 3, 'y', 4, 5, 6) == true)", "x 1 2 3 y 4 5 6", ""},
        // faults inside
        {"leaveSomething()", nullptr, "Invalid Stack"},
        {"dropSomething(1)", nullptr, "Invalid Stack"},
        {"throwBinding()", nullptr, std::string(1023, 'x')},
        {"throwOther()", nullptr, "100%s"},
        {"raiseLua()", nullptr, "raised"},
    };
    for (Case const & row : cases) {
        s_events.clear();
        EXPECT_EQ(run(*config, row.statement), row.error) << row.statement;
        EXPECT_EQ(s_events, row.call ? Texts{row.call} : Texts{}) << row.statement;
    }
}

TEST_F(BindingTest, CallsNestAndBindingsMayEndDuringTheirs) {
    EXPECT_EQ(run(*config, "nest()  coroutine.wrap(function() nest() end)()"), "");
    EXPECT_EQ(s_events, (Texts{"nothing", "same context", "nothing", "same context"}));
    EXPECT_EQ(run(*config, "endAll()"), "");
    EXPECT_EQ(run(*config, "endAll()"), "function endAll is no longer bound");
}

TEST_F(BindingTest, ObjectStateAndLibraryMayEndInAnyOrder) {
    LuaBinding::Obj const kept = LuaBinding::Bind(*config, "kept", &takeAll);
    EXPECT_EQ(run(*config, "first = newproxy(true)  getmetatable(first).__gc = function() takeNothing() end"),
              "");
    library.reset();
    EXPECT_EQ(run(*config, "takeNothing()"), "function takeNothing is no longer bound");

    // what the script made first is finalized last, when the state has let go of the bindings
    library.emplace();
    config.reset();
    EXPECT_EQ(s_events, Texts{});
    EXPECT_STREQ(kept->FunctionName(), "kept");
    EXPECT_STREQ(kept->Signature(), "const char*, float, bool, int, unsigned int -> none");
}

// Lua would end the process over an error that leaves the constructor.
TEST_F(BindingTest, BindingIsSafeFromTheState) {
    lua_State * const state = config->GetState();
    EXPECT_EQ(run(*config, "setmetatable(_G, { __newindex = function() error('locked') end })"), "");
    bool isBound = false;
    for (unsigned int allowed = 0; !isBound; ++allowed) {
        ASSERT_LT(allowed, 100u);
        try {
            LuaScarcity const scarcity(state, allowed);
            LuaBinding::Bind(*config, "fresh", &takeNothing);
            isBound = true;
        } catch (std::runtime_error const & error) {
            EXPECT_STREQ(error.what(), "cannot bind function fresh: not enough memory");
            EXPECT_EQ(run(*config, "assert(fresh == nil)"), "");
        }
    }
    EXPECT_EQ(run(*config, "fresh()"), "function fresh is no longer bound");
}

TEST(LuaLibraryTest, StatesAndLibrariesMayComeInAnyOrder) {
    s_events.clear();
    {
        NotingLibrary early("early");
        LuaConfig const first("first", true);
        LuaConfig const data("data", false);

        // whoever fails to bind is out again
        EXPECT_THROW(NotingLibrary("broken", true), std::range_error);
        early.fails = true;
        EXPECT_THROW(LuaConfig("second", true), std::range_error);
        early.fails = false;

        NotingLibrary const late("late");
        LuaConfig const third("third", true);
    }
    EXPECT_EQ(s_events, (Texts{"early binds first", "broken binds first", "broken releases first",
                               "early binds second", "early releases second", "late binds first",
                               "early binds third", "late binds third", "late releases third",
                               "early releases third", "late releases first", "early releases first"}));
}

// The order in which the library's objects come up at load, which scripts see as the order of registration.
TEST(LuaLibraryTest, TheLibrariesStandInTheirOrder) {
    Texts names;
    LuaLibMan::VisitLibraries([&names](char const * name, LuaLibrary &) { names.push_back(name); });
    EXPECT_EQ(names,
              (Texts{"renderstats", "debugrender", "inventory", "statgraph", "systemconfig", "warninglib"}));
    EXPECT_EQ(names, (Texts{LUALIB_RENDERSTATS, LUALIB_DEBUGRENDER, LUALIB_INVENTORY, LUALIB_STATGRAPH,
                            LUALIB_SYSTEMCONFIG, LUALIB_WARNING}));
    EXPECT_STREQ(LUALIB_CHEATMENU, "cheatmenu");
}

namespace {

struct DumpKind : inventory::Kind<Inv::NamedResource> {
    char const * GetBinName() const override { return "Things"; }

    bool CanReload() const override { return false; }

    Inv::NamedResource * Load(char const *) const override { return new Inv::NamedResource; }

    Inv::NamedResource * Reload(Inv::NamedResource *) const override { return nullptr; }
};

} // namespace

TEST(InventoryLibraryTest, ScriptsDumpTheInventory) {
    LuaConfig config("test", true);
    testing::internal::CaptureStdout();
    EXPECT_EQ(run(config, "inv_dump()"), "");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "There is no inventory\n");

    Inv::Setup(true);
    AliasedFolder const folder("log");
    DumpKind kind;
    auto const held = kind.Get("a,b");
    EXPECT_EQ(run(config, "inv_dump()"), "");
    std::string const file = folder.OnlyEntry();
    EXPECT_EQ(file.substr(0, 8) + file.substr(file.size() - 4), "invdump..csv"); // the time stands between
    EXPECT_EQ(folder.ReadFile(file), "BinName,Name,RefCount\nThings,a,b,3\n");
    Inv::Shutdown();
}
