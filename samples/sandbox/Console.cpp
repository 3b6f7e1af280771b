#include "samples/sandbox/Console.h"

#include "Cross/engine/scriptconfig/GlobalLua.h"
#include "Cross/engine/scriptconfig/LuaConfig.h"

#include <lua.hpp>

#include <iostream>

namespace {

// The text of each value from `first` to the top, as scripts see it.
std::string textOfResults(lua_State * state, int first) {
    std::string text;
    for (int i = first; i <= lua_gettop(state); ++i) {
        lua_getglobal(state, "tostring");
        lua_pushvalue(state, i);
        if (lua_pcall(state, 1, 1, 0) == 0 && lua_isstring(state, -1))
            text += (i == first ? "" : "\t") + std::string(lua_tostring(state, -1));
        lua_pop(state, 1);
    }
    return text;
}

// An expression first, so that "1 + 1" prints 2; otherwise statements.
bool compile(lua_State * state, std::string const & line) {
    std::string const expression = "return " + line;
    if (luaL_loadbuffer(state, expression.data(), expression.size(), "=console") == 0)
        return true;
    lua_pop(state, 1);
    return luaL_loadbuffer(state, line.data(), line.size(), "=console") == 0;
}

} // namespace

ConsoleAnswer RunConsoleLine(std::string const & line) {
    lua_State * const state = GlobalLua::GetState()->GetState();
    int const height = lua_gettop(state);
    bool const good = compile(state, line) && lua_pcall(state, 0, LUA_MULTRET, 0) == 0;
    ConsoleAnswer const answer{good, textOfResults(state, height + 1)};
    lua_settop(state, height);
    return answer;
}

void RunConsole() {
    for (std::string line; std::cout << "> " << std::flush && std::getline(std::cin, line);) {
        ConsoleAnswer const answer = RunConsoleLine(line);
        if (!answer.text.empty())
            std::cout << (answer.good ? "" : "error: ") << answer.text << '\n';
    }
    std::cout << '\n';
}
