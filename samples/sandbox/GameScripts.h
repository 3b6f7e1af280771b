#pragma once

// What scripts can do to the running game: the functions "game_speed", "game_pause", "game_bounds" and
// "game_select" of the global script state, for as long as this object lives.

#include "Cross/engine/scriptconfig/LuaBinding.h"
#include "samples/sandbox/GameLoop.h"

#include <vector>

class GameScripts {
public:
    // One at a time. `loop` outlives this object.
    explicit GameScripts(GameLoop & loop);
    GameScripts(GameScripts const &) = delete;
    GameScripts & operator=(GameScripts const &) = delete;
    ~GameScripts();

private:
    std::vector<LuaBinding::Obj> functions;
};
