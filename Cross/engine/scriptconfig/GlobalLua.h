#pragma once

// The one global script state of the process, for the main thread.

#include "Cross/engine/core/Export.h"

class LuaConfig;

class CROSS_ENGINE_API GlobalLua {
public:
    // Made at the first call; never null. It stays for the rest of the process.
    static LuaConfig * GetState();

    // Closes the state for a tidy exit. A later GetState makes a new one.
    static void Shutdown();
};
