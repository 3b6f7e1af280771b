#include "Cross/Util/DebugRender.h"

#include "Cross/engine/scriptconfig/LuaConfig.h"
#include "tests/support/ActingProxy.h"
#include "tests/support/SlotOf.h"
#include "tests/support/TraceCapture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <sstream>

namespace {

using D = DebugRender;

constexpr MathPrim::Colour c_colour = MathPrim::Colour::FromWord(0x80FF4020);

// A proxy that is registered from the start, and what it wrote.
class DebugRenderTest : public testing::Test {
protected:
    DebugRenderTest() { D::Register(&proxy); }

    ~DebugRenderTest() override { D::Unregister(&proxy); }

    // What was written since the last look.
    std::string Written() {
        std::string text = out.str();
        out.str("");
        return text;
    }

    std::ostringstream out;
    ActingProxy<D::Line> proxy{out};
};

void drawEachShape(char const * frame) {
    Math::Vector3f const a{1.0f, 2.0f, 3.0f}, b{4.0f, 5.0f, 6.0f}, c{7.0f, 8.0f, 9.0f};
    Math::Vector2f const p{0.5f, 0.25f}, q{-0.5f, 0.75f}, r{0.0f, 1.0f};
    D::Draw(D::Plane3D{a, b, 2.5f, c_colour}, frame);
    D::Draw(D::Mesh{nullptr, {{a, b, c, a}}, c_colour}, frame);
    D::Draw(D::Text3D{a, "text", c_colour}, frame);
    D::Draw(D::Text2D{p, "text", c_colour}, frame);
    D::Draw(D::Sphere{a, 2.5f, c_colour}, frame);
    D::Draw(D::Circle3D{a, b, 2.5f, c_colour}, frame);
    D::Draw(D::Circle{a, 2.5f, c_colour}, frame);
    D::Draw(D::Cube{{a, b, c, a, b, c, a, b}, c_colour, 200}, frame);
    D::Draw(D::Tri{{a, b, c}, c_colour}, frame);
    D::Draw(D::Line{a, b, c_colour}, frame);
    D::Draw(D::Point{a, 2.5f, c_colour}, frame);
    D::Draw(D::OvalOutline{a, b, c, c_colour}, frame);
    D::Draw(D::RectOutline{a, b, c, c_colour}, frame);
    D::Draw(D::Tri2D{{p, q, r}, c_colour}, frame);
    D::Draw(D::Line2D{p, q, c_colour}, frame);
    D::Draw(D::Point2D{p, 2.5f, c_colour}, frame);
}

void switchAndTick(char const * frame) {
    D::SetDisplay(frame, false);
    D::SetAutoClear(frame, false);
    D::SetAlwaysInFront(frame, true);
    D::Clear(frame);
    D::OnSimulate();
    D::OnFrame();
    D::Display();
}

} // namespace

#if defined(__x86_64__)
template <class... Shapes>
std::initializer_list<std::uintptr_t> const & drawSlots() {
    static std::initializer_list<std::uintptr_t> const slots{
        SlotOf<void (DebugRenderProxy::*)(Shapes const &, char const *)>(&DebugRenderProxy::Draw)...};
    return slots;
}

TEST(DebugRenderProxyTest, SlotsStandInTheirOrder) {
    using P = DebugRenderProxy;
    EXPECT_TRUE(FollowTheDestructor(
        {SlotOf(&P::Display), SlotOf(&P::OnFrame), SlotOf(&P::OnSimulate), SlotOf(&P::List),
         SlotOf(&P::SetDisplay), SlotOf(&P::GetDisplay), SlotOf(&P::SetAutoClear), SlotOf(&P::GetAutoClear),
         SlotOf(&P::SetAlwaysInFront), SlotOf(&P::GetAlwaysInFront), SlotOf(&P::Clear),
         SlotOf(&P::GetTextHeight), SlotOf(&P::GetTextWidth)}));
    std::uintptr_t expected = SlotOf(&P::GetTextWidth);
    for (std::uintptr_t const slot :
         drawSlots<D::Plane3D, D::Mesh, D::Text3D, D::Text2D, D::Sphere, D::Circle3D, D::Circle, D::Cube,
                   D::Tri, D::Line, D::Point, D::OvalOutline, D::RectOutline, D::Tri2D, D::Line2D,
                   D::Point2D>())
        EXPECT_EQ(slot, ++expected);
}
#endif

TEST_F(DebugRenderTest, EachShapeReachesTheProxyWhole) {
    drawEachShape("f");
    EXPECT_EQ(
        Written(),
        R"({"call":"Draw","shape":"Plane3D","frame":"f","point":[1,2,3],"normal":[4,5,6],"size":2.5,"colour":"0x80FF4020"}
{"call":"Draw","shape":"Mesh","frame":"f","mesh":1,"transform":[[1,2,3],[4,5,6],[7,8,9],[1,2,3]],"colour":"0x80FF4020"}
{"call":"Draw","shape":"Text3D","frame":"f","position":[1,2,3],"text":"text","colour":"0x80FF4020"}
{"call":"Draw","shape":"Text2D","frame":"f","position":[0.5,0.25],"text":"text","colour":"0x80FF4020"}
{"call":"Draw","shape":"Sphere","frame":"f","centre":[1,2,3],"radius":2.5,"colour":"0x80FF4020"}
{"call":"Draw","shape":"Circle3D","frame":"f","centre":[1,2,3],"normal":[4,5,6],"radius":2.5,"colour":"0x80FF4020"}
{"call":"Draw","shape":"Circle","frame":"f","centre":[1,2,3],"radius":2.5,"colour":"0x80FF4020"}
{"call":"Draw","shape":"Cube","frame":"f","corners":[[1,2,3],[4,5,6],[7,8,9],[1,2,3],[4,5,6],[7,8,9],[1,2,3],[4,5,6]],"colour":"0x80FF4020","flag":200}
{"call":"Draw","shape":"Tri","frame":"f","corners":[[1,2,3],[4,5,6],[7,8,9]],"colour":"0x80FF4020"}
{"call":"Draw","shape":"Line","frame":"f","start":[1,2,3],"end":[4,5,6],"colour":"0x80FF4020"}
{"call":"Draw","shape":"Point","frame":"f","position":[1,2,3],"size":2.5,"colour":"0x80FF4020"}
{"call":"Draw","shape":"OvalOutline","frame":"f","centre":[1,2,3],"axis1":[4,5,6],"axis2":[7,8,9],"colour":"0x80FF4020"}
{"call":"Draw","shape":"RectOutline","frame":"f","centre":[1,2,3],"axis1":[4,5,6],"axis2":[7,8,9],"colour":"0x80FF4020"}
{"call":"Draw","shape":"Tri2D","frame":"f","corners":[[0.5,0.25],[-0.5,0.75],[0,1]],"colour":"0x80FF4020"}
{"call":"Draw","shape":"Line2D","frame":"f","start":[0.5,0.25],"end":[-0.5,0.75],"colour":"0x80FF4020"}
{"call":"Draw","shape":"Point2D","frame":"f","position":[0.5,0.25],"size":2.5,"colour":"0x80FF4020"}
)");
}

TEST_F(DebugRenderTest, FramesAreTheProxys) {
    switchAndTick("f");
    EXPECT_FALSE(D::GetDisplay("f") || D::GetAutoClear("f"));
    EXPECT_TRUE(D::GetAlwaysInFront("f"));
    EXPECT_TRUE(D::GetDisplay(D::GlobalFrame()) && D::GetAutoClear(D::GlobalFrame()));
    EXPECT_FALSE(D::GetAlwaysInFront(D::GlobalFrame()));
    std::vector<char const *> frames{"old"};
    D::List(frames);
    EXPECT_EQ(D::GetTextWidth("text"), 0.03125f);
    EXPECT_EQ(D::GetTextHeight(), 0.0234375f);
    EXPECT_EQ(Written(), R"({"call":"SetDisplay","frame":"f","enable":false}
{"call":"SetAutoClear","frame":"f","enable":false}
{"call":"SetAlwaysInFront","frame":"f","enable":true}
{"call":"Clear","frame":"f"}
{"call":"OnSimulate"}
{"call":"OnFrame"}
{"call":"Display"}
{"call":"GetDisplay","frame":"f","result":false}
{"call":"GetAutoClear","frame":"f","result":false}
{"call":"GetAlwaysInFront","frame":"f","result":true}
{"call":"GetDisplay","frame":"Global","result":true}
{"call":"GetAutoClear","frame":"Global","result":true}
{"call":"GetAlwaysInFront","frame":"Global","result":false}
{"call":"List","result":["f","Global"]}
{"call":"GetTextWidth","text":"text","result":0.03125}
{"call":"GetTextHeight","result":0.0234375}
)");
}

TEST_F(DebugRenderTest, WithoutAProxyNothingHappens) {
    D::SetAlwaysInFront("f", true);
    Written();
    RecordingProxy other(out);
    D::Unregister(&other);
    EXPECT_EQ(D::s_pProxy, nullptr) << "whichever proxy leaves";
    drawEachShape("f");
    switchAndTick("f");
    D::DrawAlignedCircle({}, 1.0f, c_colour, 0xFFFFFFFF, {}, {});
    EXPECT_FALSE(D::GetDisplay("Global") || D::GetAutoClear("f") || D::GetAlwaysInFront("f"));
    EXPECT_EQ(D::GetTextWidth("x"), 0.0f);
    EXPECT_EQ(D::GetTextHeight(), 0.0f);
    std::vector<char const *> frames{"old"};
    D::List(frames);
    EXPECT_EQ(frames, std::vector<char const *>{"old"});
    EXPECT_EQ(Written(), "");
}

TEST_F(DebugRenderTest, OddValuesAreHandedOnAsTheyAre) {
    constexpr float c_inf = std::numeric_limits<float>::infinity();
    constexpr float c_nan = std::numeric_limits<float>::quiet_NaN();
    D::Draw(D::Circle{{c_nan, c_inf, -c_inf}, -0.0f, {}}, nullptr);
    D::Draw(D::Text2D{{1e30f, 1.0f / 3.0f}, nullptr, {}}, "\"\\\n\xC3\x84\xFF");
    EXPECT_EQ(D::GetTextWidth("\xC3\x84\x7F"), 0.0234375f);
    EXPECT_EQ(D::GetTextWidth(nullptr), 0.0f);
    EXPECT_EQ(
        Written(),
        R"({"call":"Draw","shape":"Circle","frame":null,"centre":["nan","inf","-inf"],"radius":-0,"colour":"0x00000000"}
{"call":"Draw","shape":"Text2D","frame":"\"\\\u000A\u00C3\u0084\u00FF","position":[1e+30,0.33333334],"text":null,"colour":"0x00000000"}
{"call":"GetTextWidth","text":")"
        "\xC3\x84\x7F"
        R"(","result":0.0234375}
{"call":"GetTextWidth","text":null,"result":0}
)");
    MathPrim::Mesh meshes[2];
    for (int const i : {0, 1, 0}) {
        D::Draw(D::Mesh{&meshes[i], {}, {}}, "f");
        EXPECT_NE(Written().find("\"mesh\":" + std::to_string(i + 1) + ","), std::string::npos);
    }
}

// The corners of the square are off by what turning step by step in floats makes of them.
TEST_F(DebugRenderTest, AlignedCirclesAreLines) {
    D::DrawAlignedCircle({}, 2.0f, c_colour, 4, {1.0f, 0.0f, 0.0f}, {0.0f, 1.0f, 0.0f});
    EXPECT_EQ(
        Written(),
        R"({"call":"Draw","shape":"Line","frame":"TerrainLine","start":[2,0,0],"end":[-8.742278e-08,2,0],"colour":"0x80FF4020"}
{"call":"Draw","shape":"Line","frame":"TerrainLine","start":[-8.742278e-08,2,0],"end":[-2,-1.7484555e-07,0],"colour":"0x80FF4020"}
{"call":"Draw","shape":"Line","frame":"TerrainLine","start":[-2,-1.7484555e-07,0],"end":[2.6226832e-07,-2,0],"colour":"0x80FF4020"}
{"call":"Draw","shape":"Line","frame":"TerrainLine","start":[2.6226832e-07,-2,0],"end":[2,3.496911e-07,0],"colour":"0x80FF4020"}
)");
    // axes of any length, and the order of the steps in its last digits
    D::DrawAlignedCircle({0.125f, 0.25f, 0.5f}, 0.7f, c_colour, 7, {1.0f, 0.3f, 0.1f}, {0.2f, 1.1f, 0.9f});
    EXPECT_NE(Written().find(R"("start":[0.4519866,-0.22107708,0.051090688],)"
                             R"("end":[0.8249999,0.46000028,0.57000023],"colour":"0x80FF4020"})"),
              std::string::npos);
    D::DrawAlignedCircle({}, 2.0f, c_colour, 0, {1.0f, 0.0f, 0.0f}, {0.0f, 1.0f, 0.0f});
    EXPECT_EQ(Written(), "");
}

TEST_F(DebugRenderTest, AProxyMayLeaveOrMakeRoomWhileItIsCalled) {
    std::ostringstream otherOut;
    RecordingProxy other(otherOut);
    auto const lines = [](std::string const & text) { return std::count(text.begin(), text.end(), '\n'); };
    auto const circle = [] { D::DrawAlignedCircle({}, 1.0f, c_colour, 3, {}, {}); };

    proxy.act = [&] { D::Register(&other); };
    circle();
    EXPECT_EQ(lines(Written()), 1);
    EXPECT_EQ(lines(otherOut.str()), 2);

    D::Register(&proxy);
    proxy.act = [&] { D::Unregister(&proxy); };
    circle();
    EXPECT_EQ(lines(Written()), 1);
}

TEST_F(DebugRenderTest, ScriptsDraw) {
    struct Case {
        char const * call;
        std::string written; // or a part of the error, when it begins with no brace
    };

    Case const cases[] = {
        {"dr_text3d('f', 1, 2, 3.5, 'text', 1, 2, 3)",
         R"({"call":"Draw","shape":"Text3D","frame":"f","position":[1,2,3.5],"text":"text","colour":"0xFF010203"})"},
        {"dr_text2d('f', 0.5, 1, 'text', 300, 255, 254)",
         R"({"call":"Draw","shape":"Text2D","frame":"f","position":[0.5,1],"text":"text","colour":"0xFFFFFFFE"})"},
        {"dr_drawCircle('f', 1, 2, 3, 4.5, 16, 32, 64)",
         R"({"call":"Draw","shape":"Circle","frame":"f","centre":[1,2,3],"radius":4.5,"colour":"0xFF102040"})"},
        // of a negative channel the low eight bits count
        {"dr_text2d('f', 0, 0, '', -1, -256, -2147483648)",
         R"({"call":"Draw","shape":"Text2D","frame":"f","position":[0,0],"text":"","colour":"0xFFFF0000"})"},
        // a number passes as a text, and as a switch
        {"dr_clear(7)", R"({"call":"Clear","frame":"7"})"},
        {"dr_setautoclear('f', 0)", R"({"call":"SetAutoClear","frame":"f","enable":false})"},
        {"dr_setdisplay('f', true)", R"({"call":"SetDisplay","frame":"f","enable":true})"},
        // wrong calls draw nothing
        {"dr_drawCircle('f', 1, 2, 3, 4, 1.5, 0, 0)",
         "Invalid parameter 6 (type expected=int, received=number) in function dr_drawCircle"},
        {"dr_clear()", "expected=1, received=0"},
    };
    TraceCapture trace;
    LuaConfig state("script", true);
    for (Case const & row : cases) {
        bool const draws = row.written[0] == '{';
        trace.lines.assign(1, "");
        EXPECT_EQ(state.RunString(row.call, true), draws) << row.call;
        EXPECT_EQ(Written(), draws ? row.written + "\n" : "") << row.call;
        EXPECT_EQ(trace.lines.back().find(row.written) == std::string::npos, draws) << trace.lines.back();
    }

    D::Unregister(&proxy);
    for (Case const & row : cases)
        EXPECT_EQ(state.RunString(row.call, false), row.written[0] == '{') << row.call;
    EXPECT_EQ(Written(), "");
}
