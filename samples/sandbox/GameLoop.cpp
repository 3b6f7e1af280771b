#include "samples/sandbox/GameLoop.h"

#include "Cross/Util/DebugRender.h"
#include "Cross/Util/RenderStats.h"
#include "Cross/engine/filesystem/FilePath.h"

GameLoop::GameLoop(Game & game) : game(game), view(game.world), alive(StatGraph::ChannelCreate("alive")) {
    StatGraph::ChannelEnable(alive, true);
    StatGraph::ChannelEnable("simulate", true);
    StatGraph::ChannelEnable("draw", true);
}

GameLoop::~GameLoop() { StatGraph::ChannelDestroy(alive); }

void GameLoop::RunFrame() {
    FilePath::PumpFileChanges();
    inventory::Front::LoadResources(4);
    simulate();
    draw();
    StatGraph::Update();
    DebugRender::Display();
}

void GameLoop::simulate() {
    simulateBlock.Start();
    game.world.Step();
    DebugRender::OnSimulate();
    simulateBlock.Stop();
    unsigned int count = 0;
    for (unsigned int unit = 0; unit < game.world.GetUnits().size(); ++unit)
        count += game.world.StateOf(unit).alive ? 1 : 0;
    StatGraph::ChannelSubmit(alive, static_cast<float>(count));
}

void GameLoop::draw() {
    drawBlock.Start();
    DebugRender::OnFrame();
    view.Draw();
    RenderStats::Instance()->UpdateAndDraw(c_step);
    drawBlock.Stop();
}
