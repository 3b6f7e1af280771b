#pragma once

// The loading screen: brings in what the started game plays with, an ordered list of weighted steps with a
// progress bar, on stage and in the terminal; a line per step when the output is no terminal.

#include "Cross/Util/InitList.h"
#include "samples/sandbox/Game.h"
#include "samples/sandbox/Stage.h"

#include <string>

class LoadScreen {
public:
    // With `failOnce` the last step fails the first time it runs. `game` and `stage` outlive this
    // object.
    LoadScreen(Game & game, Stage & stage, bool failOnce);

    // Loads everything, a frame for each slice. After a failure everything is undone and the load is tried
    // once more. True when everything is in.
    bool Load();

    // Undoes all steps in reverse order.
    void Unload();

    // What was loaded, aborted and unloaded, in order: "+tables +art !army -art -tables".
    std::string const & GetEvents() const { return events; }

    float GetProgress() const { return manager.LoadProgress(); }

    // Whether the bar never went back during a load.
    bool WasProgressSteady() const { return progressWasSteady; }

private:
    bool loadOnce();
    void show(float progress);
    char const * news();

    Stage & stage;
    std::string events;
    std::size_t told = 0; // of the events, those that were printed
    bool isPictured = false;
    bool progressWasSteady = true;
    InitList::Manager manager;
};
