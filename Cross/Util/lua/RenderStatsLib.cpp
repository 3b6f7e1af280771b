// The script library "renderstats".

#include "Cross/Util/RenderStats.h"
#include "Cross/Util/lua/LuaBindingObj.h"
#include "Cross/Util/lua/LuaLibNames.h"
#include "Cross/engine/scriptconfig/LuaLibMan.h"
#include "Cross/engine/scriptconfig/LuaLibrary.h"

namespace {

RenderStats & stats() { return *RenderStats::Instance(); }

bool RenderStats_Get() { return stats().IsEnabled(); }

void RenderStats_Set(bool enable) {
    stats().Enable(enable);
    stats().UpdateImmediately();
}

void RenderStats_Enable() { RenderStats_Set(true); }

void RenderStats_Disable() { RenderStats_Set(false); }

void RenderStats_Toggle() { RenderStats_Set(!stats().IsEnabled()); }

void RenderStats_SetUpdateTime(float seconds) {
    stats().SetUpdateTime(seconds);
    stats().UpdateImmediately();
}

template <RenderStats::SortMode mode>
void sortBy() {
    stats().SetSortMode(mode);
    stats().UpdateImmediately();
}

void RenderStats_DumpToLogFile() { stats().DumpStatsToLogFile(); }

class LuaProfile : public LuaLibrary {
public:
    LuaProfile() { LuaLibMan::AddLibrary(LUALIB_RENDERSTATS, this); }

    ~LuaProfile() override { LuaLibMan::RemLibrary(LUALIB_RENDERSTATS, this); }

    bool BindState(LuaConfig & config) override {
        auto const bind = [&](char const * name, auto function) {
            StoreLuaBindingObj(config, LuaBinding::Bind(config, name, function));
        };
        bind("RenderStats_Get", &RenderStats_Get);
        bind("RenderStats_Set", &RenderStats_Set);
        bind("RenderStats_Enable", &RenderStats_Enable);
        bind("RenderStats_Disable", &RenderStats_Disable);
        bind("RenderStats_Toggle", &RenderStats_Toggle);
        bind("RenderStats_SetUpdateTime", &RenderStats_SetUpdateTime);
        bind("RenderStats_SortInstances", &sortBy<RenderStats::SortInstances>);
        bind("RenderStats_SortRenderCalls", &sortBy<RenderStats::SortRenderCalls>);
        bind("RenderStats_SortShaderChanges", &sortBy<RenderStats::SortShaderChanges>);
        bind("RenderStats_SortTris", &sortBy<RenderStats::SortTris>);
        bind("RenderStats_DumpToLogFile", &RenderStats_DumpToLogFile);
        return true;
    }

    bool ReleaseState(LuaConfig & config) override {
        ClearLuaBindingObj(config);
        return true;
    }
};

LuaProfile s_library;

} // namespace
