#include "Cross/Util/lua/LuaBindingObj.h"

#include "Cross/Util/Inv.h"
#include "Cross/Util/lua/LuaLibNames.h"
#include "Cross/engine/filesystem/FilePath.h"
#include "Cross/engine/scriptconfig/LuaConfig.h"
#include "Cross/engine/scriptconfig/LuaLibMan.h"
#include "Cross/engine/scriptconfig/LuaLibrary.h"
#include "Cross/engine/scriptconfig/LuaPrint.h"
#include "samples/inventory/Inventory.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace {

// What the bound functions were called with, as text.
std::vector<std::string> s_calls;

void takeAll(char const * text, float number, bool flag, int whole, unsigned int count) {
    s_calls.push_back(std::string(text) + " " + std::to_string(number) + " " + std::to_string(flag) + " " +
                      std::to_string(whole) + " " + std::to_string(count));
}

void takeNothing() { s_calls.push_back("nothing"); }

bool isPositive(float number) { return number > 0.0f; }

void takeUnsigned(unsigned int value) { s_calls.push_back(std::to_string(value)); }

void takeInt(int value) { s_calls.push_back(std::to_string(value)); }

void takeBool(bool value) { s_calls.push_back(value ? "true" : "false"); }

void takeText(char const * value) { s_calls.push_back(value); }

void leaveSomething() { lua_pushnumber(LuaBinding::GetContext(), 1.0); }

bool takeSomething() {
    lua_pop(LuaBinding::GetContext(), 1);
    return true;
}

void throwStandard() { throw LuaBinding::Exception("%s by %d", "broken", 7); }

void raiseLua() { luaL_error(LuaBinding::GetContext(), "raised"); }

void nested() {
    lua_State * const state = LuaBinding::GetContext();
    lua_getglobal(state, "takeNothing");
    lua_call(state, 0, 0);
    s_calls.push_back(LuaBinding::GetContext() == state ? "same context" : "lost context");
}

bool takeEight(char const * a, float b, float c, float d, char const * e, int f, int g, int h) {
    s_calls.push_back(std::string(a) + e + std::to_string(static_cast<int>(b + c + d) + f + g + h));
    return true;
}

class TestLibrary : public LuaLibrary {
public:
    explicit TestLibrary(char const * name = "test") : name(name) { LuaLibMan::AddLibrary(name, this); }

    ~TestLibrary() override { LuaLibMan::RemLibrary(name, this); }

    bool BindState(LuaConfig & config) override {
        using LuaBinding::Bind;
        ++bound;
        StoreLuaBindingObj(config, Bind(config, "takeAll", &takeAll));
        StoreLuaBindingObj(config, Bind(config, "takeNothing", &takeNothing));
        StoreLuaBindingObj(config, Bind(config, "isPositive", &isPositive));
        StoreLuaBindingObj(config, Bind(config, "takeUnsigned", &takeUnsigned));
        StoreLuaBindingObj(config, Bind(config, "takeInt", &takeInt));
        StoreLuaBindingObj(config, Bind(config, "takeBool", &takeBool));
        StoreLuaBindingObj(config, Bind(config, "takeText", &takeText));
        StoreLuaBindingObj(config, Bind(config, "leaveSomething", &leaveSomething));
        StoreLuaBindingObj(config, Bind(config, "takeSomething", &takeSomething));
        StoreLuaBindingObj(config, Bind(config, "throwStandard", &throwStandard));
        StoreLuaBindingObj(config, Bind(config, "raiseLua", &raiseLua));
        StoreLuaBindingObj(config, Bind(config, "nested", &nested));
        using Delegate =
            fastdelegate::FastDelegate<bool(char const *, float, float, float, char const *, int, int, int)>;
        StoreLuaBindingObj(
            config, LuaBinding::Obj(new LuaBinding::ObjInternal8<char const *, float, float, float,
                                                                 char const *, int, int, int, Delegate, bool>(
                        &config, "takeEight", &takeEight)));
        return true;
    }

    bool ReleaseState(LuaConfig & config) override {
        ++released;
        ClearLuaBindingObj(config);
        return true;
    }

    int bound = 0;
    int released = 0;

private:
    char const * name;
};

// Runs a statement and gives the error's text, "" when it ran; the stack must be as high as before.
std::string run(LuaConfig & config, std::string const & statement) {
    lua_State * const state = config.GetState();
    int const height = lua_gettop(state);
    std::string error;
    if (luaL_loadstring(state, statement.c_str()) != 0 || lua_pcall(state, 0, 0, 0) != 0) {
        error = lua_tostring(state, -1);
        lua_pop(state, 1);
    }
    EXPECT_EQ(lua_gettop(state), height) << statement;
    EXPECT_EQ(LuaBinding::GetContext(), nullptr) << statement;
    return error;
}

// The text behind the place that Lua puts in front of it.
std::string messageOf(std::string const & error) {
    std::size_t const place = error.find(": ");
    return place == std::string::npos ? error : error.substr(place + 2);
}

struct BindingTest : testing::Test {
    void SetUp() override { s_calls.clear(); }

    TestLibrary library;
    LuaConfig config{"test", true};
};

} // namespace

TEST_F(BindingTest, ArgumentsAreCheckedAndConverted) {
    struct Case {
        char const * statement;
        char const * call; // null: the function is not called
        char const * error;
    };

    Case const cases[] = {
        {"takeAll('a', 1.5, true, -3, 4)", "a 1.500000 1 -3 4", ""},
        // numbers as text are numbers, but for a bool; numbers are texts
        {"takeAll(7, '0.5', 0, '-3', '4')", "7 0.500000 0 -3 4", ""},
        {"takeBool('1')", nullptr,
         "Invalid parameter 1 (type expected=bool, received=string) in function takeBool"},
        {"takeBool(2)", "true", ""},
        {"takeBool(nil)", nullptr,
         "Invalid parameter 1 (type expected=bool, received=nil) in function takeBool"},
        // the count comes before the types
        {"takeAll()", nullptr, "Invalid number of parameters (expected=5, received=0) in function takeAll"},
        {"takeNothing(1)", nullptr,
         "Invalid number of parameters (expected=0, received=1) in function takeNothing"},
        // the first wrong argument is told, and nothing is called
        {"takeAll('a', {}, true, 1.5, 4)", nullptr,
         "Invalid parameter 2 (type expected=float, received=table) in function takeAll"},
        {"takeAll('a', 1, true, 1.5, 4)", nullptr,
         "Invalid parameter 4 (type expected=int, received=number) in function takeAll"},
        {"takeText({})", nullptr,
         "Invalid parameter 1 (type expected=const char*, received=table) in function takeText"},
        {"takeText('a\\0b')", "a", ""},
        // whole numbers: fractions, ranges, NaN
        {"takeInt(2147483647)", "2147483647", ""},
        {"takeInt(-2147483648)", "-2147483648", ""},
        {"takeInt(2147483648)", nullptr,
         "Invalid parameter 1 (type expected=int, received=number) in function takeInt"},
        {"takeInt(0/0)", nullptr,
         "Invalid parameter 1 (type expected=int, received=number) in function takeInt"},
        {"takeInt(1/0)", nullptr,
         "Invalid parameter 1 (type expected=int, received=number) in function takeInt"},
        {"takeInt(1e-17)", "0", ""},
        {"takeUnsigned(4294967295)", "4294967295", ""},
        {"takeUnsigned(4294967296)", nullptr,
         "Invalid parameter 1 (type expected=unsigned int, received=number) in function takeUnsigned"},
        {"takeUnsigned(-1)", nullptr,
         "Invalid parameter 1 (type expected=unsigned int, received=number) in function takeUnsigned"},
        {"takeUnsigned('12')", "12", ""},
        // results
        {"assert(isPositive(1) == true and isPositive(-1) == false and select('#', isPositive(1)) == 1)",
         nullptr, ""},
        {"assert(select('#', takeNothing()) == 0)", "nothing", ""},
        {"assert(takeEight('x', 1, 2, 3, 'y', 4, 5, 6) == true)", "xy21", ""},
        // faults inside
        {"leaveSomething()", nullptr, "Invalid Stack"},
        {"throwStandard()", nullptr, "broken by 7"},
        {"raiseLua()", nullptr, "raised"},
    };
    for (Case const & row : cases) {
        s_calls.clear();
        EXPECT_EQ(messageOf(run(config, row.statement)), row.error) << row.statement;
        EXPECT_EQ(s_calls, row.call ? std::vector<std::string>{row.call} : std::vector<std::string>{})
            << row.statement;
    }
}

TEST_F(BindingTest, AFunctionThatTakesFromTheStackIsCaught) {
    // nothing of its own stands there, so it takes what is not its own; the script sees an error, or a result
    // gone wrong
    EXPECT_EQ(messageOf(run(config, "takeSomething(1)")),
              "Invalid number of parameters (expected=0, received=1) in function takeSomething");
}

TEST_F(BindingTest, CallsNest) {
    EXPECT_EQ(run(config, "nested()"), "");
    EXPECT_EQ(s_calls, (std::vector<std::string>{"nothing", "same context"}));
}

TEST_F(BindingTest, StatesAndLibrariesMayComeInAnyOrder) {
    EXPECT_EQ(library.bound, 1);
    {
        LuaConfig late("late", true);
        EXPECT_EQ(library.bound, 2);
        TestLibrary lateLibrary("late library");
        EXPECT_EQ(lateLibrary.bound, 2);
        LuaConfig const data("data", false);
        EXPECT_EQ(lateLibrary.bound, 2) << "data states have no bindings";
    }
    EXPECT_EQ(library.released, 1);
    EXPECT_EQ(run(config, "takeNothing()"),
              "[string \"takeNothing()\"]:1: function takeNothing is no longer bound")
        << "the late library took the name over and went";
}

TEST(LuaLibraryTest, AFunctionOfALibraryThatWentIsAnError) {
    LuaConfig config("test", true);
    {
        TestLibrary const library;
        EXPECT_EQ(run(config, "keep = takeNothing"), "");
    }
    EXPECT_EQ(messageOf(run(config, "keep()")), "function takeNothing is no longer bound");
}

TEST(LuaLibraryTest, AnObjectMayOutliveItsState) {
    auto config = std::make_unique<LuaConfig>("test", true);
    LuaBinding::Obj const object = LuaBinding::Bind(*config, "takeNothing", &takeNothing);
    config.reset();
    EXPECT_STREQ(object->FunctionName(), "takeNothing");
}

TEST(LuaLibraryTest, LibrariesStandInTheOrderOfLoading) {
    std::vector<std::string> names;
    LuaLibMan::VisitLibraries([&](char const * name, LuaLibrary &) { names.push_back(name); });
    EXPECT_EQ(names, std::vector<std::string>{LUALIB_INVENTORY});
}

TEST(LuaLibraryTest, BoundFunctionsTellTheirTypes) {
    LuaConfig config("test", true);
    TestLibrary const library;
    std::vector<std::string> lines;
    library.VisitLuaBindingObjs(config, [&](LuaBinding::ObjInternalBase const & object) {
        lines.push_back(std::string(object.FunctionName()) + ": " + object.Signature());
    });
    ASSERT_EQ(lines.size(), 13u);
    EXPECT_EQ(lines[0], "takeAll: const char*, float, bool, int, unsigned int -> none");
    EXPECT_EQ(lines[1], "takeNothing: none -> none");
    EXPECT_EQ(lines[2], "isPositive: float -> bool");
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
    std::vector<std::string> printed;
    luaxSetPrintSink(
        [](char const * text, void * context) {
            static_cast<std::vector<std::string> *>(context)->push_back(text);
        },
        &printed);
    EXPECT_EQ(run(config, "inv_dump()"), "");
    luaxSetPrintSink(nullptr, nullptr);
    EXPECT_EQ(printed, std::vector<std::string>{"There is no inventory"});

    TemporaryFolder folder;
    FilePath::SetAlias("log", folder.Path().c_str());
    DumpKind kind;
    Inv::Setup(true);
    auto const held = kind.Get("a,b");
    EXPECT_EQ(run(config, "inv_dump()"), "");
    Inv::Shutdown();
    ASSERT_EQ(folder.CountEntries(), 1u);
    std::string const file = std::filesystem::directory_iterator(folder.Path())->path().filename();
    EXPECT_EQ(file.substr(0, 8), "invdump.");
    EXPECT_EQ(file.substr(file.size() - 4), ".csv");
    EXPECT_EQ(folder.ReadFile(file), "BinName,Name,RefCount\nThings,a,b,3\n");
    FilePath::RemoveAlias("log");
}
