#include "Cross/engine/scriptconfig/LuaLibMan.h"

#include "Cross/engine/scriptconfig/LuaLibrary.h"

#include <algorithm>
#include <string>
#include <vector>

namespace {

struct Entered {
    std::string name;
    LuaLibrary * library;
};

struct Registry {
    std::vector<Entered> libraries;
    std::vector<LuaConfig *> states;
};

// Immortal: libraries leave it after main.
Registry & registry() {
    static Registry * const instance = new Registry;
    return *instance;
}

} // namespace

void LuaLibMan::AddLibrary(char const * name, LuaLibrary * library) {
    registry().libraries.push_back({name, library});
    try {
        for (LuaConfig * state : registry().states)
            library->BindState(*state);
    } catch (...) {
        RemLibrary(name, library);
        throw;
    }
}

void LuaLibMan::RemLibrary(char const * name, LuaLibrary * library) {
    std::vector<Entered> & libraries = registry().libraries;
    auto const found = std::find_if(libraries.begin(), libraries.end(), [&](Entered const & entered) {
        return entered.library == library && entered.name == name;
    });
    if (found == libraries.end())
        return;
    libraries.erase(found);
    for (LuaConfig * state : registry().states)
        library->ReleaseState(*state);
}

void LuaLibMan::AddState(LuaConfig & config) {
    registry().states.push_back(&config);
    try {
        for (Entered const & entered : registry().libraries)
            entered.library->BindState(config);
    } catch (...) {
        RemState(config);
        throw;
    }
}

void LuaLibMan::RemState(LuaConfig & config) {
    if (std::erase(registry().states, &config) == 0)
        return;
    std::vector<Entered> const & libraries = registry().libraries;
    for (auto entered = libraries.rbegin(); entered != libraries.rend(); ++entered)
        entered->library->ReleaseState(config);
}

void LuaLibMan::VisitLibraries(std::function<void(char const * name, LuaLibrary & library)> const & visit) {
    for (Entered const & entered : registry().libraries)
        visit(entered.name.c_str(), *entered.library);
}
