#pragma once

// What the sample game holds while it runs.

#include "samples/inventory/Inventory.h"
#include "samples/sandbox/Assets.h"
#include "samples/sandbox/GameArt.h"
#include "samples/sandbox/GameAssets.h"
#include "samples/sandbox/GameSettings.h"
#include "samples/sandbox/Simulation.h"

#include <optional>
#include <string>
#include <vector>

struct Game {
    Game() : weapons(journal), units(journal, weapons) {}

    Simulation world{1, 0};               // its units follow the settings
    std::optional<GameSettings> settings; // while the game runs
    std::vector<Asset> assets;            // all that the data folder holds
    LoadJournal journal;
    WeaponKind weapons;
    UnitKind units;
    FileKind<Skin> skins{"Skin", ".tga", &ReadSkin};
    FileKind<Model> models{"Model", ".mesh", &ReadModel};
    std::vector<inventory::Handle<Skin>> tankSkins; // in the order of c_skinNames
    inventory::Handle<Model> tankModel;
    std::vector<inventory::Handle<Unit>> army; // one unit of each sort, held while the game runs
    std::string pumpCounts;                    // what the batch pump gave, call by call
};
