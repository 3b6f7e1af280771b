#pragma once

// Where the game is seen: in a window, in pictures, as a record of what was drawn, or nowhere. Without a
// window time is that of a clock that repeats.

#include "samples/debugdraw/RecordingProxy.h"
#include "samples/renderer/Renderer.h"
#include "samples/sandbox/StepClock.h"

#include <chrono>
#include <fstream>
#include <memory>
#include <optional>
#include <string>

struct StageOptions {
    bool headless = false; // no window, even where there is a display
    bool blind = false;    // no renderer at all
    std::string pictures;  // folder for pictures, of real path
    std::string record;    // write the calls of the renderer to this file instead of drawing
};

class Stage {
public:
    // Of the size that "DATA:video.ini" tells. Not on stage, with the reason, when there is nothing to draw
    // into.
    explicit Stage(StageOptions const & options);

    // Whether it opened, and all was written so far.
    bool IsGood() const { return reason.empty(); }

    // Why it is not good.
    std::string const & Reason() const { return reason; }

    // What draws; null when the game is seen nowhere.
    DebugRenderProxy * Proxy();

    // Null when the game is recorded, or seen nowhere.
    Renderer * Screen() { return renderer.get(); }

    bool IsWindow() const { return isWindow; }

    // Round all that is drawn in a frame. Without a window only one that is `pictured` is painted, which
    // takes its time. False when the window was closed.
    bool BeginFrame(bool pictured);
    void EndFrame();

    // Writes what the last frame drew, which was pictured, to a file of the pictures' folder or a path of its
    // own. True also where there is no screen to take it from.
    bool TakePicture(std::string const & name) { return SavePicture(options.pictures + "/" + name + ".png"); }

    bool SavePicture(std::string const & path);

    // Completes the record and tells what was written. IsGood is final then.
    std::string Finish();

private:
    void openScreen();
    void openRecord();

    StageOptions const options;
    std::string reason;
    bool isWindow = false;
    std::optional<StepClock> clock; // but for a window
    std::unique_ptr<Renderer> renderer;
    std::ofstream file;
    std::optional<RecordingProxy> recorder;
    unsigned int pictures = 0;
    std::chrono::steady_clock::time_point nextFrame = std::chrono::steady_clock::now();
};
