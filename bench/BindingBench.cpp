// A bound script function beside a hand-written one with the same checks.

#include "Cross/Util/lua/LuaBindingObj.h"
#include "Cross/engine/scriptconfig/LuaConfig.h"
#include "bench/Ratio.h"

namespace {

double s_sum = 0.0;

void bound(char const * text, float number, int whole) {
    s_sum += text[0] + static_cast<double>(number) + whole;
}

int handWritten(lua_State * state) {
    if (lua_gettop(state) != 3)
        return luaL_error(state, "three arguments are wanted");
    char const * const text = luaL_checkstring(state, 1);
    auto const number = static_cast<float>(luaL_checknumber(state, 2));
    lua_Number const whole = luaL_checknumber(state, 3);
    bool const fits = whole > -2147483649.0 && whole < 2147483648.0;
    luaL_argcheck(state, fits && whole == static_cast<lua_Number>(static_cast<int>(whole)), 3,
                  "a whole number is wanted");
    s_sum += text[0] + static_cast<double>(number) + static_cast<int>(whole);
    return 0;
}

constexpr char const * c_loop = "local f, n = ... for i = 1, n do f('text', 1.5, 7) end";
constexpr int c_calls = 10000;

// Calls the global function "called" many times in one run of a script.
void runLoop(benchmark::State & state, LuaConfig & config) {
    lua_State * const lua = config.GetState();
    luaL_loadstring(lua, c_loop);
    for (auto _ : state) {
        lua_pushvalue(lua, -1);
        lua_getglobal(lua, "called");
        lua_pushinteger(lua, c_calls);
        lua_call(lua, 2, 0);
    }
    lua_pop(lua, 1);
}

} // namespace

int main(int argc, char ** argv) {
    auto const ours = [](benchmark::State & state) {
        LuaConfig config("bench", true);
        LuaBinding::Obj const object = LuaBinding::Bind(config, "called", &bound);
        runLoop(state, config);
    };
    auto const peer = [](benchmark::State & state) {
        LuaConfig config("bench", true);
        lua_register(config.GetState(), "called", &handWritten);
        runLoop(state, config);
    };
    bench::AddPair("10000 bound calls with three arguments", 1.6, ours, peer);
    return bench::Run(argc, argv);
}
