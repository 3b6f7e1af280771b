#pragma once

// The manager of the script libraries: brings every library together with every script state, whichever comes
// first. An exception out of a BindState takes the newcomer, library or state, out again and goes on.
//
// Threads: libraries enter and leave at load and unload, states belong to the main thread; one caller at a
// time. Lifetime: works before main and after it. Libraries and states are borrowed and must leave before
// they go.

#include "Cross/engine/core/Export.h"

#include <functional>

class LuaConfig;
class LuaLibrary;

class CROSS_ENGINE_API LuaLibMan {
public:
    // Enters a library and binds it to every living script state. The name is copied.
    static void AddLibrary(char const * name, LuaLibrary * library);

    // Takes a library out, after it has released every living script state. Unknown pairs are ignored.
    static void RemLibrary(char const * name, LuaLibrary * library);

    // Binds all libraries to a new script state, in the order in which they were entered.
    static void AddState(LuaConfig & config);

    // Has all libraries release a state that closes, in reverse order. Unknown states are ignored.
    static void RemState(LuaConfig & config);

    // Calls `visit` for each library in the order in which they were entered.
    static void VisitLibraries(std::function<void(char const * name, LuaLibrary & library)> const & visit);
};
