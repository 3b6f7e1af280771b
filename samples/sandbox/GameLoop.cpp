#include "samples/sandbox/GameLoop.h"

#include "Cross/Util/CheatMenu.h"
#include "Cross/Util/DebugRender.h"
#include "Cross/Util/RenderStats.h"
#include "Cross/engine/filesystem/FilePath.h"

#include <algorithm>

GameLoop::GameLoop(Game & game)
    : game(game),
      view(game.world),
      alive(StatGraph::ChannelCreate("alive")),
      health(StatGraph::ChannelCreate("health")) {
    StatGraph::ChannelEnable(alive, true);
    StatGraph::ChannelEnable(health, true);
    StatGraph::ChannelEnable("simulate", true);
    StatGraph::ChannelEnable("draw", true);
}

GameLoop::~GameLoop() {
    StatGraph::ChannelDestroy(alive);
    StatGraph::ChannelDestroy(health);
}

void GameLoop::RunFrame() {
    FilePath::PumpFileChanges();
    inventory::Front::LoadResources(4);
    simulate();
    draw();
    StatGraph::Update();
    DebugRender::Display();
}

void GameLoop::SetSpeed(float stepsPerFrame) {
    speed = stepsPerFrame > 0.0f ? std::min(stepsPerFrame, 16.0f) : 0.0f;
}

void GameLoop::simulate() {
    simulateBlock.Start();
    for (owedSteps += paused ? 0.0f : speed; owedSteps >= 1.0f; --owedSteps) {
        game.world.Step();
        DebugRender::OnSimulate();
    }
    simulateBlock.Stop();
    submitState();
}

// How many units are alive, and what health all of them have.
void GameLoop::submitState() {
    int count = 0, sum = 0;
    for (unsigned int unit = 0; unit < game.world.GetUnits().size(); ++unit)
        if (UnitState const state = game.world.StateOf(unit); state.alive) {
            ++count;
            sum += state.health;
        }
    StatGraph::ChannelSubmit(alive, static_cast<float>(count));
    StatGraph::ChannelSubmit(health, static_cast<float>(sum));
}

void GameLoop::draw() {
    drawBlock.Start();
    DebugRender::OnFrame();
    view.Draw();
    RenderStats::Instance()->UpdateAndDraw(c_step);
    if (CheatMenu * const menu = CheatMenu::Instance())
        menu->UpdateAndDraw(c_step);
    drawBlock.Stop();
}
