#include "samples/sandbox/Console.h"

#include "Cross/engine/scriptconfig/GlobalLua.h"
#include "Cross/engine/scriptconfig/LuaConfig.h"

#include <lua.hpp>
#include <poll.h>
#include <unistd.h>

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

Console::Console() : isTyped(isatty(STDIN_FILENO) != 0) {}

Console::~Console() {
    if (isPrompted)
        std::cout << std::endl;
}

bool Console::RunNext(bool wait) {
    if (!isPrompted)
        std::cout << "> " << std::flush;
    isPrompted = true;
    std::size_t length = 0;
    while ((length = input.find('\n')) == std::string::npos)
        if (!read(wait))
            return false;
    std::string const line = input.substr(0, length);
    input.erase(0, length + 1);
    if (!isTyped)
        std::cout << line << '\n';
    ConsoleAnswer const answer = RunConsoleLine(line);
    isPrompted = false;
    if (!answer.text.empty())
        std::cout << (answer.good ? "" : "error: ") << answer.text << '\n';
    return true;
}

// Takes in what there is, behind a last line its missing end. False when nothing came.
bool Console::read(bool wait) {
    pollfd source{STDIN_FILENO, POLLIN, 0};
    if (ended || poll(&source, 1, wait ? -1 : 0) <= 0)
        return false;
    char bytes[512];
    ssize_t const count = ::read(STDIN_FILENO, bytes, sizeof(bytes));
    ended = count <= 0;
    if (!ended)
        input.append(bytes, static_cast<std::size_t>(count));
    else
        input += input.empty() ? "" : "\n";
    return !input.empty();
}
