#pragma once

// Renderer: shows debug shapes in a window, or draws them off screen into a picture, which comes out the same
// to the byte each time.
//
//     std::string reason;
//     auto renderer = Renderer::OpenWindow("game", 1280, 720, reason);
//     if (!renderer)
//         renderer = Renderer::OpenOffscreen(1280, 720, reason);
//     DebugRender::Register(renderer.get());
//     while (renderer->Begin()) {
//         ... draw, DebugRender::Display() ...
//         renderer->End();
//     }
//     DebugRender::Unregister(renderer.get());
//
// Display draws the scene, the farthest shapes first, then the scenes of the frames that are always in front,
// then what lies on the screen, again with those frames last and otherwise in the order in which it was
// drawn. A new frame is shown, has auto clear and is not in front. Coordinates that are not finite do no
// harm: their shapes are left out. Textured meshes are shapes of the scene like all others.
//
// Threads: one, that of main for a window. One window at a time.

#include "Cross/Util/DebugRender.h"
#include "samples/debugdraw/FrameTable.h"
#include "samples/renderer/Camera.h"
#include "samples/renderer/Picture.h"
#include "samples/renderer/Shapes.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

class Canvas;
union SDL_Event;

class Renderer : public DebugRenderProxy {
public:
    // Null, with the reason, where there is no display or the system refuses. Sizes are in pixels, above 0.
    static std::unique_ptr<Renderer> OpenWindow(char const * title, int width, int height,
                                                std::string & reason);
    static std::unique_ptr<Renderer> OpenOffscreen(int width, int height, std::string & reason);

    Renderer(Renderer const &) = delete;
    Renderer & operator=(Renderer const &) = delete;
    ~Renderer() override;

    Camera camera;      // in a window the left button turns it about its target, the wheel zooms
    bool paints = true; // set before Begin; off, the frame takes little time and there is no picture of it
    MathPrim::Colour background = MathPrim::Colour::FromWord(0xFF161B20);

    // For a window, called by Begin; each may be empty. Keys have the names that SDL gives them: "A", "Up",
    // "Return", "F1"; `repeated` tells that the key is being held. A pick is a press of the right button, as
    // a ray into the scene.
    std::function<void(char const * key, bool repeated)> onKey;
    std::function<void(MathPrim::Rayf const & ray)> onPick;

    // Begins a frame with an empty picture. False once the window was closed; never off screen.
    bool Begin();

    // Shows the frame in the window.
    void End();

    // What was drawn since Begin, also after End. False, with the reason, when it can't be read or written.
    bool TakePicture(Picture & picture, std::string & reason) const;
    bool SavePng(char const * path, std::string & reason) const;

    // Draws a mesh with a texture that lies over it from above: x and z of the mesh's own bounds, to the
    // right and ahead, are the width and the height of the picture, so that sides show the colour of the
    // pixels that they stand on. Each face is shaded; where the system refuses the texture they are white.
    // Without triangles or a texture nothing is drawn.
    void DrawTextured(MathPrim::Mesh const & mesh, Math::Matrix43f const & transform,
                      std::shared_ptr<Texture const> const & texture, char const * frame);

    void Display() override;

    void OnFrame() override {}

    void OnSimulate() override {}

    void List(std::vector<char const *> & frames) override;
    void SetDisplay(char const * frame, bool enable) override;
    bool GetDisplay(char const * frame) override;
    void SetAutoClear(char const * frame, bool enable) override;
    bool GetAutoClear(char const * frame) override;
    void SetAlwaysInFront(char const * frame, bool enable) override;
    bool GetAlwaysInFront(char const * frame) override;
    void Clear(char const * frame) override;
    float GetTextHeight() override;
    float GetTextWidth(char const * text) override;
    void Draw(DebugRender::Plane3D const & shape, char const * frame) override;
    void Draw(DebugRender::Mesh const & shape, char const * frame) override;
    void Draw(DebugRender::Text3D const & shape, char const * frame) override;
    void Draw(DebugRender::Text2D const & shape, char const * frame) override;
    void Draw(DebugRender::Sphere const & shape, char const * frame) override;
    void Draw(DebugRender::Circle3D const & shape, char const * frame) override;
    void Draw(DebugRender::Circle const & shape, char const * frame) override;
    void Draw(DebugRender::Cube const & shape, char const * frame) override;
    void Draw(DebugRender::Tri const & shape, char const * frame) override;
    void Draw(DebugRender::Line const & shape, char const * frame) override;
    void Draw(DebugRender::Point const & shape, char const * frame) override;
    void Draw(DebugRender::OvalOutline const & shape, char const * frame) override;
    void Draw(DebugRender::RectOutline const & shape, char const * frame) override;
    void Draw(DebugRender::Tri2D const & shape, char const * frame) override;
    void Draw(DebugRender::Line2D const & shape, char const * frame) override;
    void Draw(DebugRender::Point2D const & shape, char const * frame) override;

private:
    struct Frame : FrameSettings {
        std::vector<Shape> shapes;
    };

    explicit Renderer(std::unique_ptr<Canvas> canvas);

    static std::unique_ptr<Renderer> on(std::unique_ptr<Canvas> canvas);

    void paint();
    void keep(Shape shape, char const * frame);
    void handle(SDL_Event const & event);
    void pick(int x, int y) const;

    std::unique_ptr<Canvas> canvas;
    bool open = true;
    FrameTable<Frame> frames;
};
