#pragma once

// RecordingProxy: a renderer that draws nothing and writes what it is called with: one line of JSON per call.
// Tests, tools and the sample game compare such lines, letter by letter, or read them.
//
//     {"call":"SetDisplay","frame":"Global","enable":true}
//     {"call":"GetTextWidth","text":"Tris","result":0.03125}
//     {"call":"Draw","shape":"Line","frame":"Global","start":[0,0,0],"end":[1,0.5,0],"colour":"0xFFFF0000"}
//
// Members stand in the order of the arguments, but the frame in front of the fields of a shape; a result
// comes last.
// - Numbers are the shortest text that reads back as the same 32-bit float, -0 apart from 0; what JSON has no
//   number for is "inf", "-inf" or "nan".
// - Colours are "0xAARRGGBB", positions are lists, a null text is null.
// - Texts are UTF-8, with quotes, backslashes and control bytes escaped; a text that is no UTF-8 has every
//   byte above 127 escaped as \u00XX.
// - A mesh is a number: 1 for the first address that was drawn, 2 for the next.
//
// Texts have a fixed size: each byte is 1/128 of the screen wide, every text is 3/128 high; null is 0 wide.
// Frames have the settings that were set. A frame that nobody named before is shown, has auto clear and is
// not in front. List gives the frames in the order in which they were first named; null counts as the frame
// "".
//
// Threads: one at a time. Lifetime: the stream must outlive the proxy, whose destructor writes nothing.
// Failed writes show in the state of the stream.

#include "Cross/Util/DebugRender.h"
#include "samples/debugdraw/FrameTable.h"

#include <ostream>
#include <string>

class RecordingProxy : public DebugRenderProxy {
public:
    explicit RecordingProxy(std::ostream & out) : out(out) {}

    void Display() override;
    void OnFrame() override;
    void OnSimulate() override;
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
    template <class... Members>
    void record(char const * call, Members const &... namesAndValues);
    template <class... Members>
    void draw(char const * shape, char const * frame, Members const &... namesAndValues);
    void set(char const * call, char const * frame, bool FrameSettings::*setting, bool enable);
    bool get(char const * call, char const * frame, bool FrameSettings::*setting);
    unsigned int numberOf(MathPrim::Mesh const * mesh);

    std::ostream & out;
    FrameTable<FrameSettings> frames;
    std::vector<MathPrim::Mesh const *> meshes;
};
