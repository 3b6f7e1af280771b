#include "samples/sandbox/GameScripts.h"

#include "Cross/Util/lua/LuaBindingObj.h"
#include "Cross/engine/scriptconfig/GlobalLua.h"

namespace {

GameLoop * s_loop = nullptr;

void game_speed(float speed) { s_loop->SetSpeed(speed); }

void game_pause(bool pause) { s_loop->SetPause(pause); }

void game_bounds(bool show) { s_loop->View().ShowBounds(show); }

void game_select(unsigned int unit) { s_loop->View().Select(unit); }

} // namespace

GameScripts::GameScripts(GameLoop & loop) {
    s_loop = &loop;
    LuaConfig & state = *GlobalLua::GetState();
    functions = {LuaBinding::Bind(state, "game_speed", &game_speed),
                 LuaBinding::Bind(state, "game_pause", &game_pause),
                 LuaBinding::Bind(state, "game_bounds", &game_bounds),
                 LuaBinding::Bind(state, "game_select", &game_select)};
}

GameScripts::~GameScripts() { s_loop = nullptr; }
