#include "samples/sandbox/LoadScreen.h"

#include "Cross/Util/DebugRender.h"
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
constexpr float c_picturedProgress = 0.75f;

char const * const c_frame = "Loading";
constexpr MathPrim::Colour c_bright = MathPrim::Colour::FromWord(0xFFFFFFFF);
constexpr MathPrim::Colour c_dim = MathPrim::Colour::FromWord(0xFFA0ACB6);
constexpr MathPrim::Colour c_trough = MathPrim::Colour::FromWord(0xFF283038);
constexpr MathPrim::Colour c_bar = MathPrim::Colour::FromWord(0xFF8A9A3C);

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

// Asks for one unit of each sort and for the art; their data comes later.
class ArmyStep : public Step {
public:
    ArmyStep(Game & game, std::string & events) : Step(game, events, "army") {}

protected:
    InitList::LoadResult Slice() override {
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
        inventory::Front::Flush();
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

    void Undo() override {} // what the script made stays until it runs again, or the state goes

private:
    bool failNext;
};

void printBar(float progress) {
    int const filled = static_cast<int>(progress * c_barWidth);
    std::printf("\r[%-*.*s] %3d %%", c_barWidth, filled, "########################################",
                static_cast<int>(progress * 100.0f));
    if (progress >= 1.0f)
        std::printf("\n");
    std::fflush(stdout);
}

void drawRectangle(Math::Vector2f const & corner, float width, float height, MathPrim::Colour colour) {
    Math::Vector2f const right{corner.x + width, corner.y}, top{corner.x, corner.y + height};
    DebugRender::Draw(DebugRender::Tri2D{{corner, top, right}, colour}, c_frame);
    DebugRender::Draw(DebugRender::Tri2D{{top, {right.x, top.y}, right}, colour}, c_frame);
}

void drawText(float y, std::string const & text, MathPrim::Colour colour) {
    float const x = 0.5f - DebugRender::GetTextWidth(text.c_str()) / 2;
    DebugRender::Draw(DebugRender::Text2D{{x, y}, text.c_str(), colour}, c_frame);
}

void drawBar(float progress, std::string const & events) {
    drawText(0.42f, "S A N D B O X", c_bright);
    drawRectangle({-0.4f, -0.03f}, 0.8f, 0.06f, c_trough);
    drawRectangle({-0.39f, -0.02f}, 0.78f * progress, 0.04f, c_bar);
    drawText(0.53f, events, c_dim);
}

} // namespace

LoadScreen::LoadScreen(Game & game, Stage & stage, bool failOnce) : stage(stage), manager("start") {
    manager.Register(new TablesStep(game, events), "attribute tables", 2.0f);
    manager.Register(new ArtStep(game, events), "art", 0.3f);
    manager.Register(new ArmyStep(game, events), "army", 0.2f);
    manager.Register(new AssetsStep(game, events), "assets", 1.0f);
    manager.Register(new ScriptsStep(game, events, failOnce), "scripts", 0.5f);
}

bool LoadScreen::Load() { return loadOnce() || loadOnce(); }

void LoadScreen::Unload() { manager.Unload(); }

// One load to the end, a frame for each slice. A failed one is undone.
bool LoadScreen::loadOnce() {
    float shown = 0.0f;
    for (;;) {
        InitList::LoadResult const result = manager.Load();
        if (result == InitList::Failed) {
            manager.Unload();
            std::printf("%sfailed and undone: %s\n", isatty(STDOUT_FILENO) != 0 ? "\n" : "", news());
            return false;
        }
        float const progress = manager.LoadProgress();
        progressWasSteady = progressWasSteady && progress >= shown;
        show(progress);
        shown = progress;
        if (result == InitList::Finished)
            return true;
    }
}

void LoadScreen::show(float progress) {
    bool const pictured = !isPictured && progress >= c_picturedProgress;
    stage.BeginFrame(pictured);
    drawBar(progress, events);
    DebugRender::Display();
    stage.EndFrame();
    if (pictured)
        isPictured = stage.TakePicture("loading");
    if (isatty(STDOUT_FILENO) != 0)
        printBar(progress);
    else if (events.size() != told)
        std::printf("loading %3d %%: %s\n", static_cast<int>(progress * 100.0f), news());
}

char const * LoadScreen::news() {
    char const * const text = events.c_str() + told;
    told = events.size();
    return *text == ' ' ? text + 1 : text;
}
