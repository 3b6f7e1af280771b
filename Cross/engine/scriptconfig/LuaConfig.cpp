#include "Cross/engine/scriptconfig/LuaConfig.h"

#include "Cross/engine/core/Text.h"
#include "Cross/engine/core/Utf.h"
#include "Cross/engine/diagnostics/Trace.h"
#include "Cross/engine/scriptconfig/LuaConfigData.h"
#include "Cross/engine/scriptconfig/LuaLibMan.h"

#include <algorithm>

using script::FieldName;
using script::StackHeight;

namespace {

LuaConfig::LuaType typeAt(lua_State * L, int index) {
    switch (lua_type(L, index)) {
    case LUA_TBOOLEAN:
        return LuaConfig::LT_BOOLEAN;
    case LUA_TNUMBER:
        return LuaConfig::LT_NUMBER;
    case LUA_TSTRING:
        return LuaConfig::LT_STRING;
    case LUA_TTABLE:
        return LuaConfig::LT_TABLE;
    default:
        return LuaConfig::LT_NONE;
    }
}

bool numberAt(lua_State * L, int index, double & value) {
    if (lua_type(L, index) != LUA_TNUMBER)
        return false;
    value = lua_tonumber(L, index);
    return true;
}

bool stringAt(lua_State * L, int index, std::string & value) {
    if (lua_type(L, index) != LUA_TSTRING)
        return false;
    std::size_t length = 0;
    char const * const text = lua_tolstring(L, index, &length);
    value.assign(text, length);
    return true;
}

// Null counts as "".
std::string_view view(char const * text) { return text ? text : ""; }

bool isHighSurrogate(char16_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }

} // namespace

struct LuaConfig::Iterator::Walk {
    explicit Walk(Data & data) : data(data), fields(data.ListFields()), reference(data.AnchorWalk(fields)) {
        if (reference == LUA_NOREF)
            fields.clear();
    }

    Walk(Walk const &) = delete;
    Walk & operator=(Walk const &) = delete;

    ~Walk() { data.ReleaseWalk(reference); } // none is ignored

    Data & data;
    std::vector<FieldName> fields;
    int const reference;
};

LuaConfig::Iterator::Iterator() = default;
LuaConfig::Iterator::Iterator(Iterator const & source) = default;
LuaConfig::Iterator & LuaConfig::Iterator::operator=(Iterator const & source) = default;
LuaConfig::Iterator::~Iterator() = default;

bool LuaConfig::Iterator::operator!=(Iterator const & other) const { return isAtEnd() != other.isAtEnd(); }

LuaConfig::Iterator & LuaConfig::Iterator::operator++() {
    if (!isAtEnd())
        ++position;
    return *this;
}

bool LuaConfig::Iterator::isAtEnd() const { return !walk || position >= walk->fields.size(); }

char const * LuaConfig::Iterator::GetName() const {
    return isAtEnd() ? "" : walk->fields[position].text.c_str();
}

// What `read` makes of the present field's value on top of the stack, and of a missing one at the end.
template <class Read>
auto LuaConfig::Iterator::readField(Read read) const {
    using Result = decltype(read(nullptr));
    if (isAtEnd())
        return Result{};
    lua_State * const L = walk->data.L;
    StackHeight const height(L);
    walk->data.PushWalked(walk->reference, position);
    return read(L);
}

LuaConfig::LuaType LuaConfig::Iterator::GetType() const {
    return readField([](lua_State * L) { return typeAt(L, -1); });
}

bool LuaConfig::Iterator::GetNumber(double & value) const {
    return readField([&value](lua_State * L) { return numberAt(L, -1, value); });
}

bool LuaConfig::Iterator::GetString(std::string & value) const {
    return readField([&value](lua_State * L) { return stringAt(L, -1, value); });
}

LuaConfig::LuaConfig(char const * name, bool flag) : data(std::make_unique<Data>(name, flag)) {
    if (flag)
        LuaLibMan::AddState(*this);
    data->TakeGlobalsForBuiltins();
}

LuaConfig::~LuaConfig() { LuaLibMan::RemState(*this); }

char const * LuaConfig::GetName() const { return data->name.c_str(); }

lua_State * LuaConfig::GetState() {
    data->ForgetListing();
    return data->L;
}

bool LuaConfig::RunString(char const * text, bool flag) {
    std::string_view const source = view(text);
    std::string reason;
    bool const ran = data->Run(source, source.data(), reason);
    if (!ran && flag)
        dbTimeStampedTracefAux("SCRIPT -- State '%s': %s", GetName(), reason.c_str());
    return ran;
}

LuaConfig::LuaType LuaConfig::GetType(char const * name) {
    StackHeight const height(data->L);
    data->PushField(data->CurrentTable(), view(name));
    return typeAt(data->L, -1);
}

void LuaConfig::PushTable(char const * name) { data->Enter(view(name)); }

void LuaConfig::PushTable(unsigned int index) { data->Enter(static_cast<double>(index)); }

void LuaConfig::PushTableGlobals() { data->EnterGlobals(); }

void LuaConfig::PopTable() { data->Leave(); }

unsigned int LuaConfig::CountEntry() { return static_cast<unsigned int>(data->Listing().size()); }

bool LuaConfig::AtEntry(unsigned int index, char * name, unsigned int size) {
    std::vector<FieldName> const & fields = data->Listing();
    if (index >= fields.size() || size == 0)
        return false;
    text::CopyCut(name, size, fields[index].text.c_str());
    return true;
}

LuaConfig::Iterator LuaConfig::IterateBegin() {
    Iterator begin;
    begin.walk = std::make_shared<Iterator::Walk>(*data);
    return begin;
}

LuaConfig::Iterator LuaConfig::IterateEnd() { return {}; }

bool LuaConfig::GetNumber(char const * name, double & value) {
    StackHeight const height(data->L);
    data->PushField(data->CurrentTable(), view(name));
    return numberAt(data->L, -1, value);
}

bool LuaConfig::GetBoolean(char const * name, bool & value) {
    StackHeight const height(data->L);
    data->PushField(data->CurrentTable(), view(name));
    if (!lua_isboolean(data->L, -1))
        return false;
    value = lua_toboolean(data->L, -1) != 0;
    return true;
}

bool LuaConfig::GetString(char const * name, char * buffer, unsigned int size) {
    StackHeight const height(data->L);
    data->PushField(data->CurrentTable(), view(name));
    if (lua_type(data->L, -1) != LUA_TSTRING)
        return false;
    text::CopyCut(buffer, size, lua_tostring(data->L, -1));
    return true;
}

bool LuaConfig::GetString(char const * name, std::string & value) {
    StackHeight const height(data->L);
    data->PushField(data->CurrentTable(), view(name));
    return stringAt(data->L, -1, value);
}

void LuaConfig::SetNumber(char const * name, double value) { data->SetNumber(view(name), value); }

void LuaConfig::SetString(char const * name, char const * text) { data->SetString(view(name), view(text)); }

void LuaConfig::ClearVariable(char const * name) { data->ClearField(view(name)); }

bool LCGetBool(LuaConfig & config, char const * name, bool & value) { return config.GetBoolean(name, value); }

bool LCGetFloat(LuaConfig & config, char const * name, float & value) {
    double number = 0;
    if (!config.GetNumber(name, number))
        return false;
    value = static_cast<float>(number);
    return true;
}

void LCSetFloat(LuaConfig & config, char const * name, float value) {
    config.SetNumber(name, static_cast<double>(value));
}

bool LCGetULong(LuaConfig & config, char const * name, std::uint32_t & value) {
    constexpr double end = 4294967296.0; // 2^32
    double number = 0;
    if (!config.GetNumber(name, number) || !(number > -1 && number < end))
        return false;
    value = static_cast<std::uint32_t>(number);
    return true;
}

void LCSetULong(LuaConfig & config, char const * name, std::uint32_t value) {
    config.SetNumber(name, static_cast<double>(value));
}

bool LCGetString(LuaConfig & config, char const * name, std::string & value) {
    return config.GetString(name, value);
}

bool LCGetWString(LuaConfig & config, char const * name, char16_t * buffer, unsigned int size) {
    std::string text;
    if (size == 0 || !config.GetString(name, text))
        return false;
    std::u16string const wide = utf::ToUtf16(text);
    std::size_t count = std::min<std::size_t>(wide.size(), size - 1);
    if (count > 0 && isHighSurrogate(wide[count - 1]))
        --count;
    std::copy_n(wide.data(), count, buffer);
    buffer[count] = 0;
    return true;
}
