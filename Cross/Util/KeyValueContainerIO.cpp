#include "Cross/Util/KeyValueContainerIO.h"

#include "Cross/Util/KeyValueContainer.h"
#include "Cross/engine/core/Text.h"
#include "Cross/engine/scriptconfig/LuaConfig.h"
#include "Cross/engine/scriptconfig/LuaConfigSave.h"

#include <string>

namespace KeyValueContainerIO {

namespace {

// The name of the table of texts.
struct StringsName {
    explicit StringsName(char const * name) {
        text::PrintfCut(text, sizeof(text), "%s_strings", name ? name : "");
    }

    char text[256];
};

void saveNumbers(KeyValueContainer const & container, LuaConfig & config) {
    for (unsigned int i = 0; i < container.Size(); ++i) {
        char const * const name = container.At(i);
        if (container.Check(name))
            LCSetFloat(config, name, container.Retrieve(name));
    }
}

void saveStrings(KeyValueContainer const & container, LuaConfig & config) {
    for (unsigned int i = 0; i < container.SizeString(); ++i) {
        char const * const name = container.AtString(i);
        std::string value;
        container.RetrieveString(name, value);
        if (container.CheckString(name))
            config.SetString(name, value.c_str());
    }
}

// Calls visit(name) for each field of a table, if there is one of that name; `reserve` gets their number.
template <class Reserve, class Visit>
void walkTable(LuaConfig & config, char const * table, Reserve reserve, Visit visit) {
    if (config.GetType(table) != LuaConfig::LT_TABLE)
        return;
    config.PushTable(table);
    reserve(config.CountEntry());
    for (LuaConfig::Iterator it = config.IterateBegin(); it != config.IterateEnd(); ++it)
        visit(it.GetName());
    config.PopTable();
}

} // namespace

bool Save(KeyValueContainer const & container, ByteStream & stream, char const * name) {
    LuaConfig config("", false);
    LuaConfigSave::FilePathOnImport(config);
    config.PushTable(name);
    saveNumbers(container, config);
    config.PopTable();
    config.PushTable(StringsName(name).text);
    saveStrings(container, config);
    config.PopTable();
    return LuaConfigSave::SaveLua(config, true, false, stream);
}

bool Load(KeyValueContainer & container, ByteStream & stream, char const * name) {
    LuaConfig config("", false);
    LuaConfigSave::FilePathOnImport(config);
    return LuaConfigSave::LoadLua(config, stream) && Load(container, config, name);
}

bool Load(KeyValueContainer & container, LuaConfig & config, char const * name) {
    walkTable(
        config, name, [&](unsigned int count) { container.Reserve(count); },
        [&](char const * field) {
            float value = 0.0f;
            LCGetFloat(config, field, value);
            container.Set(field, value);
        });
    walkTable(
        config, StringsName(name).text, [&](unsigned int count) { container.ReserveString(count); },
        [&](char const * field) {
            std::string value;
            LCGetString(config, field, value);
            container.SetString(field, value);
        });
    return true;
}

} // namespace KeyValueContainerIO
