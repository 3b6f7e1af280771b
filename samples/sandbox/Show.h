#pragma once

// The game as people see it: played with its menu, in a window until it is closed, else for a fixed number of
// frames.

#include "samples/sandbox/Game.h"
#include "samples/sandbox/Stage.h"

#include <cstdint>
#include <string>
#include <vector>

struct ShowOptions {
    unsigned int frames = 600;     // without a window and without keys
    std::string shot;              // write a picture of the last frame to this file
    std::vector<std::string> keys; // pressed one after the other, a picture for each
    bool console = false;          // run lines of standard input between the frames
};

struct ShowResult {
    unsigned int frames = 0;    // that were played
    std::uint32_t worldCRC = 0; // of the last one
};

// Plays the game. A picture that cannot be written ends it; the stage knows why.
ShowResult PlayShow(Game & game, Stage & stage, ShowOptions const & options);
