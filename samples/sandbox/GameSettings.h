#pragma once

// The game's side of its system settings: they come up from "sysconfig.lua" of the working folder, and the
// world follows them.

#include "Cross/Util/SystemConfig.h"
#include "samples/sandbox/Simulation.h"

class GameSettings : private SystemConfig::Callback {
public:
    // Reads the settings and makes as many units as "tanks" says, then and whenever it changes. `world`
    // outlives this object.
    explicit GameSettings(Simulation & world);
    GameSettings(GameSettings const &) = delete;
    GameSettings & operator=(GameSettings const &) = delete;
    ~GameSettings() override;

private:
    void OnChanged(Dictionary::Key const & key, unsigned int oldValue, unsigned int newValue) override;

    Simulation & world;
    unsigned int callback = SystemConfig::NOT_SET;
};
