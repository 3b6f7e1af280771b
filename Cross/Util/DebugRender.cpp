#include "Cross/Util/DebugRender.h"

#include <cmath>

constinit DebugRenderProxy * DebugRender::s_pProxy = nullptr;

DebugRenderProxy::~DebugRenderProxy() = default;

void DebugRender::Register(DebugRenderProxy * proxy) { s_pProxy = proxy; }

void DebugRender::Unregister(DebugRenderProxy *) { s_pProxy = nullptr; }

char const * DebugRender::GlobalFrame() { return "Global"; }

// A point is turned by one step at a time, in floats, which takes a single sine and cosine.
void DebugRender::DrawAlignedCircle(Math::Vector3f const & centre, float radius,
                                    MathPrim::Colour const & colour, unsigned int steps,
                                    Math::Vector3f const & firstAxis, Math::Vector3f const & secondAxis) {
    if (steps == 0)
        return;
    float const angle = 1.0f / static_cast<float>(steps) * 6.2831855f;
    float const c = std::cos(angle), s = std::sin(angle);
    float x = 1.0f, y = 0.0f;
    auto const turned = [&] { return centre + (firstAxis * x + secondAxis * y) * radius; };
    for (unsigned int step = 0; step < steps && s_pProxy; ++step) {
        Math::Vector3f const start = turned();
        float const nextX = x * c - y * s;
        y = y * c + x * s;
        x = nextX;
        Draw(Line{start, turned(), colour}, "TerrainLine");
    }
}
