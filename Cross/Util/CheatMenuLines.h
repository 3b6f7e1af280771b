#pragma once

// Which lines of a menu file the menu takes, and which formats its set functions may be. Private to CheatMenu
// and to tools that explain it.

#include "Cross/Util/CheatMenu.h"
#include "Cross/engine/core/Saturate.h"
#include "Cross/engine/scriptconfig/LuaConfig.h"

#include <algorithm>
#include <cmath>
#include <lua.hpp>
#include <string_view>
#include <utility>

namespace menulines {

inline constexpr char const * c_table = "SubMenuItems"; // of the lines of a menu

// The tables of lines from the top menu down to one of its submenus. A table that stands on its own way would
// give menus without end.
struct Way {
    bool Holds(void const * wanted) const {
        for (Way const * way = this; way; way = way->above)
            if (way->table == wanted)
                return true;
        return false;
    }

    Way const * above;
    void const * table;
};

// One entry of a table of lines.
struct Line {
    char const * key;
    CheatMenu::MenuNode::Item item;
    char const * dropped; // why it is no line of the menu; null when it is one
    Way const & way;
};

// Has a table in a field of the current table as the current one, while it lives.
class Inside {
public:
    Inside(LuaConfig & config, char const * name) : config(config), height(lua_gettop(config.GetState())) {
        config.PushTable(name);
    }

    Inside(Inside const &) = delete;
    Inside & operator=(Inside const &) = delete;

    ~Inside() { config.PopTable(); }

    // A state without room for another table leaves the cursor where it is.
    bool HasEntered() const { return lua_gettop(config.GetState()) > height; }

private:
    LuaConfig & config;
    int const height;
};

inline constexpr char const * c_noRoom = "the state has no room for another table";

inline void ReadVariable(LuaConfig & config, CheatMenu::MenuNode::Item & item) {
    config.GetString("get", item.getFunction);
    config.GetString("set", item.setFunction);
    LCGetFloat(config, "min", item.min);
    LCGetFloat(config, "max", item.max);
    double varType = 0.0;
    if (config.GetNumber("var_type", varType))
        item.varType = SaturateTo<std::int32_t>(varType);
    if (item.varType != CheatMenu::VT_BOOLEAN)
        LCGetFloat(config, "stepsize", item.stepSize);
}

// Reads the line that is the current table. Null, or why it is none.
inline char const * ReadLine(LuaConfig & config, CheatMenu::MenuNode::Item & item) {
    double type = 0.0;
    if (!config.GetString("name", item.name))
        return "it has no text \"name\"";
    if (!config.GetNumber("type", type) || std::isnan(type))
        return "it has no number \"type\"";
    item.type = SaturateTo<std::int32_t>(type);
    if (item.type == CheatMenu::IT_COMMAND && !config.GetString("command", item.command))
        return "it has no text \"command\"";
    if (item.type == CheatMenu::IT_VARIABLE)
        ReadVariable(config, item);
    return item.name.empty() ? "its \"name\" is empty" : nullptr;
}

template <class Visit>
void VisitEntry(LuaConfig & config, char const * key, Way const & way, Visit const & visit) {
    Line line{key, {}, nullptr, way};
    Inside const entry(config, key);
    line.dropped = entry.HasEntered() ? ReadLine(config, line.item) : c_noRoom;
    visit(line);
}

// Calls visit(Line &) for each entry of the menu in the current table, whose way is `above`, with the line's
// own table as the current one. Null, or why there are none but for want of a table of lines.
template <class Visit>
char const * VisitLines(LuaConfig & config, Way const * above, Visit const & visit) {
    if (config.GetType(c_table) != LuaConfig::LT_TABLE)
        return nullptr;
    Inside const lines(config, c_table);
    if (!lines.HasEntered())
        return c_noRoom;
    Way const way{above, lua_topointer(config.GetState(), -1)};
    if (above && above->Holds(way.table))
        return "its lines are those of a menu around it";
    for (auto entry = config.IterateBegin(); entry != config.IterateEnd(); ++entry)
        VisitEntry(config, entry.GetName(), way, visit);
    return nullptr;
}

// Takes up to `longest` digits off a text. False when there are more.
inline bool SkipDigits(std::string_view & text, std::size_t longest) {
    std::size_t const count = std::min(text.find_first_not_of("0123456789"), text.size());
    text.remove_prefix(count);
    return count <= longest;
}

// Takes a conversion without its '%' off a text. Null, or why it is not allowed: it must take a boolean's
// text, or a float's number, and nothing else, and make no endless text of it.
inline char const * SkipConversion(std::string_view & text, bool takesText) {
    constexpr std::size_t c_longest = 3;
    std::string_view const flags = takesText ? "-" : "-+ #0";
    text.remove_prefix(std::min(text.find_first_not_of(flags), text.size()));
    bool isShort = text.starts_with('0') || SkipDigits(text, c_longest);
    if (text.starts_with('.')) {
        text.remove_prefix(1);
        isShort = SkipDigits(text, c_longest) && isShort;
    }
    if (!isShort)
        return "has a width or precision of more than three digits";
    if (!takesText && text.starts_with('l'))
        text.remove_prefix(1);
    if (text.empty())
        return "ends within a conversion";
    if (std::string_view(takesText ? "s" : "fFeEgGaA").find(text.front()) == text.npos)
        return takesText ? "has a conversion that is none of a boolean, which is %s"
                         : "has a conversion that is none of a float, such as %f";
    text.remove_prefix(1);
    return nullptr;
}

// What is wrong with a set function's format; null for nothing. It has one conversion or none.
inline char const * FormatFault(std::string_view format, bool takesText) {
    bool hasConversion = false;
    for (std::size_t at = format.find('%'); at != format.npos; at = format.find('%')) {
        format.remove_prefix(at + 1);
        if (format.starts_with('%')) {
            format.remove_prefix(1);
            continue;
        }
        if (char const * const fault = SkipConversion(format, takesText))
            return fault;
        if (std::exchange(hasConversion, true))
            return "has more than one conversion";
    }
    return nullptr;
}

} // namespace menulines
