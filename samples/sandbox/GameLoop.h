#pragma once

// The running game: what happens in each frame, in its order, with timing blocks round the parts.

#include "Cross/Util/PerfBlock.h"
#include "Cross/Util/StatGraph.h"
#include "samples/sandbox/Game.h"
#include "samples/sandbox/WorldView.h"

class GameLoop {
public:
    static constexpr float c_step = 1.0f / 60.0f; // seconds

    // Enables the channels "simulate", "draw", "alive" and "health". `game` outlives the loop.
    explicit GameLoop(Game & game);
    GameLoop(GameLoop const &) = delete;
    GameLoop & operator=(GameLoop const &) = delete;
    ~GameLoop();

    // Simulates the steps that are due and draws the world into the registered renderer, if there is one.
    void RunFrame();

    WorldView & View() { return view; }

    WorldView const & View() const { return view; }

    // Steps per frame, 0 to 16: a fraction waits for the next frames.
    void SetSpeed(float stepsPerFrame);

    void SetPause(bool pause) { paused = pause; }

private:
    void simulate();
    void draw();
    void submitState();

    Game & game;
    WorldView view;
    PerfBlock simulateBlock{"simulate"};
    PerfBlock drawBlock{"draw"};
    StatGraph::Handle alive, health;
    float speed = 1.0f;
    float owedSteps = 0.0f;
    bool paused = false;
};
