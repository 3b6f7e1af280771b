#pragma once

// A script library: a module's functions for scripts. Its one static object enters itself with LuaLibMan at
// load; the manager hands it every script state, and it binds its functions there.
//
// Threads: those of the script states; entering and leaving belong to load and unload.

#include "Cross/engine/core/Export.h"
#include "Cross/engine/scriptconfig/LuaBinding.h"

#include <functional>
#include <map>
#include <vector>

class LuaConfig;

class CROSS_ENGINE_API LuaLibrary {
public:
    LuaLibrary();
    LuaLibrary(LuaLibrary const &) = delete;
    LuaLibrary & operator=(LuaLibrary const &) = delete;
    virtual ~LuaLibrary();

    // Binds the library's functions to a script state; gives true.
    virtual bool BindState(LuaConfig & config) = 0;

    // Drops them again; gives true.
    virtual bool ReleaseState(LuaConfig & config) = 0;

    // Keeps a binding for that state.
    void StoreLuaBindingObj(LuaConfig & config, LuaBinding::Obj const & object);

    // Drops all bindings kept for that state.
    void ClearLuaBindingObj(LuaConfig & config);

    // Calls `visit` for each binding kept for that state, in the order in which they were stored.
    void VisitLuaBindingObjs(LuaConfig & config,
                             std::function<void(LuaBinding::ObjInternalBase const &)> const & visit) const;

private:
    std::map<LuaConfig *, std::vector<LuaBinding::Obj>> bindings;
};
