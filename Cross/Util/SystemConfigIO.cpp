// Settings files: Lua source, run in a state of its own, and the tables it leaves.

#include "Cross/Util/SystemConfig.h"
#include "Cross/engine/core/Text.h"
#include "Cross/engine/diagnostics/Trace.h"
#include "Cross/engine/filesystem/FilePath.h"
#include "Cross/engine/filesystem/FilePathHDRaw.h"
#include "Cross/engine/filesystem/PathText.h"
#include "Cross/engine/scriptconfig/LuaConfig.h"
#include "Cross/engine/scriptconfig/LuaConfigSave.h"

#include <utility>

namespace {

constexpr std::uint32_t c_version = 1007;

ByteStreamProxy openFile(char const * path, StreamMode mode) {
    if (fs::HasAlias(path))
        return FilePath::OpenStream(path, mode);
    return ByteStreamProxy(FilePathHDRaw::UnaliasedFileOpen(path, mode, false));
}

// The numbers of the current table from 1 up to the first that is missing.
std::vector<float> readList(LuaConfig & config) {
    std::vector<float> list;
    char name[24];
    float value;
    while (text::PrintfCut(name, sizeof(name), "%zu", list.size() + 1), LCGetFloat(config, name, value))
        list.push_back(value);
    return list;
}

} // namespace

bool SystemConfig::Load(char const * path, bool ignoreVersion) {
    ByteStreamProxy const stream = openFile(path, c_streamRead);
    LuaConfig config("", false);
    if (stream && LuaConfigSave::LoadLua(config, *stream))
        return Load(config, ignoreVersion);
    dbTimeStampedTracefAux("SYSTEMCONFIG -- Failed to load configuration from '%s'.", path);
    return false;
}

bool SystemConfig::Load(LuaConfig & config, bool ignoreVersion) {
    std::uint32_t version = 0;
    if (!ignoreVersion && (!LCGetULong(config, "version", version) || version < c_version))
        return false;

    std::pair<char const *, unsigned int &> const figures[] = {
        {"applicationBaseMemory", baseMemory},
        {"d3d10AdditionalMemory", d3d10Memory},
        {"allowableVirtualMemoryUsage", allowableOverflow},
    };
    for (auto const & [name, figure] : figures) {
        float megabytes;
        if (LCGetFloat(config, name, megabytes))
            figure = kilobytesOf(megabytes);
    }
    loadSettings(config);
    notify(Dictionary::Key::INVALID, NOT_SET, NOT_SET, true);
    return true;
}

bool SystemConfig::Save(char const * path) const {
    LuaConfig config("", false);
    Save(config);
    ByteStreamProxy const stream = openFile(path, c_streamWrite);
    if (stream && LuaConfigSave::SaveLua(config, true, true, *stream))
        return true;
    dbTimeStampedTracefAux("SYSTEMCONFIG -- Failed to save configuration to '%s'.", path);
    return false;
}

bool SystemConfig::Save(LuaConfig & config) const {
    LCSetULong(config, "version", c_version);
    config.PushTable("configuration");
    unsigned int index = 0;
    for (Setting const & setting : settings) {
        config.PushTable(++index);
        config.SetString("setting", Dictionary::Instance().GetString(setting.key));
        LCSetULong(config, "value", setting.value);
        LCSetULong(config, "valueType", setting.valueType);
        config.PopTable();
    }
    config.PopTable();
    return true;
}

void SystemConfig::loadSettings(LuaConfig & config) {
    config.PushTable("configuration");
    for (LuaConfig::Iterator it = config.IterateBegin(); it != config.IterateEnd(); ++it) {
        if (it.GetType() != LuaConfig::LT_TABLE)
            break;
        config.PushTable(it.GetName());
        loadSetting(config);
        config.PopTable();
    }
    config.PopTable();
}

void SystemConfig::loadSetting(LuaConfig & config) {
    char name[64];
    if (!config.GetString("setting", name, sizeof(name))) {
        dbTimeStampedTracefAux("SYSTEMCONFIG -- 'setting' not found in configuration table.");
        return;
    }
    std::uint32_t value = 0;
    if (!LCGetULong(config, "value", value)) {
        dbTimeStampedTracefAux("SYSTEMCONFIG -- 'value' not found in configuration table.");
        return;
    }
    std::uint32_t valueType = VT_NUMBER;
    if (!LCGetULong(config, "valueType", valueType) || valueType != VT_SWITCH)
        valueType = VT_NUMBER;

    Dictionary::Key const key = Dictionary::Instance().GetKey(name);
    if (Setting const * const known = find(key))
        known->value = value;
    else
        insert({key, value, valueType, false});
    loadMemoryUsed(config, key);
}

void SystemConfig::loadMemoryUsed(LuaConfig & config, Dictionary::Key key) {
    if (config.GetType("memoryUsed") != LuaConfig::LT_TABLE)
        return;
    config.PushTable("memoryUsed");
    std::vector<float> list = readList(config);
    config.PopTable();
    if (!list.empty())
        memoryTable[key] = std::move(list);
}
