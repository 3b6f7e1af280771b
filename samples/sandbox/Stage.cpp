#include "samples/sandbox/Stage.h"

#include "Cross/Util/ConfigFile.h"
#include "samples/sandbox/Files.h"
#include "samples/sandbox/GameLoop.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <thread>

namespace {

struct VideoSize {
    int width = 1280;
    int height = 720;
};

VideoSize videoSize() {
    VideoSize size;
    ConfigFile video;
    if (video.Load(WideRealPath("DATA:video.ini").c_str())) {
        video.SetSection("Video", nullptr, 0);
        video.GetInt("Width", size.width);
        video.GetInt("Height", size.height);
    }
    return size;
}

} // namespace

Stage::Stage(StageOptions const & options) : options(options) {
    if (!options.record.empty())
        openRecord();
    else if (!options.blind)
        openScreen();
    if (!isWindow)
        clock.emplace();
}

void Stage::openScreen() {
    VideoSize const size = videoSize();
    if (!options.headless) {
        renderer = Renderer::OpenWindow("sandbox", size.width, size.height, reason);
        isWindow = renderer != nullptr;
        if (!isWindow)
            std::fprintf(stderr, "no window, pictures instead: %s\n", reason.c_str());
    }
    if (isWindow)
        return;
    reason.clear();
    renderer = Renderer::OpenOffscreen(size.width, size.height, reason);
}

void Stage::openRecord() {
    file.open(options.record, std::ios::binary);
    if (file)
        recorder.emplace(file);
    else
        reason = options.record + " cannot be written";
}

DebugRenderProxy * Stage::Proxy() {
    if (recorder)
        return &*recorder;
    return renderer.get();
}

bool Stage::BeginFrame(bool pictured) {
    if (clock)
        clock->Advance(GameLoop::c_step);
    if (!renderer)
        return true;
    renderer->paints = isWindow || pictured;
    return renderer->Begin();
}

void Stage::EndFrame() {
    if (renderer)
        renderer->End();
    if (!isWindow)
        return;
    // What took longer, such as the checks, is not made up for.
    nextFrame = std::max(nextFrame + std::chrono::microseconds(16'667), std::chrono::steady_clock::now());
    std::this_thread::sleep_until(nextFrame);
}

bool Stage::SavePicture(std::string const & path) {
    if (!renderer)
        return true;
    std::error_code error;
    std::filesystem::create_directories(std::filesystem::path(path).parent_path(), error);
    if (!renderer->SavePng(path.c_str(), reason))
        return false;
    ++pictures;
    return true;
}

std::string Stage::Finish() {
    if (!recorder)
        return renderer ? std::to_string(pictures) + " pictures in " + options.pictures : "nothing was drawn";
    if (!file.flush())
        reason = options.record + " cannot be written";
    return "calls of the renderer in " + options.record;
}
