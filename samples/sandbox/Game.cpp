#include "samples/sandbox/Game.h"

#include "Cross/Util/DebugRender.h"
#include "Cross/Util/KeyValueContainer.h"
#include "Cross/Util/StatGraph.h"
#include "Cross/Util/UtilSocket.h"
#include "Cross/engine/scriptconfig/GlobalLua.h"
#include "samples/debugdraw/GraphSink.h"

void Game::Start(DebugRenderProxy * renderer, char const * menuFile) {
    UtilSocketStartUp();
    Inv::Setup(true);
    settings.emplace(world); // SystemConfig::Initialize
    menu.emplace(menuFile);  // CheatMenu::Initialize, RegisterLua, LoadCheatMenu
    DebugRender::Register(renderer);
    StatGraph::Register(new GraphSink); // deleted at unload
}

bool Game::Stop() {
    Inv::Shutdown();
    settings.reset(); // SystemConfig::Shutdown
    menu.reset();     // CheatMenu::Shutdown
    DebugRender::Unregister(DebugRender::s_pProxy);
    KeyValueContainer::Shutdown();
    GlobalLua::Shutdown();
    return UtilSocketShutDown() == 0;
}
