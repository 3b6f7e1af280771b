#pragma once

// Scripts of unknown kind, run so that they end soon and take little memory.

#include "Cross/engine/scriptconfig/LuaConfig.h"
#include "Cross/engine/scriptconfig/LuaConfigSave.h"

#include <cstddef>
#include <lua.hpp>

// What the scripts of one state may use up, and Lua's allocator when they may not.
class ScriptLimits {
public:
    explicit ScriptLimits(lua_State * L) : L(L) {
        normal = lua_getallocf(L, &normalContext);
        lua_setallocf(L, allocate, this);
        lua_sethook(L, stop, LUA_MASKCOUNT, c_maxInstructions);
    }

    ScriptLimits(ScriptLimits const &) = delete;
    ScriptLimits & operator=(ScriptLimits const &) = delete;

    ~ScriptLimits() {
        lua_sethook(L, nullptr, 0, 0);
        lua_setallocf(L, normal, normalContext);
    }

private:
    static constexpr int c_maxInstructions = 20000;
    static constexpr std::size_t c_maxMemory = std::size_t{16} << 20;

    static void * allocate(void * context, void * block, std::size_t oldSize, std::size_t newSize) {
        auto & limits = *static_cast<ScriptLimits *>(context);
        if (newSize > oldSize && limits.used + (newSize - oldSize) > c_maxMemory)
            return nullptr;
        limits.used += newSize - oldSize; // wraps below 0 and back, for blocks from before
        return limits.normal(limits.normalContext, block, oldSize, newSize);
    }

    // From now on every instruction is an error, so that no pcall keeps the script running.
    static void stop(lua_State * L, lua_Debug *) {
        lua_sethook(L, stop, LUA_MASKCOUNT, 1);
        luaL_error(L, "too many instructions");
    }

    lua_State * L;
    lua_Alloc normal;
    void * normalContext = nullptr;
    std::size_t used = std::size_t{1} << 20; // above what a new state can give back
};

// Functions whose own loops no count of instructions stops, and the one that writes to the terminal.
inline void HideLibraries(lua_State * L) {
    lua_getmetatable(L, LUA_GLOBALSINDEX);
    lua_getfield(L, -1, "__index");
    for (char const * name : {LUA_STRLIBNAME, LUA_TABLIBNAME, "print"}) {
        lua_pushnil(L);
        lua_setfield(L, -2, name);
    }
    lua_pushliteral(L, "");
    lua_pushnil(L);
    lua_setmetatable(L, -2);
    lua_pop(L, 3);
}

// Runs a stream as a data file; what it sets, and whether it runs, is the caller's to see.
inline bool LoadLimited(LuaConfig & config, ByteStream & source) {
    HideLibraries(config.GetState());
    ScriptLimits const limits(config.GetState());
    return LuaConfigSave::LoadLua(config, source);
}
