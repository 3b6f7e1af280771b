#pragma once

// The game as people see it: in a window, in pictures, or as a record of what was drawn.

#include "samples/sandbox/Game.h"

#include <string>
#include <vector>

struct ShowOptions {
    bool headless = false;     // no window, even where there is a display
    unsigned int frames = 600; // without a window and without keys
    std::string pictures;      // folder for pictures, of real path
    std::string record;        // write the calls of the renderer to this file instead of drawing
    std::string menu = "DATA:menu.lua";
    std::string shot;              // write one picture of the last frame to this file
    std::vector<std::string> keys; // pressed one after the other, a picture for each
};

// Plays the game with its menu: in a window until it is closed, else for a fixed number of frames on a clock
// that repeats. Gives what was written, or the reason why nothing could be shown.
struct ShowResult {
    bool good = false;
    std::string text;
};

ShowResult PlayShow(Game & game, ShowOptions const & options);
