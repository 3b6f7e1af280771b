#include "Cross/Util/CheatMenu.h"
#include "Cross/engine/scriptconfig/GlobalLua.h"
#include "Cross/engine/scriptconfig/LuaConfig.h"
#include "tests/support/AliasedFolder.h"
#include "tests/support/TraceCapture.h"

#include <gtest/gtest.h>

TEST(MenuGuide, LoadAndUse) {
    TraceCapture const trace;
    AliasedFolder const folder("GENERIC");
    folder.WriteFile("cheatmenu.lua",
                     "SubMenuItems = {"
                     "    { name = 'Add 100 requisition', type = Command, command = 'requisition = 100' },"
                     "    { name = 'Game speed', type = Variable, var_type = Float, get = 'speed or 1',"
                     "      set = 'speed = %.2f', min = 0, max = 4, stepsize = 0.25 },"
                     "}");
    // [menu]
    CheatMenu::Initialize();
    CheatMenu::RegisterLua(*GlobalLua::GetState()); // SubMenu, Command and the other names
    CheatMenu & menu = *CheatMenu::Instance();
    menu.LoadCheatMenu("GENERIC:cheatmenu.lua", true);

    // In the handlers of the keys:
    menu.Toggle();
    menu.NextItem();
    menu.DoItemRight();

    // In each frame, with the seconds since the last one:
    menu.UpdateAndDraw(1.0f / 60.0f);

    menu.Reload(); // at the end of the next frame, from the same file
    // [menu]
    menu.UpdateAndDraw(1.0f / 60.0f);
    double speed = 0.0;
    EXPECT_TRUE(GlobalLua::GetState()->GetNumber("speed", speed));
    EXPECT_EQ(speed, 1.25);
    EXPECT_EQ(trace.lines, std::vector<std::string>{"Cheatmenu: Reloaded"});
    CheatMenu::Shutdown();
    GlobalLua::Shutdown();
}
