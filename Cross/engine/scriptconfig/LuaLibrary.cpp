#include "Cross/engine/scriptconfig/LuaLibrary.h"

LuaLibrary::LuaLibrary() = default;

LuaLibrary::~LuaLibrary() = default;

void LuaLibrary::StoreLuaBindingObj(LuaConfig & config, LuaBinding::Obj const & object) {
    bindings[&config].push_back(object);
}

void LuaLibrary::ClearLuaBindingObj(LuaConfig & config) { bindings.erase(&config); }

void LuaLibrary::VisitLuaBindingObjs(
    LuaConfig & config, std::function<void(LuaBinding::ObjInternalBase const &)> const & visit) const {
    auto const stored = bindings.find(&config);
    if (stored == bindings.end())
        return;
    for (LuaBinding::Obj const & object : stored->second)
        visit(*object);
}
