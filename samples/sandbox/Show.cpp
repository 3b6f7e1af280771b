#include "samples/sandbox/Show.h"

#include "Cross/Util/DebugRender.h"
#include "Cross/Util/RenderStats.h"
#include "Cross/engine/scriptconfig/GlobalLua.h"
#include "Cross/engine/scriptconfig/LuaConfig.h"
#include "samples/debugdraw/GraphSink.h"
#include "samples/debugdraw/RecordingProxy.h"
#include "samples/renderer/Renderer.h"
#include "samples/sandbox/GameKeys.h"
#include "samples/sandbox/GameMenu.h"
#include "samples/sandbox/GameScripts.h"
#include "samples/sandbox/StepClock.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <thread>
#include <utility>

namespace {

constexpr int c_width = 1280, c_height = 720;
constexpr unsigned int c_framesPerKey = 20; // the menu has come to rest then
constexpr std::uint32_t c_seed = 20261123;
constexpr unsigned int c_tanks = 24;

// The graphs on screen while it lives.
class Graphs {
public:
    Graphs() { StatGraph::Register(&sink); }

    Graphs(Graphs const &) = delete;
    Graphs & operator=(Graphs const &) = delete;

    ~Graphs() {
        StatGraph::Unregister(&sink);
        StatGraph::SetVisible(false);
        RenderStats::Instance()->Enable(false);
    }

private:
    GraphSink sink;
};

// The renderer of all debug shapes while it lives.
class Registered {
public:
    explicit Registered(DebugRenderProxy & proxy) : proxy(proxy) { DebugRender::Register(&proxy); }

    Registered(Registered const &) = delete;
    Registered & operator=(Registered const &) = delete;

    ~Registered() { DebugRender::Unregister(&proxy); }

private:
    DebugRenderProxy & proxy;
};

// A game at its beginning, with all that is played with.
struct Show {
    Show(Game & game, std::string const & menuFile)
        : loop(prepared(game)), scripts(loop), menu(menuFile.c_str()) {
        loop.View().Select(0);
    }

    static Game & prepared(Game & game) {
        game.world = Simulation(c_seed, 0);
        GlobalLua::GetState()->RunString(("set_tanks(" + std::to_string(c_tanks) + ")").c_str(), true);
        return game;
    }

    GameLoop loop;
    GameScripts scripts;
    GameMenu menu;
    Graphs graphs;
};

// Units wear their picture where a renderer can show it.
void dressUnits(Show & show, Game const & game, Renderer & renderer) {
    show.loop.View().paintUnit = [&game, &renderer](Math::Matrix43f const & transform) {
        Model const * const tank = game.tankModel.Get();
        Skin const * const skin = game.tankSkins.front().Get();
        if (tank && skin)
            renderer.DrawTextured(tank->mesh, transform, skin->texture, "World");
    };
}

void lookAtWorld(Renderer & renderer) { renderer.camera.LookAt({470, 170, 60}, {520, 0, 420}); }

// A key that is pressed when a part of the show is over, so that it shows one thing after the other.
struct Cue {
    unsigned int percent;
    char const * key;
};

constexpr Cue c_cues[] = {
    {5, "F2"},     {5, "F4"},    {30, "F2"}, {30, "F3"},    {55, "F3"},    {55, "F4"}, {55, "F1"},
    {60, "Right"}, {65, "Down"}, {67, "Up"}, {70, "Right"}, {73, "Right"}, {88, "F2"}, {96, "F1"},
};
constexpr unsigned int c_closeUpPercent = 90;
constexpr unsigned int c_picturePercents[] = {2, 25, 50, 80, 93, 100};

// The frame in which a part is over.
unsigned int frameAt(unsigned int percent, unsigned int frames) {
    return std::max(1u, frames * percent / 100);
}

void direct(GameLoop & loop, unsigned int frame, unsigned int frames) {
    for (Cue const & cue : c_cues)
        if (frameAt(cue.percent, frames) == frame)
            PressKey(loop, cue.key);
}

bool isPictured(unsigned int frame, unsigned int frames) {
    return std::any_of(std::begin(c_picturePercents), std::end(c_picturePercents),
                       [=](unsigned int percent) { return frameAt(percent, frames) == frame; });
}

// The last part is a close look at the selected unit.
void followSelected(GameLoop & loop, Renderer & renderer) {
    if (std::optional<unsigned int> const unit = loop.View().GetSelected()) {
        Math::Vector3f const place = loop.View().PlaceOf(*unit);
        renderer.camera.LookAt({place.x - 22, 17, place.z - 30}, {place.x, 2, place.z});
    }
}

// Writes the pictures of a show without a window.
class Pictures {
public:
    Pictures(Renderer & renderer, std::string folder) : renderer(renderer), folder(std::move(folder)) {}

    bool Take(std::string const & name) { return TakeAt(folder + "/" + name + ".png"); }

    bool TakeAt(std::string const & path) {
        std::error_code error;
        std::filesystem::create_directories(std::filesystem::path(path).parent_path(), error);
        if (!renderer.SavePng(path.c_str(), reason))
            return false;
        ++count;
        return true;
    }

    std::string reason;
    unsigned int count = 0;

private:
    Renderer & renderer;
    std::string folder;
};

// Frames on a clock that repeats; `between` runs behind each and gives false to end.
template <class Between>
void runFrames(Show & show, StepClock & clock, Renderer * renderer, unsigned int count, Between between) {
    for (unsigned int frame = 1; frame <= count; ++frame) {
        clock.Advance(GameLoop::c_step);
        if (renderer)
            renderer->Begin();
        show.loop.RunFrame();
        if (renderer)
            renderer->End();
        if (!between(frame))
            return;
    }
}

bool playKeys(Show & show, StepClock & clock, Renderer & renderer, Pictures & pictures,
              std::vector<std::string> const & keys) {
    for (std::size_t i = 0; i < keys.size(); ++i) {
        if (!PressKey(show.loop, keys[i].c_str())) {
            pictures.reason = "there is no key '" + keys[i] + "'";
            return false;
        }
        runFrames(show, clock, &renderer, c_framesPerKey, [](unsigned int) { return true; });
        std::string const number = std::to_string(i + 1);
        if (!pictures.Take("key-" + std::string(number.size() < 2 ? 1 : 0, '0') + number + "-" + keys[i]))
            return false;
    }
    return true;
}

bool playAlone(Show & show, StepClock & clock, Renderer & renderer, Pictures & pictures,
               unsigned int frames) {
    bool good = true;
    runFrames(show, clock, &renderer, frames, [&](unsigned int frame) {
        if (isPictured(frame, frames))
            good = good && pictures.Take("frame-" + std::to_string(frame));
        direct(show.loop, frame, frames);
        if (frame >= frameAt(c_closeUpPercent, frames))
            followSelected(show.loop, renderer);
        return good;
    });
    return good;
}

ShowResult playOffscreen(Game & game, ShowOptions const & options) {
    std::string reason;
    std::unique_ptr<Renderer> const renderer = Renderer::OpenOffscreen(c_width, c_height, reason);
    if (!renderer)
        return {false, reason};
    lookAtWorld(*renderer);
    Pictures pictures(*renderer, options.pictures);
    Registered const registered(*renderer);
    StepClock clock;
    Show show(game, options.menu);
    dressUnits(show, game, *renderer);
    bool good = options.keys.empty() ? playAlone(show, clock, *renderer, pictures, options.frames)
                                     : playKeys(show, clock, *renderer, pictures, options.keys);
    if (good && !options.shot.empty())
        good = pictures.TakeAt(options.shot);
    if (!good)
        return {false, pictures.reason};
    return {true, std::to_string(pictures.count) + " pictures in " + options.pictures};
}

ShowResult playRecord(Game & game, ShowOptions const & options) {
    std::ofstream file(options.record, std::ios::binary);
    RecordingProxy recorder(file);
    Registered const registered(recorder);
    StepClock clock;
    Show show(game, options.menu);
    runFrames(show, clock, nullptr, options.frames, [&](unsigned int frame) {
        direct(show.loop, frame, options.frames);
        return true;
    });
    file.close();
    return {file.good(), file.good() ? "calls of the renderer in " + options.record
                                     : options.record + " cannot be written"};
}

ShowResult playWindow(Game & game, Renderer & renderer, ShowOptions const & options) {
    lookAtWorld(renderer);
    Registered const registered(renderer);
    Show show(game, options.menu);
    dressUnits(show, game, renderer);
    renderer.onKey = [&show](char const * key, bool) { PressKey(show.loop, key); };
    renderer.onPick = [&show](MathPrim::Rayf const & ray) {
        show.loop.View().Select(show.loop.View().Pick(ray));
    };
    auto next = std::chrono::steady_clock::now();
    while (renderer.Begin()) {
        show.loop.RunFrame();
        renderer.End();
        next += std::chrono::microseconds(16'667);
        std::this_thread::sleep_until(next);
    }
    return {true, "the window was closed"};
}

} // namespace

ShowResult PlayShow(Game & game, ShowOptions const & options) {
    if (!options.record.empty())
        return playRecord(game, options);
    std::string reason;
    if (!options.headless)
        if (std::unique_ptr<Renderer> const window =
                Renderer::OpenWindow("sandbox", c_width, c_height, reason))
            return playWindow(game, *window, options);
    return playOffscreen(game, options);
}
