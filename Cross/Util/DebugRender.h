#pragma once

// DebugRender: the door through which library, game and scripts draw shapes and text for developers without
// knowing a renderer. The application's renderer implements DebugRenderProxy and registers it; every
// operation goes to the proxy. Without one nothing is drawn and reads give 0 or false, so overlays work,
// silently, in a program that has no renderer.
//
// Shapes go into frames: a frame has a name, a list of shapes and settings of its own, all kept by the proxy.
// Names and texts may be null and of any length, coordinates may be infinite or NaN: they are handed on as
// they are.
//
// Threads: one at a time. Lifetime: the proxy is not owned; unregister it before it goes. Never keep
// s_pProxy: a proxy may register another or leave while it is called.

#include "Cross/engine/core/Export.h"
#include "Cross/engine/core/Math.h"
#include "Cross/engine/core/MathPrim.h"

#include <cstdint>
#include <vector>

class DebugRenderProxy;

class CROSS_UTIL_API DebugRender {
public:
    // Shapes in the scene: positions and lengths in world units.

    // A square around `point`, across `normal`; `size` is the length of its sides.
    struct Plane3D {
        Math::Vector3f point;
        Math::Vector3f normal;
        float size;
        MathPrim::Colour colour;
    };

    // The mesh is borrowed for the call.
    struct Mesh {
        MathPrim::Mesh const * mesh;
        Math::Matrix43f transform;
        MathPrim::Colour colour;
    };

    struct Text3D {
        Math::Vector3f position;
        char const * text;
        MathPrim::Colour colour;
    };

    struct Sphere {
        Math::Vector3f centre;
        float radius;
        MathPrim::Colour colour;
    };

    // A circle across `normal`.
    struct Circle3D {
        Math::Vector3f centre;
        Math::Vector3f normal;
        float radius;
        MathPrim::Colour colour;
    };

    // A circle that lies as the renderer likes; DrawAlignedCircle chooses the plane.
    struct Circle {
        Math::Vector3f centre;
        float radius;
        MathPrim::Colour colour;
    };

    struct Cube {
        Math::Vector3f corners[8];
        MathPrim::Colour colour;
        std::uint8_t flag; // the renderer's own; the library sets 0
    };

    struct Tri {
        Math::Vector3f corners[3];
        MathPrim::Colour colour;
    };

    struct Line {
        Math::Vector3f start;
        Math::Vector3f end;
        MathPrim::Colour colour;
    };

    struct Point {
        Math::Vector3f position;
        float size;
        MathPrim::Colour colour;
    };

    // The axes lead from the centre to the outline.
    struct OvalOutline {
        Math::Vector3f centre;
        Math::Vector3f axis1;
        Math::Vector3f axis2;
        MathPrim::Colour colour;
    };

    // The axes lead from the centre to the middles of two sides.
    struct RectOutline {
        Math::Vector3f centre;
        Math::Vector3f axis1;
        Math::Vector3f axis2;
        MathPrim::Colour colour;
    };

    // Text on the screen, in text units: 0 to 1 from left to right and from top to bottom.
    struct Text2D {
        Math::Vector2f position;
        char const * text;
        MathPrim::Colour colour;
    };

    // Shapes on the screen, in screen units: -1 to 1 from left to right and from bottom to top.

    struct Tri2D {
        Math::Vector2f corners[3];
        MathPrim::Colour colour;
    };

    struct Line2D {
        Math::Vector2f start;
        Math::Vector2f end;
        MathPrim::Colour colour;
    };

    struct Point2D {
        Math::Vector2f position;
        float size;
        MathPrim::Colour colour;
    };

    // The registered proxy, null for none.
    static DebugRenderProxy * s_pProxy;

    // Takes the place of an earlier proxy; null is none.
    static void Register(DebugRenderProxy * proxy);

    // Leaves no proxy, whichever one is passed.
    static void Unregister(DebugRenderProxy * proxy);

    // "Global", the frame for whatever needs none of its own.
    static char const * GlobalFrame();

    // Draws any of the shapes above into a frame.
    template <class Shape>
    static void Draw(Shape const & shape, char const * frame);

    // Draws a circle as `steps` lines into the frame "TerrainLine", from centre + firstAxis * radius by way
    // of centre + secondAxis * radius. The axes need not be unit vectors. 0 steps draw nothing.
    static void DrawAlignedCircle(Math::Vector3f const & centre, float radius,
                                  MathPrim::Colour const & colour, unsigned int steps,
                                  Math::Vector3f const & firstAxis, Math::Vector3f const & secondAxis);

    // The size of a text, in text units.
    static float GetTextWidth(char const * text);
    static float GetTextHeight();

    // Empties a frame.
    static void Clear(char const * frame);

    // Whether a frame is drawn over the scene, is emptied by itself once it was shown, and is shown at all.
    static bool GetAlwaysInFront(char const * frame);
    static void SetAlwaysInFront(char const * frame, bool enable);
    static bool GetAutoClear(char const * frame);
    static void SetAutoClear(char const * frame, bool enable);
    static bool GetDisplay(char const * frame);
    static void SetDisplay(char const * frame, bool enable);

    // Fills in the names of all frames, which stay the proxy's; without a proxy `frames` stays as it is.
    static void List(std::vector<char const *> & frames);

    // For the application: on its simulation step, on its frame, and to show the frames.
    static void OnSimulate();
    static void OnFrame();
    static void Display();
};

// What a renderer implements. It keeps the frames:
// - A frame that it does not know comes into being at first use, and is shown.
// - Display shows the frames, then empties those with auto clear; the others keep their shapes until Clear.
// - A frame that is always in front is drawn over the scene.
// - Names and texts are copied during the call; the caller's may be gone after it.
// Draw runs often: callers build their frames anew every frame.
class CROSS_UTIL_API DebugRenderProxy {
public:
    DebugRenderProxy() = default;
    DebugRenderProxy(DebugRenderProxy const &) = default;
    DebugRenderProxy & operator=(DebugRenderProxy const &) = default;
    virtual ~DebugRenderProxy();

    virtual void Display() = 0;
    virtual void OnFrame() = 0;
    virtual void OnSimulate() = 0;
    virtual void List(std::vector<char const *> & frames) = 0;
    virtual void SetDisplay(char const * frame, bool enable) = 0;
    virtual bool GetDisplay(char const * frame) = 0;
    virtual void SetAutoClear(char const * frame, bool enable) = 0;
    virtual bool GetAutoClear(char const * frame) = 0;
    virtual void SetAlwaysInFront(char const * frame, bool enable) = 0;
    virtual bool GetAlwaysInFront(char const * frame) = 0;
    virtual void Clear(char const * frame) = 0;
    virtual float GetTextHeight() = 0;
    virtual float GetTextWidth(char const * text) = 0;
    virtual void Draw(DebugRender::Plane3D const & shape, char const * frame) = 0;
    virtual void Draw(DebugRender::Mesh const & shape, char const * frame) = 0;
    virtual void Draw(DebugRender::Text3D const & shape, char const * frame) = 0;
    virtual void Draw(DebugRender::Text2D const & shape, char const * frame) = 0;
    virtual void Draw(DebugRender::Sphere const & shape, char const * frame) = 0;
    virtual void Draw(DebugRender::Circle3D const & shape, char const * frame) = 0;
    virtual void Draw(DebugRender::Circle const & shape, char const * frame) = 0;
    virtual void Draw(DebugRender::Cube const & shape, char const * frame) = 0;
    virtual void Draw(DebugRender::Tri const & shape, char const * frame) = 0;
    virtual void Draw(DebugRender::Line const & shape, char const * frame) = 0;
    virtual void Draw(DebugRender::Point const & shape, char const * frame) = 0;
    virtual void Draw(DebugRender::OvalOutline const & shape, char const * frame) = 0;
    virtual void Draw(DebugRender::RectOutline const & shape, char const * frame) = 0;
    virtual void Draw(DebugRender::Tri2D const & shape, char const * frame) = 0;
    virtual void Draw(DebugRender::Line2D const & shape, char const * frame) = 0;
    virtual void Draw(DebugRender::Point2D const & shape, char const * frame) = 0;
};

// Inline, so that drawing costs a program without a renderer no more than a test.

template <class Shape>
void DebugRender::Draw(Shape const & shape, char const * frame) {
    if (s_pProxy)
        s_pProxy->Draw(shape, frame);
}

inline float DebugRender::GetTextWidth(char const * text) {
    return s_pProxy ? s_pProxy->GetTextWidth(text) : 0.0f;
}

inline float DebugRender::GetTextHeight() { return s_pProxy ? s_pProxy->GetTextHeight() : 0.0f; }

inline void DebugRender::Clear(char const * frame) {
    if (s_pProxy)
        s_pProxy->Clear(frame);
}

inline bool DebugRender::GetAlwaysInFront(char const * frame) {
    return s_pProxy && s_pProxy->GetAlwaysInFront(frame);
}

inline void DebugRender::SetAlwaysInFront(char const * frame, bool enable) {
    if (s_pProxy)
        s_pProxy->SetAlwaysInFront(frame, enable);
}

inline bool DebugRender::GetAutoClear(char const * frame) {
    return s_pProxy && s_pProxy->GetAutoClear(frame);
}

inline void DebugRender::SetAutoClear(char const * frame, bool enable) {
    if (s_pProxy)
        s_pProxy->SetAutoClear(frame, enable);
}

inline bool DebugRender::GetDisplay(char const * frame) { return s_pProxy && s_pProxy->GetDisplay(frame); }

inline void DebugRender::SetDisplay(char const * frame, bool enable) {
    if (s_pProxy)
        s_pProxy->SetDisplay(frame, enable);
}

inline void DebugRender::List(std::vector<char const *> & frames) {
    if (s_pProxy)
        s_pProxy->List(frames);
}

inline void DebugRender::OnSimulate() {
    if (s_pProxy)
        s_pProxy->OnSimulate();
}

inline void DebugRender::OnFrame() {
    if (s_pProxy)
        s_pProxy->OnFrame();
}

inline void DebugRender::Display() {
    if (s_pProxy)
        s_pProxy->Display();
}
