// The script library "statgraph": switches for the graph and its channels.

#include "Cross/Util/StatGraph.h"
#include "Cross/Util/lua/LuaBindingObj.h"
#include "Cross/Util/lua/LuaLibNames.h"
#include "Cross/engine/core/Text.h"
#include "Cross/engine/scriptconfig/LuaLibMan.h"
#include "Cross/engine/scriptconfig/LuaLibrary.h"
#include "Cross/engine/scriptconfig/LuaPrint.h"

#include <algorithm>

namespace {

using Names = std::list<std::string>;

Names channelNames() {
    Names names;
    StatGraph::ListChannels(names);
    return names;
}

// Whether a channel has exactly this name, as it is listed; the console tells when none has, by the name
// that the script gave.
bool demandChannel(std::string const & listed, char const * given) {
    Names const names = channelNames();
    if (std::find(names.begin(), names.end(), listed) != names.end())
        return true;
    luax_print(LuaBinding::GetContext(), "unable to find channel '%s'", given);
    return false;
}

void statgraph() { StatGraph::SetVisible(!StatGraph::GetVisible()); }

bool statgraph_get_visible() { return StatGraph::GetVisible(); }

void statgraph_set_visible(bool visible) { StatGraph::SetVisible(visible); }

void statgraph_list() {
    lua_State * const state = LuaBinding::GetContext();
    Names const names = channelNames();
    if (names.empty()) {
        luax_print(state, "No channels to list");
        return;
    }
    luax_print(state, "Channels");
    luax_print(state, "--------");
    for (std::string const & name : names)
        luax_print(state, "%s", name.c_str());
}

// Finds the channel whatever the case of the name; the two below want the name as it is listed.
void statgraph_channel(char const * name) {
    std::string listed = name;
    text::ToLower(listed.data());
    if (demandChannel(listed, name))
        StatGraph::ChannelEnable(name, !StatGraph::ChannelEnabled(name));
}

bool statgraph_channel_get_enabled(char const * name) {
    return demandChannel(name, name) && StatGraph::ChannelEnabled(name);
}

void statgraph_channel_set_enabled(char const * name, bool enable) {
    if (!demandChannel(name, name))
        return;
    if (enable)
        StatGraph::SetVisible(true);
    StatGraph::ChannelEnable(name, enable);
}

void statgraph_clear() {
    for (std::string const & name : channelNames())
        StatGraph::ChannelEnable(name.c_str(), false);
}

void statgraph_pause() { StatGraph::SetPause(!StatGraph::GetPause()); }

class StatGraphLuaLibrary : public LuaLibrary {
public:
    StatGraphLuaLibrary() { LuaLibMan::AddLibrary(LUALIB_STATGRAPH, this); }

    ~StatGraphLuaLibrary() override { LuaLibMan::RemLibrary(LUALIB_STATGRAPH, this); }

    bool BindState(LuaConfig & config) override {
        using LuaBinding::Bind;
        StoreLuaBindingObj(config, Bind(config, "statgraph", &statgraph));
        StoreLuaBindingObj(config, Bind(config, "statgraph_get_visible", &statgraph_get_visible));
        StoreLuaBindingObj(config, Bind(config, "statgraph_set_visible", &statgraph_set_visible));
        StoreLuaBindingObj(config, Bind(config, "statgraph_list", &statgraph_list));
        StoreLuaBindingObj(config, Bind(config, "statgraph_channel", &statgraph_channel));
        StoreLuaBindingObj(config,
                           Bind(config, "statgraph_channel_get_enabled", &statgraph_channel_get_enabled));
        StoreLuaBindingObj(config,
                           Bind(config, "statgraph_channel_set_enabled", &statgraph_channel_set_enabled));
        StoreLuaBindingObj(config, Bind(config, "statgraph_clear", &statgraph_clear));
        StoreLuaBindingObj(config, Bind(config, "statgraph_pause", &statgraph_pause));
        return true;
    }

    bool ReleaseState(LuaConfig & config) override {
        ClearLuaBindingObj(config);
        return true;
    }
};

StatGraphLuaLibrary s_library;

} // namespace
