#pragma once

// Values as Lua source that gives them back:
//
//     graphics = {
//     	[1] = -1/0,
//     	["no name"] = "a\010b",
//     	level = 3,
//     }
//     volume = 0.5
//
// One statement per global. Fields are sorted: numbers ascending, texts by their bytes, then false and true.
// What has no text, such as a function or a table as a key, is left out. A table met twice is written twice.
//
// A Lua function holds 2^18 constants, so tables of more than 50,000 fields, with those below, are filled
// block by block, each block in a function of its own:
//
//     big = {}
//     do (function(t)
//     t.a = 1
//     end)(big) end

#include <lua.hpp>

class ByteStream;

namespace script {

// Writes the globals that differ from those in the table at stack index `builtins`: the tables among them,
// the plain values, or both. Raises Lua errors, and throws std::exception with the reason for a cycle, for
// tables deeper than 150 and when the stream takes no more.
void writeGlobals(lua_State * L, int builtins, bool tables, bool plain, ByteStream & stream);

} // namespace script
