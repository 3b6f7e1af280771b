#include "samples/sandbox/GameSettings.h"

#include <algorithm>

namespace {

constexpr unsigned int c_mostTanks = 1000;

Dictionary::Key tanksKey() { return Dictionary::Instance().GetKey("tanks"); }

} // namespace

GameSettings::GameSettings(Simulation & world) : world(world) {
    SystemConfig::Initialize();
    callback = SystemConfig::Instance()->RegisterCallback(this, {tanksKey()});
    OnChanged(tanksKey(), SystemConfig::NOT_SET, SystemConfig::NOT_SET);
}

GameSettings::~GameSettings() {
    SystemConfig::Instance()->UnregisterCallback(callback);
    SystemConfig::Shutdown();
}

void GameSettings::OnChanged(Dictionary::Key const &, unsigned int, unsigned int) {
    unsigned int const tanks = SystemConfig::Instance()->GetSetting(tanksKey());
    if (tanks != SystemConfig::NOT_SET)
        world.SetUnitCount(std::min(tanks, c_mostTanks));
}
