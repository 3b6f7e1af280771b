// A designer walks the menu of the running game: what the lines change is changed in the game.

#include "samples/sandbox/Checks.h"

#include "Cross/Util/CheatMenu.h"
#include "Cross/Util/StatGraph.h"
#include "samples/debugdraw/RecordingProxy.h"
#include "samples/sandbox/Console.h"
#include "samples/sandbox/Files.h"
#include "samples/sandbox/GameKeys.h"
#include "samples/sandbox/GameScripts.h"
#include "samples/sandbox/ProxySwap.h"
#include "samples/sandbox/StepClock.h"

#include <sstream>

namespace {

constexpr char const * c_menuFile = "SCRATCH:menu.lua";

// A running game with its menu and what was drawn of it.
class Session {
public:
    explicit Session(Game & game) : loop(game), scripts(loop) {}

    Session(Session const &) = delete;
    Session & operator=(Session const &) = delete;

    ~Session() { CheatMenu::Instance()->Enable(false); }

    // Presses keys, with a frame behind each, and gives what the last frame drew.
    std::string Press(std::string const & keys) {
        std::istringstream stream(keys);
        for (std::string key; stream >> key; RunFrame())
            PressKey(loop, key.c_str());
        return drawn.str();
    }

    void RunFrame() {
        drawn.str("");
        loop.RunFrame();
    }

private:
    StepClock clock;
    GameLoop loop;
    GameScripts scripts;
    std::ostringstream drawn;
    RecordingProxy recorder{drawn};
    ProxySwap swap{&recorder};
};

bool shows(std::string const & drawn, std::string const & text) {
    return drawn.find("\"text\":\"" + text + "\"") != std::string::npos;
}

void checkValues(Report & report, Game const & game, Session & session) {
    report.Expect(!shows(session.Press("tab"), "Units"), "a closed menu shows nothing");
    report.Expect(shows(session.Press("f1"), "Nothing in here"), "F1 shows the menu");
    report.Expect(shows(session.Press("right"), "Show bound volume"), "a submenu opens");
    session.Press("right right");
    report.Expect(game.world.GetUnits().size() == 16, "two steps of the slider spawn 8 tanks");
    session.Press("left");
    report.Expect(game.world.GetUnits().size() == 12, "a step back takes 4 away");
    session.Press("backspace down down return return");
    report.Expect(StatGraph::GetVisible(), "a switch turns the graphs on");
    session.Press("return");
    report.Expect(!StatGraph::GetVisible(), "and off");
    report.Evidence("keys walked the menu, a slider spawned tanks, a switch turned graphs on and off");
}

void checkReload(Report & report, std::string text, Session & session) {
    std::size_t const place = text.find("\"Units\"");
    if (!report.Expect(place != std::string::npos, "the menu has a line Units"))
        return;
    report.Expect(WriteWholeFile(c_menuFile, text.replace(place, 7, "\"Army\"")), "the menu file is saved");
    session.RunFrame();
    // Back to the first line, where the game will open its menu.
    report.Expect(shows(session.Press("up up"), "Army"), "a saved menu file is loaded again");
    report.Evidence("an edited menu file came in while it was open");
}

} // namespace

void CheckMenu(Report & report, Game & game, char const * menuFile) {
    report.Begin(Subsystem::Menu);
    std::string const text = ReadWholeFile("DATA:menu.lua");
    report.Expect(WriteWholeFile(c_menuFile, text), "the menu file is copied");
    game.menu->Load(c_menuFile);
    Session session(game);
    report.Expect(RunConsoleLine("set_tanks(8)").good, "the game begins with 8 tanks");
    checkValues(report, game, session);
    checkReload(report, text, session);
    game.menu->Load(menuFile);
}
