#pragma once

#include <lua.hpp>

// Lets a Lua state allocate a number of times and then no more, while it lives.
class LuaScarcity {
public:
    LuaScarcity(lua_State * state, unsigned int allowed) : state(state), left(allowed) {
        normal = lua_getallocf(state, &context);
        lua_setallocf(state, &allocate, this);
    }

    LuaScarcity(LuaScarcity const &) = delete;
    LuaScarcity & operator=(LuaScarcity const &) = delete;

    ~LuaScarcity() { lua_setallocf(state, normal, context); }

    bool hasFailed = false;

private:
    static void * allocate(void * scarcity, void * block, std::size_t oldSize, std::size_t size) {
        auto & self = *static_cast<LuaScarcity *>(scarcity);
        if (size > oldSize && self.left == 0) {
            self.hasFailed = true;
            return nullptr;
        }
        self.left -= size > oldSize;
        return self.normal(self.context, block, oldSize, size);
    }

    lua_State * state;
    unsigned int left;
    lua_Alloc normal;
    void * context;
};
