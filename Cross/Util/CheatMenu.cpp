#include "Cross/Util/CheatMenu.h"

#include "Cross/Util/CheatMenuLines.h"
#include "Cross/Util/DebugRender.h"
#include "Cross/Util/lua/LuaLibNames.h"
#include "Cross/engine/core/Text.h"
#include "Cross/engine/diagnostics/Trace.h"
#include "Cross/engine/scriptconfig/GlobalLua.h"

#include <lua.hpp>

CheatMenu::MenuNode::Item const CheatMenu::s_emptyItem;

constinit std::uint32_t CheatMenu::s_generation = 0;

namespace {

using Item = CheatMenu::MenuNode::Item;

// A name that nothing else uses.
constexpr char const * c_value = "g_cheat_value_that_nobody_will_ever_use";

constinit CheatMenu * s_instance = nullptr;

// The value of a script expression, which is assigned to a global for that. A failure gives 0 or false.
template <class Value>
Value readValue(std::string const & expression, char const * kind,
                bool (LuaConfig::*read)(char const *, Value &)) {
    Value value{};
    LuaConfig & config = *GlobalLua::GetState();
    lua_State * const L = config.GetState();
    int const height = lua_gettop(L);
    std::string const statement = std::string(c_value) + "=" + expression;
    if (config.RunString(statement.c_str(), false)) {
        lua_pushvalue(L, LUA_GLOBALSINDEX);
        (config.*read)(c_value, value);
        config.ClearVariable(c_value);
    } else
        dbTimeStampedTracefAux("CheatMenu: error running %s get-function '%s'", kind, statement.c_str());
    lua_settop(L, height);
    return value;
}

// printf with a format that has been checked.
template <class Value>
bool printChecked(std::string & out, char const * format, Value value) {
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
    return text::Printf(out, format, value);
#pragma GCC diagnostic pop
}

// Runs the statement that a set function's format makes of a value. A bad format is not run.
template <class Value>
void writeValue(std::string const & setFunction, char const * kind, bool takesText, Value value) {
    char const * const format = setFunction.c_str();
    std::string statement = format;
    bool const isMade = !menulines::FormatFault(format, takesText) && printChecked(statement, format, value);
    if (!isMade || !GlobalLua::GetState()->RunString(statement.c_str(), false))
        dbTimeStampedTracefAux("CheatMenu: error running %s set-function '%s'", kind, statement.c_str());
}

void runCommand(Item const & item) {
    std::string const command = item.command; // the line may be gone when it has run
    if (!GlobalLua::GetState()->RunString(command.c_str(), false))
        dbTimeStampedTracefAux("CheatMenu: error running function '%s'", command.c_str());
}

float limited(Item const & item, float value) {
    if (!(value > item.min))
        value = item.min;
    return value > item.max ? item.max : value;
}

} // namespace

bool CheatMenu::Initialize() {
    if (s_instance)
        return false;
    s_instance = new CheatMenu;
    return true;
}

bool CheatMenu::Shutdown() {
    if (!s_instance)
        return false;
    delete s_instance;
    s_instance = nullptr;
    return true;
}

CheatMenu * CheatMenu::Instance() { return s_instance; }

CheatMenu::CheatMenu() : path{&root} {}

CheatMenu::~CheatMenu() { ClearNodes(); }

void CheatMenu::Enable(bool enable) {
    enabled = enable;
    if (!enable)
        DebugRender::Clear(LUALIB_CHEATMENU);
}

void CheatMenu::Toggle() { Enable(!enabled); }

void CheatMenu::NextItem() {
    if (!enabled)
        return;
    MenuNode & node = *path.back();
    ++node.selection;
    if (node.selection >= node.items.size())
        node.selection = 0;
}

void CheatMenu::PreviousItem() {
    if (!enabled)
        return;
    MenuNode & node = *path.back();
    if (node.selection == 0)
        node.selection = static_cast<std::uint32_t>(node.items.size());
    --node.selection;
}

void CheatMenu::PreviousMenu() {
    if (!enabled)
        return;
    if (path.size() > 1)
        path.pop_back();
    else
        Enable(false);
}

void CheatMenu::DoItemLeft() {
    if (!enabled)
        return;
    Item const * const item = selectedItem();
    if (item && item->type == IT_VARIABLE)
        changeValue(*item, -1.0f);
    else
        PreviousMenu();
}

void CheatMenu::DoItemRight() {
    Item const * const item = enabled ? selectedItem() : nullptr;
    if (item && item->type == IT_SUBMENU)
        DoItemAction();
    else if (item && item->type == IT_VARIABLE)
        changeValue(*item, 1.0f);
}

void CheatMenu::DoItemAction() {
    Item const * const item = enabled ? selectedItem() : nullptr;
    if (!item)
        return;
    if (item->type == IT_SUBMENU)
        path.push_back(item->subMenu);
    else if (item->type == IT_COMMAND)
        runCommand(*item);
    else if (item->type == IT_VARIABLE && item->varType == VT_BOOLEAN)
        changeValue(*item, 1.0f);
}

// Null when the current menu has no lines.
CheatMenu::Item const * CheatMenu::selectedItem() const {
    MenuNode const & node = *path.back();
    return node.selection < node.items.size() ? &node.items[node.selection] : nullptr;
}

bool CheatMenu::GetBooleanValue(Item const & item) {
    return readValue(item.getFunction, "boolean", &LuaConfig::GetBoolean);
}

void CheatMenu::SetBooleanValue(Item const & item, bool value) {
    writeValue(item.setFunction, "boolean", true, value ? "true" : "false");
}

float CheatMenu::GetFloatValue(Item const & item) {
    return static_cast<float>(readValue(item.getFunction, "float", &LuaConfig::GetNumber));
}

void CheatMenu::SetFloatValue(Item const & item, float value) {
    writeValue(item.setFunction, "float", false, static_cast<double>(value));
}

// Toggles a switch or makes a step.
void CheatMenu::changeValue(Item const & line, float direction) {
    Item const item = line; // the line may be gone when its value is read
    if (item.varType == VT_BOOLEAN)
        SetBooleanValue(item, !GetBooleanValue(item));
    else if (item.varType == VT_FLOAT)
        SetFloatValue(item, limited(item, GetFloatValue(item) + direction * item.stepSize));
}
