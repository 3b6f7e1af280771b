#include "samples/renderer/Renderer.h"

#include "samples/renderer/Canvas.h"
#include "samples/renderer/Pieces.h"
#include "samples/renderer/ShapeSplitter.h"

#include <cmath>
#include <utility>
#include <variant>

namespace {

constexpr float c_turnPerPixel = 0.006f; // radians
constexpr float c_zoomPerNotch = 0.88f;
constexpr MathPrim::Colour c_undyed = MathPrim::Colour::FromWord(0xFFFFFFFF);

} // namespace

Renderer::Renderer(std::unique_ptr<Canvas> canvas) : canvas(std::move(canvas)) {}

Renderer::~Renderer() = default;

std::unique_ptr<Renderer> Renderer::OpenWindow(char const * title, int width, int height,
                                               std::string & reason) {
    return on(Canvas::OpenWindow(title, width, height, reason));
}

std::unique_ptr<Renderer> Renderer::OpenOffscreen(int width, int height, std::string & reason) {
    return on(Canvas::OpenOffscreen(width, height, reason));
}

std::unique_ptr<Renderer> Renderer::on(std::unique_ptr<Canvas> canvas) {
    return std::unique_ptr<Renderer>(canvas ? new Renderer(std::move(canvas)) : nullptr);
}

bool Renderer::Begin() {
    SDL_Event event;
    while (canvas->IsWindow() && SDL_PollEvent(&event))
        handle(event);
    if (paints)
        canvas->Clear(background);
    return open;
}

void Renderer::End() { canvas->Present(); }

bool Renderer::TakePicture(Picture & picture, std::string & reason) const {
    return canvas->TakePicture(picture, reason);
}

bool Renderer::SavePng(char const * path, std::string & reason) const {
    Picture picture;
    return TakePicture(picture, reason) && picture.SavePng(path, reason);
}

void Renderer::DrawTextured(MathPrim::Mesh const & mesh, Math::Matrix43f const & transform,
                            std::shared_ptr<Texture const> const & texture, char const * frame) {
    if (texture)
        keep(CopiedMesh(mesh, transform, c_undyed, texture), frame);
}

void Renderer::Display() {
    if (paints)
        paint();
    for (Frame & frame : frames)
        if (frame.autoClear)
            frame.shapes.clear();
}

void Renderer::paint() {
    ImVec2 const size = canvas->Size();
    Pieces scene(Pieces::Order::BackToFront, size), sceneInFront(Pieces::Order::BackToFront, size);
    Pieces flat(Pieces::Order::AsAdded, size), flatInFront(Pieces::Order::AsAdded, size);
    ShapeSplitter split(camera, *canvas, scene, flat);
    ShapeSplitter splitInFront(camera, *canvas, sceneInFront, flatInFront);
    for (Frame const & frame : frames)
        if (frame.display)
            for (Shape const & shape : frame.shapes)
                std::visit(frame.alwaysInFront ? splitInFront : split, shape);
    ImDrawList & list = canvas->Open();
    for (Pieces * const pieces : {&scene, &sceneInFront, &flat, &flatInFront})
        pieces->Paint(list, canvas->TextHeight());
    canvas->Flush();
}

void Renderer::List(std::vector<char const *> & names) { frames.List(names); }

void Renderer::SetDisplay(char const * frame, bool enable) { frames.Of(frame).display = enable; }

bool Renderer::GetDisplay(char const * frame) { return frames.Of(frame).display; }

void Renderer::SetAutoClear(char const * frame, bool enable) { frames.Of(frame).autoClear = enable; }

bool Renderer::GetAutoClear(char const * frame) { return frames.Of(frame).autoClear; }

void Renderer::SetAlwaysInFront(char const * frame, bool enable) { frames.Of(frame).alwaysInFront = enable; }

bool Renderer::GetAlwaysInFront(char const * frame) { return frames.Of(frame).alwaysInFront; }

void Renderer::Clear(char const * frame) { frames.Of(frame).shapes.clear(); }

float Renderer::GetTextHeight() { return canvas->TextHeight() / canvas->Size().y; }

float Renderer::GetTextWidth(char const * text) {
    return canvas->SizeOf(ShownText(text)).x / canvas->Size().x;
}

void Renderer::Draw(DebugRender::Plane3D const & shape, char const * frame) { keep(shape, frame); }

void Renderer::Draw(DebugRender::Mesh const & shape, char const * frame) {
    if (shape.mesh)
        keep(CopiedMesh(*shape.mesh, shape.transform, shape.colour), frame);
}

void Renderer::Draw(DebugRender::Text3D const & shape, char const * frame) {
    keep(CopiedText3D{shape.position, std::string(ShownText(shape.text)), shape.colour}, frame);
}

void Renderer::Draw(DebugRender::Text2D const & shape, char const * frame) {
    keep(CopiedText2D{shape.position, std::string(ShownText(shape.text)), shape.colour}, frame);
}

void Renderer::Draw(DebugRender::Sphere const & shape, char const * frame) { keep(shape, frame); }

void Renderer::Draw(DebugRender::Circle3D const & shape, char const * frame) { keep(shape, frame); }

void Renderer::Draw(DebugRender::Circle const & shape, char const * frame) { keep(shape, frame); }

void Renderer::Draw(DebugRender::Cube const & shape, char const * frame) { keep(shape, frame); }

void Renderer::Draw(DebugRender::Tri const & shape, char const * frame) { keep(shape, frame); }

void Renderer::Draw(DebugRender::Line const & shape, char const * frame) { keep(shape, frame); }

void Renderer::Draw(DebugRender::Point const & shape, char const * frame) { keep(shape, frame); }

void Renderer::Draw(DebugRender::OvalOutline const & shape, char const * frame) { keep(shape, frame); }

void Renderer::Draw(DebugRender::RectOutline const & shape, char const * frame) { keep(shape, frame); }

void Renderer::Draw(DebugRender::Tri2D const & shape, char const * frame) { keep(shape, frame); }

void Renderer::Draw(DebugRender::Line2D const & shape, char const * frame) { keep(shape, frame); }

void Renderer::Draw(DebugRender::Point2D const & shape, char const * frame) { keep(shape, frame); }

void Renderer::keep(Shape shape, char const * frame) { frames.Of(frame).shapes.push_back(std::move(shape)); }

void Renderer::handle(SDL_Event const & event) {
    switch (event.type) {
    case SDL_QUIT:
        open = false;
        break;
    case SDL_KEYDOWN:
        if (onKey)
            onKey(SDL_GetKeyName(event.key.keysym.sym), event.key.repeat != 0);
        break;
    case SDL_MOUSEMOTION:
        if (event.motion.state & SDL_BUTTON_LMASK)
            camera.Orbit(-c_turnPerPixel * static_cast<float>(event.motion.xrel),
                         c_turnPerPixel * static_cast<float>(event.motion.yrel));
        break;
    case SDL_MOUSEWHEEL:
        camera.Zoom(std::pow(c_zoomPerNotch, static_cast<float>(event.wheel.y)));
        break;
    case SDL_MOUSEBUTTONDOWN:
        if (onPick && event.button.button == SDL_BUTTON_RIGHT)
            pick(event.button.x, event.button.y);
        break;
    }
}

void Renderer::pick(int x, int y) const {
    ImVec2 const size = canvas->Size();
    Math::Vector2f const place{2.0f * static_cast<float>(x) / size.x - 1.0f,
                               1.0f - 2.0f * static_cast<float>(y) / size.y};
    onPick(camera.RayThrough(place, canvas->Aspect()));
}
