// The script library "systemconfig". Without settings its functions do nothing.

#include "Cross/Util/SystemConfig.h"
#include "Cross/Util/lua/LuaBindingObj.h"
#include "Cross/Util/lua/LuaLibNames.h"
#include "Cross/engine/diagnostics/Trace.h"
#include "Cross/engine/scriptconfig/LuaLibMan.h"
#include "Cross/engine/scriptconfig/LuaLibrary.h"

namespace {

Dictionary::Key keyOf(char const * name) { return Dictionary::Instance().GetKey(name); }

void sysconfig_setsetting(char const * name, unsigned int value) {
    if (SystemConfig * const config = SystemConfig::Instance())
        config->SetSetting(keyOf(name), value);
}

void sysconfig_getsetting(char const * name) {
    Dictionary::Key const key = keyOf(name);
    SystemConfig const * const config = SystemConfig::Instance();
    unsigned int const value = config ? config->GetSetting(key) : SystemConfig::NOT_SET;
    if (value == SystemConfig::NOT_SET)
        dbTimeStampedTracefAux("SYSTEMCONFIG -- '%s' is not set.", name);
    else
        dbTimeStampedTracefAux("SYSTEMCONFIG -- '%s': %d", name, static_cast<int>(value));
}

void sysconfig_load(char const * path) {
    if (SystemConfig * const config = SystemConfig::Instance())
        config->Load(path, false);
}

void sysconfig_save(char const * path) {
    if (SystemConfig const * const config = SystemConfig::Instance())
        config->Save(path);
}

class LuaSystemConfigLib : public LuaLibrary {
public:
    LuaSystemConfigLib() { LuaLibMan::AddLibrary(LUALIB_SYSTEMCONFIG, this); }

    ~LuaSystemConfigLib() override { LuaLibMan::RemLibrary(LUALIB_SYSTEMCONFIG, this); }

    bool BindState(LuaConfig & config) override {
        StoreLuaBindingObj(config, LuaBinding::Bind(config, "sysconfig_setsetting", &sysconfig_setsetting));
        StoreLuaBindingObj(config, LuaBinding::Bind(config, "sysconfig_getsetting", &sysconfig_getsetting));
        StoreLuaBindingObj(config, LuaBinding::Bind(config, "sysconfig_load", &sysconfig_load));
        StoreLuaBindingObj(config, LuaBinding::Bind(config, "sysconfig_save", &sysconfig_save));
        return true;
    }

    bool ReleaseState(LuaConfig & config) override {
        ClearLuaBindingObj(config);
        return true;
    }
};

LuaSystemConfigLib s_library;

} // namespace
