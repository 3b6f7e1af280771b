#include "Cross/Util/AttributesLua.h"

#include "Cross/Util/AttributesShared.h"
#include "Cross/engine/core/Saturate.h"
#include "Cross/engine/scriptconfig/LuaConfig.h"

namespace {

using EntryName = char[256];

bool findName(LuaConfig & config, std::uint32_t key, EntryName & name) {
    return config.AtEntry(key, name, sizeof(name));
}

} // namespace

AttributesLua::AttributesLua(LuaConfig * config, char const * debugName)
    : AttributesInterface(debugName), config(config) {}

bool AttributesLua::AttributeExists(std::uint32_t key) const {
    EntryName name;
    return findName(*config, key, name) && AttributeExists(name);
}

bool AttributesLua::AttributeExists(char const * name) const {
    LuaConfig::LuaType const type = config->GetType(name);
    return type == LuaConfig::LT_BOOLEAN || type == LuaConfig::LT_NUMBER || type == LuaConfig::LT_STRING;
}

bool AttributesLua::GetNumber(std::uint32_t key, int & value) const {
    EntryName name;
    return findName(*config, key, name) && GetNumber(name, value);
}

bool AttributesLua::GetNumber(std::uint32_t key, float & value) const {
    EntryName name;
    return findName(*config, key, name) && GetNumber(name, value);
}

bool AttributesLua::GetNumber(char const * name, float min, float max, float & value) const {
    double number;
    if (!config->GetNumber(name, number))
        return false;
    value = attributes::Clamp(static_cast<float>(number), min, max);
    return true;
}

bool AttributesLua::GetNumber(char const * name, float & value) const {
    double number;
    if (!config->GetNumber(name, number))
        return false;
    value = static_cast<float>(number);
    return true;
}

bool AttributesLua::GetNumber(char const * name, int & value) const {
    double number;
    if (!config->GetNumber(name, number))
        return false;
    value = SaturateTo<int>(number);
    return true;
}

bool AttributesLua::GetBool(std::uint32_t key, bool & value) const {
    EntryName name;
    return findName(*config, key, name) && GetBool(name, value);
}

bool AttributesLua::GetBool(char const * name, bool & value) const {
    if (LCGetBool(*config, name, value))
        return true;
    value = false;
    return false;
}

bool AttributesLua::GetString(std::uint32_t key, char * buffer, unsigned int size) const {
    buffer[0] = '\0';
    EntryName name;
    return findName(*config, key, name) && GetString(name, buffer, size);
}

bool AttributesLua::GetString(char const * name, char * buffer, unsigned int size) const {
    if (config->GetString(name, buffer, size))
        return true;
    if (size > 0)
        buffer[0] = '\0';
    return false;
}

bool AttributesLua::GetWString(std::uint32_t key, char16_t * buffer, unsigned int size) const {
    buffer[0] = u'\0';
    EntryName name;
    return findName(*config, key, name) && GetWString(name, buffer, size);
}

bool AttributesLua::GetWString(char const * name, char16_t * buffer, unsigned int size) const {
    if (LCGetWString(*config, name, buffer, size))
        return true;
    if (size > 0)
        buffer[0] = u'\0';
    return false;
}

bool AttributesLua::TableExists(std::uint32_t key) const {
    EntryName name;
    return findName(*config, key, name) && TableExists(name);
}

bool AttributesLua::TableExists(char const * name) const {
    return config->GetType(name) == LuaConfig::LT_TABLE;
}

void AttributesLua::TablePush(std::uint32_t key) {
    EntryName name;
    if (findName(*config, key, name))
        TablePush(name);
}

void AttributesLua::TablePush(char const * name) {
    if (config->GetType(name) != LuaConfig::LT_TABLE)
        attributes::WarnMissingTable(name, config->GetName());
    ++tableDepth;
    config->PushTable(name);
}

void AttributesLua::TablePop() {
    if (tableDepth <= 0)
        return;
    --tableDepth;
    config->PopTable();
}

void AttributesLua::TableRootPush() { config->PushTableGlobals(); }

void AttributesLua::TableRootPop() { config->PopTable(); }

unsigned int AttributesLua::GetCount() const { return config->CountEntry(); }

std::uint32_t AttributesLua::GetAt(unsigned int index) const { return index; }
