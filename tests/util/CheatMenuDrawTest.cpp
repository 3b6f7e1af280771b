// How the menu looks. Every text is 3/128 high and each of its bytes 1/128 wide; the figures are worked out
// from that apart from the library, in 32-bit floats.

#include "tests/util/CheatMenuSupport.h"

#include <array>
#include <limits>

namespace {

std::string tri(std::string const & ax, std::string const & ay, std::string const & bx,
                std::string const & by, std::string const & cx, std::string const & cy,
                std::string const & colour) {
    return R"({"call":"Draw","shape":"Tri2D","frame":"cheatmenu","corners":[[)" + ax + "," + ay + "],[" + bx +
           "," + by + "],[" + cx + "," + cy + R"(]],"colour":")" + colour + "\"}\n";
}

std::string rect(std::string const & ax, std::string const & ay, std::string const & bx,
                 std::string const & by, std::string const & colour) {
    return tri(ax, ay, bx, ay, ax, by, colour) + tri(bx, ay, bx, by, ax, by, colour);
}

std::string shown(std::string const & x, std::string const & y, std::string const & text,
                  std::string const & colour = "0xFFFFFFFF") {
    return R"({"call":"Draw","shape":"Text2D","frame":"cheatmenu","position":[)" + x + "," + y +
           R"(],"text":")" + text + R"(","colour":")" + colour + "\"}\n";
}

// A menu with a line of each kind.
constexpr char const * c_kinds = R"(SubMenuItems = {
    { name = "Units", type = SubMenu },
    { name = "Fire", type = Command, command = "" },
    { name = "Fog", type = Variable, get = "true" },
    { name = "Rain", type = Variable, get = "false" },
    { name = "Speed", type = Variable, var_type = Float, get = "2.5", max = 10 },
    { name = "-", type = Separator },
    { name = "Odd", type = 7 },
    { name = "Dial", type = Variable, var_type = 2 },
})";
constexpr int c_count = 8;

// What one of its lines draws, `back` being the colour behind it.
std::string kind(int line, std::string const & back, bool selected) {
    std::string const frame = selected ? "0xFFFFFFFF" : "0xFFA0A0A0", inside = "0xFF000000";
    switch (line) {
    case 0:
        return rect("-0.9", "0.9", "-0.5074798", "0.8267871", back) +
               shown("0.056177348", "0.06830323", "Units") +
               tri("-0.53630733", "0.87803614", "-0.51983446", "0.86339355", "-0.53630733", "0.84875095",
                   selected ? "0xFFFFFFFF" : "0xFF101010");
    case 1:
        return rect("-0.9", "0.8267871", "-0.5074798", "0.75357425", back) +
               shown("0.056177348", "0.10490966", "Fire");
    case 2:
        return rect("-0.9", "0.75357425", "-0.5074798", "0.6803614", back) +
               shown("0.056177348", "0.14151609", "Fog") +
               rect("-0.54866207", "0.73893166", "-0.5239527", "0.695004", frame) +
               rect("-0.54680884", "0.7356371", "-0.52580595", "0.6982985", inside) +
               rect("-0.5441835", "0.7309698", "-0.5284313", "0.70296586", frame);
    case 3:
        return rect("-0.9", "0.6803614", "-0.5074798", "0.6071485", back) +
               shown("0.056177348", "0.17812252", "Rain") +
               rect("-0.54866207", "0.6657188", "-0.5239527", "0.6217911", frame) +
               rect("-0.54680884", "0.66242427", "-0.52580595", "0.62508565", inside);
    case 4:
        return rect("-0.9", "0.6071485", "-0.5074798", "0.53393567", back) +
               shown("0.056177348", "0.21472895", "Speed") +
               rect("-0.7074798", "0.59250593", "-0.5239527", "0.54857826", frame) +
               rect("-0.7060263", "0.5892114", "-0.5254062", "0.5518728", inside) +
               rect("-0.6632563", "0.58454406", "-0.64725626", "0.55654013", frame) +
               shown("0.17261064", "0.21472895", "2.500", selected ? "0xF0AFFFAF" : "0xB0AFFFAF");
    case 5:
        return rect("-0.9", "0.53393567", "-0.5074798", "0.46072277", back) +
               rect("-0.9", "0.49879348", "-0.5074798", "0.49586496", "0xFFFFFFFF");
    case 6:
        return rect("-0.9", "0.46072277", "-0.5074798", "0.38750988", back) +
               shown("0.056177348", "0.2879418", "Odd");
    default:
        return rect("-0.9", "0.38750988", "-0.5074798", "0.314297", back) +
               shown("0.056177348", "0.32454824", "Dial");
    }
}

// The colours behind the lines, and half-way to the highlight, as they are when the pulse begins.
constexpr char const * c_backs[c_count][2] = {
    {"0x70506020", "0xB7788028"}, {"0x70505060", "0xB7787848"}, {"0x70605050", "0xB7807840"},
    {"0x70605050", "0xB7807840"}, {"0x70605050", "0xB7807840"}, {"0x70505050", "0xB7787840"},
    {"0xFF000000", "0xFF505018"}, {"0x70605050", "0xB7807840"},
};

std::string others(int first) {
    std::string lines;
    for (int line = first; line < c_count; ++line)
        lines += kind(line, c_backs[line][0], false);
    return lines;
}

class CheatMenuDrawTest : public CheatMenuTest {
protected:
    // Another menu, with the sizes of an empty one.
    static void Renew() {
        CheatMenu::Shutdown();
        CheatMenu::Initialize();
    }

    // Where a label or value stands in a frame, in text units.
    std::string Place(std::string const & text, float dt = 0.0f) {
        std::string const drawn = Drawn(dt);
        std::size_t const end = drawn.find("],\"text\":\"" + text + "\"");
        std::size_t const begin = drawn.rfind('[', end);
        return end == drawn.npos ? "not drawn" : drawn.substr(begin + 1, end - begin - 1);
    }

    // The colour behind the first line.
    std::string Back(float dt) {
        std::string const drawn = Drawn(dt);
        return drawn.substr(drawn.find("0x"), 10);
    }
};

} // namespace

TEST_F(CheatMenuDrawTest, EachKindOfLineSelectedAndNot) {
    Load(c_kinds);
    for (int selected = 0; selected < c_count; ++selected, Menu().NextItem()) {
        std::string expected;
        for (int line = 0; line < c_count; ++line)
            expected += kind(line, c_backs[line][line == selected], line == selected);
        EXPECT_EQ(Drawn(), expected) << selected;
    }
}

TEST_F(CheatMenuDrawTest, AFrameIsSetUpAndClearedBeforeItIsDrawn) {
    LoadLines("");
    std::string const frame = Frame();
    EXPECT_EQ(frame.substr(0, frame.find("{\"call\":\"Draw\"")),
              R"({"call":"GetTextHeight","result":0.0234375}
{"call":"SetAlwaysInFront","frame":"cheatmenu","enable":true}
{"call":"SetAutoClear","frame":"cheatmenu","enable":false}
{"call":"Clear","frame":"cheatmenu"}
)");
    EXPECT_EQ(Frame().find("GetText"), std::string::npos) << "widths are measured once";
    out.str("");
    Menu().Enable(true);
    EXPECT_EQ(out.str(), "");
    Menu().Enable(false);
    Menu().Toggle();
    Menu().Toggle();
    Menu().Toggle();
    Press("l");
    std::string const cleared = "{\"call\":\"Clear\",\"frame\":\"cheatmenu\"}\n";
    EXPECT_EQ(out.str(), cleared + cleared + cleared);
    EXPECT_EQ(Frame(), "");
}

TEST_F(CheatMenuDrawTest, ParentsStayInTheirHighlightAndAnEmptyMenuSaysSo) {
    Load(c_kinds);
    Press("a");
    std::string const child = rect("-0.4974798", "0.9", "-0.2974798", "0.83", "0xB7787848") +
                              shown("0.25716636", "0.067499995", "Empty!");
    EXPECT_EQ(Drawn(), kind(0, "0xFFA0A030", true) + others(1) + child);
}

TEST_F(CheatMenuDrawTest, TheSelectedLinePulses) {
    std::pair<float, char const *> const cases[] = {
        {0.15f, "0xFFA0A030"}, // the crest: all highlight
        {0.15f, "0xB7777749"}, // half of it, and a rounding below
        {0.15f, "0x70505060"}, // the trough: all its own
        {6.1f, "0x93646454"},  // periods are taken off at once
    };
    LoadLines("{ name = 'x', type = Command, command = '' }");
    for (auto const & [dt, back] : cases)
        EXPECT_EQ(Back(dt), back) << dt;
    // What is no time does no harm.
    std::string const back = Back(0.0f);
    for (float const dt :
         {-1.0f, -std::numeric_limits<float>::infinity(), std::numeric_limits<float>::quiet_NaN()})
        EXPECT_EQ(Back(dt), back) << dt;
    EXPECT_EQ(Back(std::numeric_limits<float>::infinity()), "0xB7787848");
}

TEST_F(CheatMenuDrawTest, WidthsAreThoseOfTheWidestLine) {
    std::string const a20(20, 'a'), b20(20, 'b');
    auto const separator = [](std::string const & name) {
        return "{ name = '" + name + "', type = Separator },";
    };
    auto const variable = [](std::string const & name, char const * rest) {
        return "{ name = '" + name + "', type = Variable, get = '0' " + rest + "},";
    };
    std::pair<std::string, char const *> const cases[] = {
        {"", "-0.7"},
        {separator("a"), "-0.7"},
        // the first line counts with the height of an empty menu
        {separator(a20) + separator("b"), "-0.5175"},
        {separator("a") + separator(b20), "-0.5142871"},
        {variable(b20, ""), "-0.47812498"},
        {separator("a") + variable(b20, ""), "-0.47310483"},
        {variable(b20, ", var_type = Float"), "-0.278125"},
        {separator("a") + variable(b20, ", var_type = Float"), "-0.2731048"},
        {separator("a") + variable(b20, ", var_type = 2"), "-0.5142871"},
    };
    for (auto const & [lines, right] : cases) {
        Renew();
        LoadLines(lines);
        std::string const begin =
            R"({"call":"Draw","shape":"Tri2D","frame":"cheatmenu","corners":[[-0.9,0.9],[)";
        EXPECT_TRUE(Drawn().starts_with(begin + right + ",")) << lines << Drawn().substr(0, 100);
    }
    LoadLines(separator("a"));
    EXPECT_NE(Drawn().find("[-0.5142871,"), std::string::npos) << "widths never shrink";
    LoadLines(variable(b20, ", var_type = Float"));
    EXPECT_NE(Drawn().find("[-0.2731048,"), std::string::npos) << "but grow with each load";
}

TEST_F(CheatMenuDrawTest, ChildrenOpenBesideTheirLine) {
    LoadLines("{ name = 'Ra', type = Command, command = '' }, { name = 'Rb', type = Command, command = '' },"
              "{ name = 'Rc', type = SubMenu, SubMenuItems = { { name = 'Ca', type = Command, command = '' },"
              "    { name = 'Cb', type = SubMenu, SubMenuItems = { { name = 'Go', type = Command, command = "
              "'' } } } } }");
    Press("nnrnr");
    Frame(1.0f);
    EXPECT_EQ(Place("Ra"), "0.056177348,0.06830323");
    EXPECT_EQ(Place("Ca"), "0.16117734,0.14151615");
    EXPECT_EQ(Place("Go"), "0.26617733,0.17812258");
}

TEST_F(CheatMenuDrawTest, TheMenuGlidesSoThatTheSelectionStaysInSight) {
    std::string lines;
    for (int i = 1; i <= 19; ++i)
        lines += "{ name = 'L" + std::to_string(i) + "', type = 7 },";
    LoadLines(lines + "{ name = 'L20', type = SubMenu, SubMenuItems = { { name = 'A', type = Separator },"
                      "{ name = 'B', type = Separator }, { name = 'C', type = SubMenu } } }");
    Press("p");
    EXPECT_EQ(Place("L1"), "0.056177348,0.06830323");
    EXPECT_EQ(Place("L1", 0.1f), "0.056177348,0.013845265") << "half way";
    EXPECT_EQ(Place("L20", 0.2f), "0.056177348,0.65490973") << "there at once";
    Menu().Enable(false);
    Menu().UpdateAndDraw(1.0f);
    Menu().Enable(true);
    EXPECT_EQ(Place("L20"), "0.056177348,0.65490973") << "a closed menu stays where it was";
    Press("rpr");
    EXPECT_EQ(Place("Empty!", 1.0f), "0.26590624,0.6525001") << "the lines above count in every menu";

    // To the left only where a child begins too far right.
    for (auto const & [length, place] :
         {std::pair(40, "0.40867734,0.06830323"), std::pair(80, "0.6511773,0.06830323")}) {
        Renew();
        LoadLines("{ name = '" + std::string(static_cast<std::size_t>(length), 'w') +
                  "', type = SubMenu, SubMenuItems = { { name = 'In', type = Command, command = '' } } }");
        Press("r");
        EXPECT_EQ(Place("In", 1.0f), place) << length;
    }
}

TEST_F(CheatMenuDrawTest, ASliderShowsWhereItsValueLies) {
    std::array<char const *, 6> const cases[] = {
        // get, limits, left and right of the knob, x of the text, text
        {"0", "", "-0.77031654", "-0.7543165", "0.13885051", "0.000"},
        {"100", "", "-0.6121564", "-0.59615636", "0.13103801", "100.000"},
        {"-1", "min = -2, max = 2", "-0.7307765", "-0.71477646", "0.13494426", "-1.000"},
        // outside of the limits the knob stays within, and the text tells
        {"150", "", "-0.6121564", "-0.59615636", "0.13103801", "150.000"},
        {"-5", "", "-0.77031654", "-0.7543165", "0.13494426", "-5.000"},
        // what has no place counts as the least
        {"5", "min = 5, max = 5", "-0.77031654", "-0.7543165", "0.13885051", "5.000"},
        {"1/0", "", "-0.77031654", "-0.7543165", "0.14666301", "inf"},
    };
    for (auto const & [get, limits, left, right, x, text] : cases) {
        Renew();
        LoadLines("{ name = 'S', type = Variable, var_type = Float, get = '" + std::string(get) + "', " +
                  limits + " }");
        std::string const end = rect(left, "0.8773955", right, "0.8493916", "0xFFFFFFFF") +
                                shown(x, "0.06830323", text, "0xF0AFFFAF");
        std::string const drawn = Drawn();
        EXPECT_TRUE(drawn.ends_with(end)) << drawn << end;
    }
}

// Everything but the drawing goes on, and the widths are those of texts without size.
TEST_F(CheatMenuDrawTest, WithoutAProxyTheRestWorks) {
    DebugRender::Unregister(&proxy);
    LoadLines("{ name = 'F', type = Variable, get = 'count()', set = 'on = %s' }");
    Run("calls = 0 function count() calls = calls + 1 return true end");
    EXPECT_EQ(Frame(), "");
    EXPECT_EQ(Value("calls"), "1");
    Press("a");
    EXPECT_EQ(Value("on"), "false");
    DebugRender::Register(&proxy);
    EXPECT_TRUE(Drawn().starts_with(rect("-0.9", "0.9", "-0.7", "0.9", "0xB7807840")));
    DebugRender::Unregister(&proxy);
    Press("lb");
    EXPECT_FALSE(Menu().IsEnabled());
}
