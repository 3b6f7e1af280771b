#pragma once

// What scripts find in a new state, and the one way in which source gets into a state.

#include <lua.hpp>
#include <optional>
#include <string>
#include <string_view>

class ByteStream;

namespace script {

// Opens the libraries of a fresh state. Both raise Lua errors and belong into a protected call.
//
// A data state gets new, empty globals; behind them, through __index of a metatable that scripts can neither
// see nor replace, stand the base library, string, table and math, without what loads code, reaches
// environments, steers the collector or can bring down the process.
void openDataLibraries(lua_State * L);

// A script state gets Lua's standard libraries, with loaders that take no bytecode and find files by
// FilePath.
void openScriptLibraries(lua_State * L);

// Compiles source and pushes the function; otherwise gives an error code and pushes the message. Bytecode,
// which a hostile file could use to break out of Lua, is refused. Raises nothing.
int loadSource(lua_State * L, std::string_view text, char const * chunkName);

// The rest of a stream; empty when it could not be read to its end.
std::optional<std::string> readSource(ByteStream & stream);

// The text of a script file without what may stand in front of the source: a UTF-8 byte order mark, and a
// first line that begins with '#', whose line end stays for the line numbers.
std::string_view skipPreamble(std::string_view text);

// The error on top as text. Scripts may raise any value.
std::string errorText(lua_State * L);

// Puts the height of the stack back when it goes.
class StackHeight {
public:
    explicit StackHeight(lua_State * L) : L(L), height(lua_gettop(L)) {}

    StackHeight(StackHeight const &) = delete;
    StackHeight & operator=(StackHeight const &) = delete;

    ~StackHeight() { lua_settop(L, height); }

private:
    lua_State * L;
    int height;
};

} // namespace script
