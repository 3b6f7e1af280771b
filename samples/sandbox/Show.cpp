#include "samples/sandbox/Show.h"

#include "Cross/Util/CRCBlock.h"
#include "Cross/Util/RenderStats.h"
#include "Cross/Util/StatGraph.h"
#include "Cross/engine/scriptconfig/GlobalLua.h"
#include "Cross/engine/scriptconfig/LuaConfig.h"
#include "samples/sandbox/Console.h"
#include "samples/sandbox/GameCamera.h"
#include "samples/sandbox/GameKeys.h"
#include "samples/sandbox/GameScripts.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <string_view>

namespace {

constexpr unsigned int c_framesPerKey = 20; // the menu has come to rest then
constexpr std::uint32_t c_seed = 20261123;
constexpr unsigned int c_tanks = 24;

// A key that is pressed when a part of the show is over, so that it shows one thing after the other.
struct Cue {
    unsigned int percent;
    char const * key;
};

constexpr Cue c_cues[] = {
    {5, "F2"},     {5, "F4"},    {30, "F2"}, {30, "F3"},    {55, "F3"},    {55, "F4"}, {55, "F1"},
    {60, "Right"}, {65, "Down"}, {67, "Up"}, {70, "Right"}, {73, "Right"}, {88, "F2"}, {96, "F1"},
};
constexpr unsigned int c_picturePercents[] = {2, 25, 50, 80, 93, 100};

// Whether the camera looks at the selected unit in this part of the show.
bool isCloseUp(unsigned int percent) { return (percent >= 30 && percent < 55) || percent >= 90; }

// The frame in which a part is over.
unsigned int frameAt(unsigned int percent, unsigned int frames) {
    return std::max(1u, frames * percent / 100);
}

bool isPictured(unsigned int frame, unsigned int frames) {
    return std::any_of(std::begin(c_picturePercents), std::end(c_picturePercents),
                       [=](unsigned int percent) { return frameAt(percent, frames) == frame; });
}

// A game at its beginning, and those who play it.
class Show {
public:
    Show(Game & game, Stage & stage, ShowOptions const & options);
    Show(Show const &) = delete;
    Show & operator=(Show const &) = delete;
    ~Show();

    ShowResult Play();

private:
    void dressUnits();
    void takeInput(Renderer & window);
    bool runFrame(bool pictured);
    void playWindow();
    void playFrames();
    void playKeys();
    void playAlone();
    void direct(unsigned int frame);
    void aim(Camera & eye, unsigned int percent) const;

    Game & game;
    Stage & stage;
    ShowOptions const & options;
    GameLoop loop;
    GameScripts scripts;
    GameCamera camera;
    Console console;
    unsigned int frames = 0;
    bool isOver = false; // someone wants to leave
};

Game & prepared(Game & game) {
    game.world = Simulation(c_seed, 0);
    GlobalLua::GetState()->RunString(("set_tanks(" + std::to_string(c_tanks) + ")").c_str(), true);
    return game;
}

Show::Show(Game & game, Stage & stage, ShowOptions const & options)
    : game(game), stage(stage), options(options), loop(prepared(game)), scripts(loop) {
    loop.View().Select(0);
    Renderer * const screen = stage.Screen();
    if (!screen)
        return;
    GameCamera::Overlook(screen->camera);
    dressUnits();
    if (stage.IsWindow())
        takeInput(*screen);
}

// The overlays are everyone's: they are left as they were found.
Show::~Show() {
    if (Renderer * const screen = stage.Screen()) {
        screen->onKey = nullptr;
        screen->onPick = nullptr;
    }
    StatGraph::SetVisible(false);
    RenderStats::Instance()->Enable(false);
}

// Units wear their picture where a renderer can show it.
void Show::dressUnits() {
    loop.View().paintUnit = [this](Math::Matrix43f const & transform) {
        Model const * const tank = game.tankModel.Get();
        Skin const * const skin = game.tankSkins.front().Get();
        if (tank && skin)
            stage.Screen()->DrawTextured(tank->mesh, transform, skin->texture, "World");
    };
}

void Show::takeInput(Renderer & window) {
    window.onKey = [this](char const * key, bool) {
        isOver = isOver || key == std::string_view("Escape");
        PressKey(loop, key);
    };
    window.onPick = [this](MathPrim::Rayf const & ray) { loop.View().Select(loop.View().Pick(ray)); };
}

ShowResult Show::Play() {
    if (stage.IsWindow())
        playWindow();
    else
        playFrames();
    if (!options.shot.empty())
        stage.SavePicture(options.shot);
    CRCBlock state;
    game.world.RecordTo(state, false);
    return {frames, state.GetCRC()};
}

// False when the game is over.
bool Show::runFrame(bool pictured) {
    if (isOver || !stage.BeginFrame(pictured))
        return false;
    loop.RunFrame();
    stage.EndFrame();
    ++frames;
    return true;
}

void Show::playWindow() {
    while (runFrame(false))
        while (options.console && console.RunNext(false))
            continue;
}

// The game waits for the lines of the console and lives on for a frame behind each.
void Show::playFrames() {
    while (options.console && console.RunNext(true))
        runFrame(false);
    if (options.keys.empty())
        playAlone();
    else
        playKeys();
}

void Show::playKeys() {
    for (std::size_t i = 0; i < options.keys.size(); ++i) {
        PressKey(loop, options.keys[i].c_str());
        for (unsigned int frame = 1; frame <= c_framesPerKey; ++frame)
            runFrame(frame == c_framesPerKey);
        std::string const number = std::to_string(i + 1);
        if (!stage.TakePicture("key-" + std::string(number.size() < 2 ? 1 : 0, '0') + number + "-" +
                               options.keys[i]))
            return;
    }
}

void Show::playAlone() {
    for (unsigned int frame = 1; frame <= options.frames; ++frame) {
        bool const pictured = isPictured(frame, options.frames);
        runFrame(pictured);
        if (pictured && !stage.TakePicture("frame-" + std::to_string(frame)))
            return;
        direct(frame);
    }
}

void Show::direct(unsigned int frame) {
    for (Cue const & cue : c_cues)
        if (frameAt(cue.percent, options.frames) == frame)
            PressKey(loop, cue.key);
    if (!loop.View().IsSelectionAlive())
        loop.View().SelectNext();
    if (stage.Screen())
        aim(stage.Screen()->camera, frame * 100 / options.frames);
}

void Show::aim(Camera & eye, unsigned int percent) const {
    std::optional<unsigned int> const unit = loop.View().GetSelected();
    if (unit && isCloseUp(percent))
        camera.Follow(eye, loop.View().PlaceOf(*unit));
    else
        GameCamera::Overlook(eye);
}

} // namespace

ShowResult PlayShow(Game & game, Stage & stage, ShowOptions const & options) {
    return Show(game, stage, options).Play();
}
