#include "Cross/engine/scriptconfig/GlobalLua.h"

#include "Cross/engine/scriptconfig/LuaConfig.h"

namespace {

// A plain pointer: scripts may still be asked for after static destructors have begun.
constinit LuaConfig * s_state = nullptr;

} // namespace

LuaConfig * GlobalLua::GetState() {
    if (!s_state)
        s_state = new LuaConfig("global", true);
    return s_state;
}

void GlobalLua::Shutdown() {
    delete s_state;
    s_state = nullptr;
}
