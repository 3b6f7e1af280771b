// The script library "debugrender". Without a proxy its functions do nothing.

#include "Cross/Util/DebugRender.h"
#include "Cross/Util/lua/LuaBindingObj.h"
#include "Cross/Util/lua/LuaLibNames.h"
#include "Cross/engine/scriptconfig/LuaLibMan.h"
#include "Cross/engine/scriptconfig/LuaLibrary.h"

#include <algorithm>

namespace {

// Too much counts as 255; of a negative number the low eight bits count.
std::uint8_t channelOf(int number) { return static_cast<std::uint8_t>(std::min(number, 255)); }

MathPrim::Colour colourOf(int red, int green, int blue) {
    return {channelOf(blue), channelOf(green), channelOf(red), 255};
}

void dr_text3d(char const * frame, float x, float y, float z, char const * text, int r, int g, int b) {
    DebugRender::Draw(DebugRender::Text3D{{x, y, z}, text, colourOf(r, g, b)}, frame);
}

void dr_text2d(char const * frame, float x, float y, char const * text, int r, int g, int b) {
    DebugRender::Draw(DebugRender::Text2D{{x, y}, text, colourOf(r, g, b)}, frame);
}

void dr_drawCircle(char const * frame, float x, float y, float z, float radius, int r, int g, int b) {
    DebugRender::Draw(DebugRender::Circle{{x, y, z}, radius, colourOf(r, g, b)}, frame);
}

class LuaDebugRenderLib : public LuaLibrary {
public:
    LuaDebugRenderLib() { LuaLibMan::AddLibrary(LUALIB_DEBUGRENDER, this); }

    ~LuaDebugRenderLib() override { LuaLibMan::RemLibrary(LUALIB_DEBUGRENDER, this); }

    bool BindState(LuaConfig & config) override {
        StoreLuaBindingObj(config, LuaBinding::Bind(config, "dr_text3d", &dr_text3d));
        StoreLuaBindingObj(config, LuaBinding::Bind(config, "dr_text2d", &dr_text2d));
        StoreLuaBindingObj(config, LuaBinding::Bind(config, "dr_clear", &DebugRender::Clear));
        StoreLuaBindingObj(config, LuaBinding::Bind(config, "dr_setautoclear", &DebugRender::SetAutoClear));
        StoreLuaBindingObj(config, LuaBinding::Bind(config, "dr_setdisplay", &DebugRender::SetDisplay));
        StoreLuaBindingObj(config, LuaBinding::Bind(config, "dr_drawCircle", &dr_drawCircle));
        return true;
    }

    bool ReleaseState(LuaConfig & config) override {
        ClearLuaBindingObj(config);
        return true;
    }
};

LuaDebugRenderLib s_library;

} // namespace
