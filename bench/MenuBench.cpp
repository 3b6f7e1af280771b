// A frame of an open menu beside what its scripts cost alone.

#include "Cross/Util/CheatMenu.h"
#include "Cross/Util/DebugRender.h"
#include "Cross/engine/scriptconfig/GlobalLua.h"
#include "Cross/engine/scriptconfig/LuaConfig.h"
#include "bench/Ratio.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace {

constexpr int c_lines = 40;
constexpr int c_variables = 10;

void demand(bool holds, char const * what) {
    if (holds)
        return;
    std::fprintf(stderr, "%s\n", what);
    std::exit(2);
}

// A renderer that does nothing.
class IdleProxy : public DebugRenderProxy {
public:
    void Display() override {}

    void OnFrame() override {}

    void OnSimulate() override {}

    void List(std::vector<char const *> &) override {}

    void SetDisplay(char const *, bool) override {}

    bool GetDisplay(char const *) override { return false; }

    void SetAutoClear(char const *, bool) override {}

    bool GetAutoClear(char const *) override { return false; }

    void SetAlwaysInFront(char const *, bool) override {}

    bool GetAlwaysInFront(char const *) override { return false; }

    void Clear(char const *) override {}

    float GetTextHeight() override { return 0.02f; }

    float GetTextWidth(char const *) override { return 0.1f; }

    void Draw(DebugRender::Plane3D const &, char const *) override {}

    void Draw(DebugRender::Mesh const &, char const *) override {}

    void Draw(DebugRender::Text3D const &, char const *) override {}

    void Draw(DebugRender::Text2D const &, char const *) override { ++texts; }

    void Draw(DebugRender::Sphere const &, char const *) override {}

    void Draw(DebugRender::Circle3D const &, char const *) override {}

    void Draw(DebugRender::Circle const &, char const *) override {}

    void Draw(DebugRender::Cube const &, char const *) override {}

    void Draw(DebugRender::Tri const &, char const *) override {}

    void Draw(DebugRender::Line const &, char const *) override {}

    void Draw(DebugRender::Point const &, char const *) override {}

    void Draw(DebugRender::OvalOutline const &, char const *) override {}

    void Draw(DebugRender::RectOutline const &, char const *) override {}

    void Draw(DebugRender::Tri2D const &, char const *) override {}

    void Draw(DebugRender::Line2D const &, char const *) override {}

    void Draw(DebugRender::Point2D const &, char const *) override {}

    unsigned int texts = 0;
};

bool isFloat(int variable) { return variable % 2 == 0; }

// What a game's scripts have: a function for each value.
std::string getOf(int variable) { return "game_get_setting_" + std::to_string(variable) + "()"; }

void defineGets() {
    for (int i = 0; i < c_variables; ++i) {
        std::string const define =
            "function " + getOf(i) + " return " + (isFloat(i) ? "12.5" : "true") + " end";
        demand(GlobalLua::GetState()->RunString(define.c_str(), true), "a function cannot be defined");
    }
}

std::string menuSource() {
    std::string source = "SubMenuItems = {\n";
    for (int i = 0; i < c_variables; ++i)
        source += "{ name = 'variable " + std::to_string(i) +
                  "', type = Variable, var_type = " + (isFloat(i) ? "Float" : "Boolean") + ", get = '" +
                  getOf(i) + "' },\n";
    for (int i = c_variables; i < c_lines; ++i)
        source += "{ name = 'command " + std::to_string(i) + "', type = Command, command = '' },\n";
    return source + "}\n";
}

void loadMenu() {
    std::string const path = (std::filesystem::temp_directory_path() / "crossutil-bench-menu.lua").string();
    std::ofstream(path) << menuSource();
    CheatMenu::Initialize();
    CheatMenu::Instance()->LoadCheatMenu(path.c_str(), true);
    CheatMenu::Instance()->Enable(true);
    std::filesystem::remove(path);
}

void drawMenu(benchmark::State & state) {
    IdleProxy proxy;
    DebugRender::Register(&proxy);
    CheatMenu::RegisterLua(*GlobalLua::GetState());
    defineGets();
    loadMenu();
    for (auto _ : state) {
        proxy.texts = 0;
        CheatMenu::Instance()->UpdateAndDraw(0.016f);
        demand(proxy.texts == c_lines + c_variables / 2, "lines are missing");
    }
    CheatMenu::Shutdown();
    DebugRender::Unregister(&proxy);
}

void runGets(benchmark::State & state) {
    LuaConfig & config = *GlobalLua::GetState();
    defineGets();
    std::vector<std::string> statements;
    for (int i = 0; i < c_variables; ++i)
        statements.push_back("g_cheat_value_that_nobody_will_ever_use=" + getOf(i));
    for (auto _ : state)
        for (int i = 0; i < c_variables; ++i) {
            demand(config.RunString(statements[static_cast<std::size_t>(i)].c_str(), false), "a get fails");
            double number = 0.0;
            bool flag = false;
            demand(isFloat(i) ? config.GetNumber("g_cheat_value_that_nobody_will_ever_use", number)
                              : config.GetBoolean("g_cheat_value_that_nobody_will_ever_use", flag),
                   "a value is missing");
        }
}

} // namespace

int main(int argc, char ** argv) {
    bench::AddPair("a frame of 40 lines, 10 of them variables, beside their get statements", 3.0, drawMenu,
                   runGets);
    return bench::Run(argc, argv);
}
