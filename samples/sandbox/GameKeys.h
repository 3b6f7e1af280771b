#pragma once

// The keys of the game, by the names that the renderer gives them, whatever their case: F1 shows and closes
// the menu, the arrows, Return and Backspace walk it, F2 switches graphs, F3 render statistics, F4 the bound
// volume of the selected unit; Tab selects the next unit.

#include "samples/sandbox/GameLoop.h"

#include <string>

// False for a key that means nothing.
bool PressKey(GameLoop & loop, char const * key);

bool IsKey(std::string const & key);

// The names of all keys: "F1, Up, ...".
std::string KeyNames();
