// Menu files from outside, and a session over them: what stands behind the first zero byte are keys. The
// scripts may do to the menu what a game's can.

#include "Cross/Util/CheatMenu.h"
#include "Cross/Util/CheatMenuLines.h"
#include "Cross/engine/diagnostics/Trace.h"
#include "Cross/engine/scriptconfig/GlobalLua.h"
#include "fuzz/LimitedScript.h"
#include "tests/support/ActingProxy.h"
#include "tests/support/StreamBytes.h"
#include "tools/MenuLint.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <unistd.h>

namespace {

constexpr std::size_t c_maxLines = 300; // tables met twice count twice, so a short file can have many
constexpr std::size_t c_maxKeys = 64;

constexpr std::string_view c_globals[] = {"_G",    "assert", "error",  "ipairs",   "math",     "next",
                                          "pairs", "pcall",  "select", "tonumber", "tostring", "type"};

void demand(bool holds) {
    if (!holds)
        std::abort();
}

// The menu file of this process.
class File {
public:
    File()
        : path(std::filesystem::temp_directory_path() / ("menu-fuzz-" + std::to_string(getpid()) + ".lua")) {}

    File(File const &) = delete;
    File & operator=(File const &) = delete;

    ~File() {
        std::error_code ignored;
        std::filesystem::remove(path, ignored);
    }

    void Write(std::string_view text) const {
        std::ofstream file(path, std::ios::binary);
        demand(!!file.write(text.data(), static_cast<std::streamsize>(text.size())));
    }

    std::string const path;
};

File const & file() {
    static File const file;
    return file;
}

// A function for scripts that does something to the menu, while there is one.
template <class Act>
void bind(lua_State * L, char const * name, Act) {
    lua_register(L, name, [](lua_State * inner) {
        if (CheatMenu * const menu = CheatMenu::Instance())
            Act()(*menu, inner);
        return 0;
    });
}

void bindMenu(lua_State * L) {
    using Menu = CheatMenu;
    bind(L, "menu_load", [](Menu & menu, lua_State *) { menu.LoadCheatMenu(file().path.c_str(), true); });
    bind(L, "menu_reload", [](Menu & menu, lua_State *) { menu.Reload(); });
    bind(L, "menu_shutdown", [](Menu &, lua_State *) { Menu::Shutdown(); });
    bind(L, "menu_enable", [](Menu & menu, lua_State * inner) { menu.Enable(lua_toboolean(inner, 1) != 0); });
    bind(L, "menu_draw", [](Menu & menu, lua_State *) { menu.UpdateAndDraw(0.1f); });
    bind(L, "menu_next", [](Menu & menu, lua_State *) { menu.NextItem(); });
    bind(L, "menu_right", [](Menu & menu, lua_State *) { menu.DoItemRight(); });
    bind(L, "menu_back", [](Menu & menu, lua_State *) { menu.PreviousMenu(); });
}

// A script state with what menus need and nothing that reaches out of the process.
void prepare(LuaConfig & state) {
    lua_State * const L = state.GetState();
    for (lua_pushnil(L); lua_next(L, LUA_GLOBALSINDEX) != 0; lua_pop(L, 1)) {
        if (std::ranges::count(c_globals, std::string_view(lua_tostring(L, -2))) > 0)
            continue;
        lua_pushvalue(L, -2);
        lua_pushnil(L);
        lua_rawset(L, LUA_GLOBALSINDEX);
    }
    lua_pushliteral(L, "");
    lua_pushnil(L);
    lua_setmetatable(L, -2);
    lua_pop(L, 1);
    CheatMenu::RegisterLua(state);
    bindMenu(L);
}

void countLines(LuaConfig & state, menulines::Way const * above, std::size_t & lines) {
    menulines::VisitLines(state, above, [&](menulines::Line const & line) {
        lines += line.dropped ? 0 : 1;
        if (!line.dropped && line.item.type == CheatMenu::IT_SUBMENU && lines <= c_maxLines)
            countLines(state, &line.way, lines);
    });
}

// Whether the file runs and is small; the lint must then see what the menu will.
bool isUseful(std::string_view text) {
    LuaConfig state("count", true);
    prepare(state);
    ScriptLimits const limits(state.GetState());
    FilledStream source(text);
    std::size_t lines = 0;
    if (!LuaConfigSave::LoadLua(state, source))
        return false;
    countLines(state, nullptr, lines);
    if (lines > c_maxLines)
        return false;
    demand(LintMenu(state).lines == lines);
    return true;
}

void press(CheatMenu & menu, char key) {
    void (CheatMenu::*const keys[])() = {
        &CheatMenu::NextItem,     &CheatMenu::PreviousItem, &CheatMenu::DoItemLeft, &CheatMenu::DoItemRight,
        &CheatMenu::DoItemAction, &CheatMenu::PreviousMenu, &CheatMenu::Toggle,     &CheatMenu::Reload};
    (menu.*keys[static_cast<unsigned char>(key) % std::size(keys)])();
}

void runSession(std::string_view keys) {
    std::ostream nowhere(nullptr);
    ActingProxy<DebugRender::Tri2D> proxy(nowhere);
    unsigned int triangles = 0;
    proxy.act = [&triangles] { ++triangles; };
    DebugRender::Register(&proxy);
    CheatMenu::Initialize();
    CheatMenu::Instance()->LoadCheatMenu(file().path.c_str(), true);
    for (char const key : keys.substr(0, c_maxKeys)) {
        if (CheatMenu * const menu = CheatMenu::Instance())
            press(*menu, key);
        CheatMenu * const menu = CheatMenu::Instance();
        if (!menu)
            break;
        bool const isShown = menu->IsEnabled();
        triangles = 0;
        menu->UpdateAndDraw(0.05f);
        demand(!isShown || triangles > 0);
    }
    CheatMenu::Shutdown();
    DebugRender::Unregister(&proxy);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const * data, std::size_t size) {
    dbTraceSetSink([](char const *, void *) {}, nullptr);
    std::string_view const input(reinterpret_cast<char const *>(data), size);
    std::string_view const text = input.substr(0, input.find('\0'));
    if (!isUseful(text))
        return 0;
    file().Write(text);
    prepare(*GlobalLua::GetState());
    {
        lua_State * const L = GlobalLua::GetState()->GetState();
        ScriptLimits const limits(L);
        runSession(text.size() < input.size() ? input.substr(text.size() + 1) : input);
        demand(lua_gettop(L) == 1);
    }
    GlobalLua::Shutdown();
    return 0;
}
