#pragma once

// What the command line says.

#include "samples/sandbox/Show.h"
#include "samples/sandbox/Stage.h"

#include <string>

struct Settings {
    std::string data = SANDBOX_DATA;
    std::string work = SANDBOX_WORK;
    std::string menu = "DATA:menu.lua";
    bool fail = false;
    unsigned int desync = 137;
    StageOptions stage;
    ShowOptions show;
};

// False when the program is to end with `code`: after --help, or with a message about what was not
// understood.
bool ReadCommandLine(int argc, char ** argv, Settings & settings, int & code);
