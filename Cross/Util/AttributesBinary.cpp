#include "Cross/Util/AttributesBinary.h"

#include "Cross/Util/AttributesShared.h"
#include "Cross/Util/BinaryConfig.h"
#include "Cross/Util/NameHash.h"
#include "Cross/engine/core/Saturate.h"

AttributesBinary::AttributesBinary(BinaryConfig & config, char const * debugName)
    : AttributesInterface(debugName), config(&config) {
    AddCRCVal(config.GetCRC());
}

bool AttributesBinary::AttributeExists(std::uint32_t key) const { return config->AttributeExists(key); }

bool AttributesBinary::AttributeExists(char const * name) const { return config->AttributeExists(name); }

bool AttributesBinary::GetNumber(std::uint32_t key, int & value) const {
    return config->GetNumber(key, value);
}

bool AttributesBinary::GetNumber(std::uint32_t key, float & value) const {
    return config->GetNumber(key, value);
}

bool AttributesBinary::GetNumber(char const * name, float min, float max, float & value) const {
    if (!GetNumber(name, value))
        return false;
    value = attributes::Clamp(value, min, max);
    return true;
}

bool AttributesBinary::GetNumber(char const * name, float & value) const {
    return config->GetNumber(name, value);
}

bool AttributesBinary::GetNumber(char const * name, int & value) const {
    std::uint32_t const key = NameHash(name);
    if (config->GetNumber(key, value))
        return true;
    float number;
    if (!config->GetNumber(key, number))
        return false;
    value = SaturateTo<int>(number);
    return true;
}

bool AttributesBinary::GetBool(std::uint32_t key, bool & value) const { return config->GetBool(key, value); }

bool AttributesBinary::GetBool(char const * name, bool & value) const {
    value = false;
    std::uint32_t const key = NameHash(name);
    if (config->GetBool(key, value))
        return true;
    float number;
    if (!config->GetNumber(key, number))
        return false;
    value = number != 0.0f;
    return true;
}

// The text reads of the table clear the buffer first themselves, whatever its size.

bool AttributesBinary::GetString(std::uint32_t key, char * buffer, unsigned int size) const {
    return config->GetString(key, buffer, size);
}

bool AttributesBinary::GetString(char const * name, char * buffer, unsigned int size) const {
    return config->GetString(name, buffer, size);
}

bool AttributesBinary::GetWString(std::uint32_t key, char16_t * buffer, unsigned int size) const {
    return config->GetWString(key, buffer, size);
}

bool AttributesBinary::GetWString(char const * name, char16_t * buffer, unsigned int size) const {
    return config->GetWString(name, buffer, size);
}

bool AttributesBinary::TableExists(std::uint32_t key) const { return config->TableExists(key); }

bool AttributesBinary::TableExists(char const * name) const { return config->TableExists(name); }

void AttributesBinary::TablePush(std::uint32_t key) { config->TablePush(key); }

void AttributesBinary::TablePush(char const * name) {
    std::uint32_t const key = NameHash(name);
    if (!config->TableExists(key))
        attributes::WarnMissingTable(name, GetDebugName());
    config->TablePush(key);
}

void AttributesBinary::TablePop() { config->TablePop(); }

void AttributesBinary::TableRootPush() { config->TableRootPush(); }

void AttributesBinary::TableRootPop() { config->TableRootPop(); }

unsigned int AttributesBinary::GetCount() const { return config->GetCount(); }

std::uint32_t AttributesBinary::GetAt(unsigned int index) const { return config->GetAt(index); }
