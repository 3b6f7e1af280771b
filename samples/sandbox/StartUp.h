#pragma once

// The loading screen: starts the game through an ordered list of weighted steps with a progress bar, a line
// per step when the output is no terminal.

#include "Cross/Util/InitList.h"
#include "samples/sandbox/Game.h"

#include <string>

class StartUp {
public:
    // With `failOnce` the step before the last fails the first time it runs. `game` outlives this object.
    StartUp(Game & game, bool failOnce);

    // Loads everything. After a failure everything is undone and the load is tried once more. True when the
    // game is up.
    bool Load();

    // Undoes all steps in reverse order.
    void Unload();

    // What was loaded, aborted and unloaded, in order: "+tables +inventory !assets -inventory -tables".
    std::string const & GetEvents() const { return events; }

    float GetProgress() const { return manager.LoadProgress(); }

    // Whether the bar never went back during a load.
    bool WasProgressSteady() const { return progressWasSteady; }

private:
    bool loadOnce();

    std::string events;
    bool progressWasSteady = true;
    InitList::Manager manager;
};
