// The script library "warninglib": copying warnings into the trace, by category.

#include "Cross/Util/WarningTrace.h"
#include "Cross/Util/lua/LuaBindingObj.h"
#include "Cross/Util/lua/LuaLibNames.h"
#include "Cross/engine/scriptconfig/LuaLibMan.h"
#include "Cross/engine/scriptconfig/LuaLibrary.h"

namespace {

// The first four characters, from the first one down; a shorter text gives a smaller value. Bytes above 127
// are sign-extended and so set all bits above them.
std::uint32_t categoryOf(char const * text) {
    std::uint32_t category = 0;
    for (int i = 0; i < 4 && text[i] != '\0'; ++i)
        category = (category << 8) | static_cast<std::uint32_t>(static_cast<signed char>(text[i]));
    return category;
}

void warningEnable(char const * category) { EnableWarningTraceOutput(categoryOf(category)); }

void warningDisable(char const * category) { DisableWarningTraceOutput(categoryOf(category)); }

void warningSet(char const * category, bool enable) { SetWarningTraceOutput(categoryOf(category), enable); }

class LuaWarningLib : public LuaLibrary {
public:
    LuaWarningLib() { LuaLibMan::AddLibrary(LUALIB_WARNING, this); }

    ~LuaWarningLib() override { LuaLibMan::RemLibrary(LUALIB_WARNING, this); }

    bool BindState(LuaConfig & config) override {
        StoreLuaBindingObj(config, LuaBinding::Bind(config, "WarningEnable", &warningEnable));
        StoreLuaBindingObj(config, LuaBinding::Bind(config, "WarningDisable", &warningDisable));
        StoreLuaBindingObj(config, LuaBinding::Bind(config, "WarningSet", &warningSet));
        return true;
    }

    bool ReleaseState(LuaConfig & config) override {
        ClearLuaBindingObj(config);
        return true;
    }
};

LuaWarningLib s_library;

} // namespace
