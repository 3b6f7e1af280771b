#pragma once

#include "Cross/Util/CheatMenu.h"
#include "Cross/engine/scriptconfig/GlobalLua.h"
#include "Cross/engine/scriptconfig/LuaConfig.h"
#include "samples/debugdraw/RecordingProxy.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TraceCapture.h"

#include <gtest/gtest.h>
#include <lua.hpp>
#include <sstream>

// A menu, a fresh global script state whose scripts can reach the menu, a proxy, and the trace. The cursor of
// the state is in a table of its own, as a game's may be.
class CheatMenuTest : public testing::Test {
protected:
    CheatMenuTest() {
        GlobalLua::Shutdown();
        CheatMenu::RegisterLua(State());
        lua_State * const L = State().GetState();
        lua_register(L, "menu_load", loadFromScript);
        lua_register(L, "menu_reload", callFromScript<&CheatMenu::Reload>);
        lua_register(L, "menu_toggle", callFromScript<&CheatMenu::Toggle>);
        lua_register(L, "menu_back", callFromScript<&CheatMenu::PreviousMenu>);
        lua_register(L, "menu_shutdown", shutdownFromScript);
        State().PushTable("elsewhere");
        height = lua_gettop(L);
        DebugRender::Register(&proxy);
        CheatMenu::Initialize();
    }

    ~CheatMenuTest() override {
        EXPECT_EQ(lua_gettop(State().GetState()), height);
        CheatMenu::Shutdown();
        DebugRender::Unregister(&proxy);
        GlobalLua::Shutdown();
    }

    static LuaConfig & State() { return *GlobalLua::GetState(); }

    static CheatMenu & Menu() { return *CheatMenu::Instance(); }

    std::string File() const { return folder / "menu.lua"; }

    // Loads a menu whose file is this source, and shows it.
    void Load(std::string const & source) {
        folder.WriteFile("menu.lua", source);
        Menu().LoadCheatMenu(File().c_str(), true);
        Menu().Enable(true);
    }

    // The same, of lines at its top.
    void LoadLines(std::string const & lines) { Load("SubMenuItems = {" + lines + "}"); }

    // What a frame writes, and of that what it draws.
    std::string Frame(float dt = 0.0f) {
        out.str("");
        Menu().UpdateAndDraw(dt);
        return out.str();
    }

    std::string Drawn(float dt = 0.0f) {
        std::istringstream calls(Frame(dt));
        std::string drawn;
        for (std::string call; std::getline(calls, call);)
            if (call.find("\"call\":\"Draw\"") != call.npos)
                drawn += call + "\n";
        return drawn;
    }

    // The texts of a frame, each with a blank behind it.
    std::string Texts() {
        std::istringstream calls(Drawn());
        std::string texts;
        for (std::string call; std::getline(calls, call);) {
            std::size_t const text = call.find("\"text\":\"") + 8;
            if (call.find("Text2D") != call.npos)
                texts += call.substr(text, call.find("\",\"colour", text) - text) + " ";
        }
        return texts;
    }

    // n, p: next and previous line; l, r, a: left, right, action; b: back.
    static void Press(std::string const & keys) {
        for (char const key : keys) {
            void (CheatMenu::*const press)() = key == 'n'   ? &CheatMenu::NextItem
                                               : key == 'p' ? &CheatMenu::PreviousItem
                                               : key == 'l' ? &CheatMenu::DoItemLeft
                                               : key == 'r' ? &CheatMenu::DoItemRight
                                               : key == 'a' ? &CheatMenu::DoItemAction
                                                            : &CheatMenu::PreviousMenu;
            (Menu().*press)();
        }
    }

    static void Run(std::string const & script) { EXPECT_TRUE(State().RunString(script.c_str(), true)); }

    // A script expression as text.
    static std::string Value(std::string const & expression) {
        Run("value = tostring(" + expression + ")");
        std::string value;
        State().PushTableGlobals();
        State().GetString("value", value);
        State().PopTable();
        return value;
    }

    TemporaryFolder const folder;
    TraceCapture trace;
    std::ostringstream out;
    RecordingProxy proxy{out};

private:
    static int loadFromScript(lua_State * L) {
        Menu().LoadCheatMenu(lua_tostring(L, 1), true);
        return 0;
    }

    template <void (CheatMenu::*call)()>
    static int callFromScript(lua_State *) {
        (Menu().*call)();
        return 0;
    }

    static int shutdownFromScript(lua_State *) {
        CheatMenu::Shutdown();
        return 0;
    }

    int height = 0; // of the state's stack
};
