#pragma once

// What the sample game holds while it runs, and how it brings the library up and down.

#include "samples/inventory/Inventory.h"
#include "samples/sandbox/Assets.h"
#include "samples/sandbox/GameArt.h"
#include "samples/sandbox/GameAssets.h"
#include "samples/sandbox/GameMenu.h"
#include "samples/sandbox/GameSettings.h"
#include "samples/sandbox/Simulation.h"

#include <optional>
#include <string>
#include <vector>

class DebugRenderProxy;

struct Game {
    Game() : weapons(journal), units(journal, weapons) {}

    // Everything of the library that has a beginning. The renderer may be null: then nothing is drawn.
    void Start(DebugRenderProxy * renderer, char const * menuFile);

    // Everything of the library that has an end. The renderer may go behind it. False when the socket layer
    // was not up.
    bool Stop();

    Simulation world{1, 0};               // its units follow the settings
    std::optional<GameSettings> settings; // from Start to Stop
    std::optional<GameMenu> menu;         // from Start to Stop
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
