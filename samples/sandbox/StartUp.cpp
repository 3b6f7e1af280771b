#include "samples/sandbox/StartUp.h"

#include "Cross/engine/diagnostics/Trace.h"
#include "Cross/engine/scriptconfig/GlobalLua.h"
#include "Cross/engine/scriptconfig/LuaConfigSave.h"
#include "samples/sandbox/BuildTable.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <utility>

namespace {

constexpr unsigned int c_tablesPerSlice = 8;
constexpr unsigned int c_assetsPerSlice = 4;
constexpr int c_barWidth = 40;

// A step with a name in the journal of events.
class Step : public InitList::Entry {
public:
    Step(Game & game, std::string & events, char const * name) : game(game), events(events), name(name) {}

    InitList::LoadResult Load() final {
        InitList::LoadResult const result = Slice();
        if (result == InitList::Finished)
            note('+');
        return result;
    }

    void Unload() final {
        note('-');
        Undo();
    }

    void Abort() final {
        note('!');
        Undo();
    }

    float GetProgress() override { return 0.0f; }

protected:
    virtual InitList::LoadResult Slice() = 0;
    virtual void Undo() = 0;

    Game & game;

private:
    void note(char sign) { events += (events.empty() ? "" : " ") + std::string(1, sign) + name; }

    std::string & events;
    char const * name;
};

// Reads the settings, which everything else may ask for.
class SettingsStep : public Step {
public:
    SettingsStep(Game & game, std::string & events) : Step(game, events, "settings") {}

protected:
    InitList::LoadResult Slice() override {
        game.settings.emplace(game.world);
        return InitList::Finished;
    }

    void Undo() override { game.settings.reset(); }
};

// Builds the attribute tables from their scripts.
class TablesStep : public Step {
public:
    TablesStep(Game & game, std::string & events) : Step(game, events, "tables") {}

    float GetProgress() override {
        return game.assets.empty() ? 1.0f : static_cast<float>(done) / static_cast<float>(game.assets.size());
    }

protected:
    InitList::LoadResult Slice() override {
        std::size_t const end = std::min(done + c_tablesPerSlice, game.assets.size());
        for (; done < end; ++done)
            if (std::string error; !BuildTable(game.assets[done], error)) {
                dbTimeStampedTracefAux("SANDBOX -- %s", error.c_str());
                return InitList::Failed;
            }
        return done < game.assets.size() ? InitList::InProgress : InitList::Finished;
    }

    void Undo() override { done = 0; }

private:
    std::size_t done = 0;
};

// Brings pictures and models into place.
class ArtStep : public Step {
public:
    ArtStep(Game & game, std::string & events) : Step(game, events, "art") {}

protected:
    InitList::LoadResult Slice() override {
        std::string error;
        if (BuildArt(error))
            return InitList::Finished;
        dbTimeStampedTracefAux("SANDBOX -- %s", error.c_str());
        return InitList::Failed;
    }

    void Undo() override {}
};

// Sets the inventory up and asks for one unit of each sort; their data comes later.
class InventoryStep : public Step {
public:
    InventoryStep(Game & game, std::string & events) : Step(game, events, "inventory") {}

protected:
    InitList::LoadResult Slice() override {
        Inv::Setup(true);
        for (Asset const & asset : game.assets)
            if (asset.kind == "units")
                game.army.push_back(game.units.Get((asset.kind + "/" + asset.name).c_str()));
        for (char const * const name : c_skinNames)
            game.tankSkins.push_back(game.skins.Get(name));
        game.tankModel = game.models.Get(c_tankName);
        return InitList::Finished;
    }

    void Undo() override {
        game.tankModel = {};
        game.tankSkins.clear();
        game.army.clear();
        Inv::Shutdown();
    }
};

// Pumps the batches of the inventory.
class AssetsStep : public Step {
public:
    AssetsStep(Game & game, std::string & events) : Step(game, events, "assets") {}

protected:
    InitList::LoadResult Slice() override {
        unsigned int const left = inventory::Front::LoadResources(c_assetsPerSlice);
        game.pumpCounts += (game.pumpCounts.empty() ? "" : " ") + std::to_string(left);
        return left != 0 ? InitList::InProgress : InitList::Finished;
    }

    void Undo() override {
        inventory::Front::LoadResources(0, true);
        game.pumpCounts.clear();
        game.journal = {};
    }
};

// Runs the game's script in the global state. Can be told to fail once.
class ScriptsStep : public Step {
public:
    ScriptsStep(Game & game, std::string & events, bool failOnce)
        : Step(game, events, "scripts"), failNext(failOnce) {}

protected:
    InitList::LoadResult Slice() override {
        if (std::exchange(failNext, false))
            return InitList::Failed;
        return LuaConfigSave::LoadLua(*GlobalLua::GetState(), "DATA:game.lua") ? InitList::Finished
                                                                               : InitList::Failed;
    }

    void Undo() override { GlobalLua::Shutdown(); }

private:
    bool failNext;
};

void showBar(float progress) {
    int const filled = static_cast<int>(progress * c_barWidth);
    std::printf("\r[%-*.*s] %3d %%", c_barWidth, filled, "########################################",
                static_cast<int>(progress * 100.0f));
    if (progress >= 1.0f)
        std::printf("\n");
    std::fflush(stdout);
}

} // namespace

StartUp::StartUp(Game & game, bool failOnce) : manager("start") {
    manager.Register(new SettingsStep(game, events), "settings", 0.1f);
    manager.Register(new TablesStep(game, events), "attribute tables", 2.0f);
    manager.Register(new ArtStep(game, events), "art", 0.3f);
    manager.Register(new InventoryStep(game, events), "inventory", 0.5f);
    manager.Register(new AssetsStep(game, events), "assets", 1.0f);
    manager.Register(new ScriptsStep(game, events, failOnce), "scripts", 0.5f);
}

bool StartUp::Load() { return loadOnce() || loadOnce(); }

void StartUp::Unload() { manager.Unload(); }

// One load to the end. A failed one is undone.
bool StartUp::loadOnce() {
    bool const isTerminal = isatty(STDOUT_FILENO) != 0;
    float shown = 0.0f;
    std::size_t told = events.size();
    for (;;) {
        InitList::LoadResult const result = manager.Load();
        if (result == InitList::Failed) {
            manager.Unload();
            std::printf("%sfailed and undone:%s\n", isTerminal ? "\n" : "", events.c_str() + told);
            return false;
        }
        float const progress = manager.LoadProgress();
        progressWasSteady = progressWasSteady && progress >= shown;
        shown = progress;
        if (isTerminal)
            showBar(progress);
        else if (events.size() != told)
            std::printf("loading %3d %%:%s\n", static_cast<int>(progress * 100.0f), events.c_str() + told);
        told = events.size();
        if (result == InitList::Finished)
            return true;
    }
}
