#include "Cross/Util/KeyValueContainerIO.h"

#include "Cross/Util/KeyValueContainer.h"
#include "Cross/engine/core/Text.h"
#include "Cross/engine/scriptconfig/LuaConfig.h"
#include "Cross/engine/scriptconfig/LuaConfigSave.h"

#include <string>
#include <utility>
#include <vector>

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

void readField(LuaConfig::Iterator const & field, float & value) {
    double number = 0.0;
    field.GetNumber(number);
    value = static_cast<float>(number);
}

void readField(LuaConfig::Iterator const & field, std::string & value) { field.GetString(value); }

// The fields of a table in the order of a walk, none when there is no table of that name. A field of another
// kind is 0 or "".
template <class Value>
std::vector<std::pair<std::string, Value>> fieldsOf(LuaConfig & config, char const * table) {
    std::vector<std::pair<std::string, Value>> fields;
    if (config.GetType(table) != LuaConfig::LT_TABLE)
        return fields;
    config.PushTable(table);
    LuaConfig::Iterator const end = config.IterateEnd();
    for (LuaConfig::Iterator it = config.IterateBegin(); it != end; ++it) {
        fields.emplace_back(it.GetName(), Value());
        readField(it, fields.back().second);
    }
    config.PopTable();
    return fields;
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
    if (!LuaConfigSave::LoadLua(config, stream))
        return false;
    return Load(container, config, name);
}

bool Load(KeyValueContainer & container, LuaConfig & config, char const * name) {
    container.SetAll(fieldsOf<float>(config, name));
    container.SetAllStrings(fieldsOf<std::string>(config, StringsName(name).text));
    return true;
}

} // namespace KeyValueContainerIO
