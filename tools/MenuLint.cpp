#include "tools/MenuLint.h"

#include "Cross/Util/CheatMenuLines.h"
#include "tools/Quote.h"

namespace {

using menulines::Line;
using menulines::Way;

class Lint {
public:
    explicit Lint(LuaConfig & config) : config(config) {}

    MenuReport Run() {
        if (config.GetType(menulines::c_table) != LuaConfig::LT_TABLE)
            find("there is no table \"SubMenuItems\": the menu is empty");
        visitMenu(nullptr);
        return std::move(report);
    }

private:
    void find(std::string reason) {
        std::string joined;
        for (std::string const & part : path)
            joined += (joined.empty() ? "" : " > ") + part;
        report.findings.push_back({std::move(joined), std::move(reason)});
    }

    void visitMenu(Way const * above) {
        ++report.menus;
        char const * const closed =
            menulines::VisitLines(config, above, [this](Line const & line) { visitLine(line); });
        if (closed)
            find(std::string("stays empty: ") + closed);
        else
            findOddKeys();
    }

    void visitLine(Line const & line) {
        path.push_back(partOf(line));
        if (line.dropped)
            find(std::string("is dropped: ") + line.dropped);
        else
            visitGoodLine(line);
        path.pop_back();
    }

    void visitGoodLine(Line const & line) {
        ++report.lines;
        if (line.item.type == CheatMenu::IT_SUBMENU)
            visitMenu(&line.way);
        if (line.item.type == CheatMenu::IT_VARIABLE)
            visitVariable(line.item);
    }

    void visitVariable(CheatMenu::MenuNode::Item const & item) {
        if (item.varType != CheatMenu::VT_BOOLEAN && item.varType != CheatMenu::VT_FLOAT)
            return;
        char const * const fault =
            menulines::FormatFault(item.setFunction.c_str(), item.varType == CheatMenu::VT_BOOLEAN);
        if (fault)
            find(std::string("is never set: its \"set\" ") + fault);
    }

    // The key, and the name where there is one.
    std::string partOf(Line const & line) {
        std::string_view const key = line.key;
        bool const isNumber = key.find_first_not_of("0123456789") == key.npos && !key.empty();
        std::string const part = "[" + (isNumber ? std::string(key) : Quote(key)) + "]";
        std::string name;
        bool const hasName = line.dropped != menulines::c_noRoom && config.GetString("name", name);
        return hasName ? part + " " + Quote(name) : part;
    }

    // No name reaches what lies under other keys than whole numbers from 0 and texts.
    void findOddKeys() {
        if (config.GetType(menulines::c_table) != LuaConfig::LT_TABLE)
            return;
        menulines::Inside const lines(config, menulines::c_table);
        lua_State * const L = config.GetState();
        unsigned int entries = 0;
        for (lua_pushnil(L); lua_next(L, -2) != 0; lua_pop(L, 1))
            ++entries;
        if (unsigned int const odd = entries - config.CountEntry())
            find(std::to_string(odd) +
                 " of its entries are dropped: their keys are no whole numbers from 0 and "
                 "no texts");
    }

    LuaConfig & config;
    MenuReport report;
    std::vector<std::string> path;
};

} // namespace

MenuReport LintMenu(LuaConfig & state) { return Lint(state).Run(); }
