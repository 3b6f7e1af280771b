// How a script file becomes a tree of menus, and how the tree goes.

#include "Cross/Util/CheatMenu.h"
#include "Cross/Util/CheatMenuLines.h"
#include "Cross/engine/diagnostics/Trace.h"
#include "Cross/engine/scriptconfig/GlobalLua.h"
#include "Cross/engine/scriptconfig/LuaConfigSave.h"

#include <algorithm>
#include <utility>

namespace {

// Takes the lines of an earlier file out of the globals: a file that sets none has none.
class EarlierLines {
public:
    explicit EarlierLines(lua_State * L) : L(L), isTaken(call(take)) {}

    EarlierLines(EarlierLines const &) = delete;
    EarlierLines & operator=(EarlierLines const &) = delete;

    ~EarlierLines() { luaL_unref(L, LUA_REGISTRYINDEX, reference); }

    // False when Lua has no memory for it.
    bool IsTaken() const { return isTaken; }

    void PutBack() { call(putBack); }

private:
    // What allocates may raise an error, which must not leave.
    bool call(lua_CFunction function) {
        if (lua_cpcall(L, function, this) == 0)
            return true;
        lua_pop(L, 1);
        return false;
    }

    static int take(lua_State * L) {
        auto & self = *static_cast<EarlierLines *>(lua_touserdata(L, 1));
        lua_pushstring(L, menulines::c_table);
        lua_pushvalue(L, 2);
        lua_rawget(L, LUA_GLOBALSINDEX);
        self.reference = luaL_ref(L, LUA_REGISTRYINDEX);
        lua_pushnil(L);
        lua_rawset(L, LUA_GLOBALSINDEX);
        return 0;
    }

    static int putBack(lua_State * L) {
        auto const & self = *static_cast<EarlierLines const *>(lua_touserdata(L, 1));
        lua_pushstring(L, menulines::c_table);
        lua_rawgeti(L, LUA_REGISTRYINDEX, self.reference);
        lua_rawset(L, LUA_GLOBALSINDEX);
        return 0;
    }

    lua_State * L;
    int reference = LUA_NOREF;
    bool isTaken;
};

bool runFile(LuaConfig & config, char const * file) {
    EarlierLines earlier(config.GetState());
    if (!earlier.IsTaken())
        return false;
    if (LuaConfigSave::LoadLua(config, file))
        return true;
    earlier.PutBack();
    return false;
}

} // namespace

void CheatMenu::RegisterLua(LuaConfig & config) {
    config.SetNumber("SubMenu", IT_SUBMENU);
    config.SetNumber("Command", IT_COMMAND);
    config.SetNumber("Variable", IT_VARIABLE);
    config.SetNumber("Separator", IT_SEPARATOR);
    config.SetNumber("Boolean", VT_BOOLEAN);
    config.SetNumber("Float", VT_FLOAT);
}

void CheatMenu::LoadCheatMenu(char const * file, bool load) {
    ClearNodes();
    fileName = file ? file : "";
    if (load)
        loadFile();
}

void CheatMenu::Reload() { reloadPending = true; }

void CheatMenu::serveReload() {
    ClearNodes();
    loadFile();
    dbTimeStampedTracefAux("Cheatmenu: Reloaded");
    if (Instance() == this)
        reloadPending = false;
}

// The file may itself load the menu or shut it down, and so may a finalizer that runs while its tables are
// read: then the lines are nobody's.
void CheatMenu::loadFile() {
    std::uint32_t const generation = s_generation;
    std::string const file = fileName;
    LuaConfig & config = *GlobalLua::GetState();
    if (!runFile(config, file.c_str())) {
        dbTimeStampedTracefAux("CheatMenu - Can't find file '%s'", file.c_str());
        return;
    }
    MenuNode loaded;
    config.PushTableGlobals();
    Rec_LoadMenu(config, nullptr, &loaded);
    config.PopTable();
    if (s_generation == generation)
        takeOver(loaded);
    Rec_ClearNode(&loaded);
}

void CheatMenu::takeOver(MenuNode & loaded) {
    root.items.swap(loaded.items);
    std::size_t const last = std::max<std::size_t>(root.items.size(), 1) - 1;
    root.selection = static_cast<std::uint32_t>(std::min<std::size_t>(root.selection, last));
    widthsValid = false;
}

void CheatMenu::Rec_LoadMenu(LuaConfig & config, menulines::Way const * above, MenuNode * node) {
    menulines::VisitLines(config, above, [&config, node](menulines::Line & line) {
        if (line.dropped)
            return;
        Item & item = node->items.emplace_back(std::move(line.item));
        if (item.type != IT_SUBMENU)
            return;
        item.subMenu = new MenuNode;
        Rec_LoadMenu(config, &line.way, item.subMenu);
    });
}

void CheatMenu::ClearNodes() {
    ++s_generation;
    Rec_ClearNode(&root);
    path.assign(1, &root);
}

void CheatMenu::Rec_ClearNode(MenuNode * node) {
    for (Item & item : node->items) {
        if (item.subMenu)
            Rec_ClearNode(item.subMenu);
        delete std::exchange(item.subMenu, nullptr);
    }
    node->items.clear();
}
