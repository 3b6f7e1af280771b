#include "samples/sandbox/Checks.h"

#include "Cross/Util/lua/LuaLibNames.h"
#include "Cross/engine/scriptconfig/LuaLibMan.h"
#include "samples/sandbox/Console.h"

namespace {

// The libraries that entered themselves when the library was loaded, in the order of its static objects.
void checkLibraries(Report & report) {
    std::vector<std::string> names;
    LuaLibMan::VisitLibraries([&](char const * name, LuaLibrary &) { names.push_back(name); });
    std::vector<std::string> const expected = {LUALIB_RENDERSTATS, LUALIB_DEBUGRENDER,  LUALIB_INVENTORY,
                                               LUALIB_STATGRAPH,   LUALIB_SYSTEMCONFIG, LUALIB_WARNING};
    report.Expect(names == expected, "the script libraries are there, in their order");
    report.Evidence(std::to_string(names.size()) + " script libraries entered themselves");
}

} // namespace

void CheckScripts(Report & report) {
    report.Begin(Subsystem::Engine);
    checkLibraries(report);

    struct Case {
        char const * line;
        bool good;
        char const * answer;
    };

    Case const cases[] = {
        {"1 + 1, 'two'", true, "2\ttwo"},
        {"hello()", true, "Hello, commander"},
        {"inv_dump()", true, ""},
        {"inv_dump(1)", false,
         "console:1: Invalid number of parameters (expected=0, received=1) in function inv_dump"},
        {"nobody()", false, "console:1: attempt to call global 'nobody' (a nil value)"},
    };
    for (Case const & row : cases) {
        ConsoleAnswer const answer = RunConsoleLine(row.line);
        report.Expect(answer.good == row.good && answer.text == row.answer,
                      std::string(row.line) + " gives " + answer.text);
    }
    report.Evidence("the console gave results, ran inv_dump() and told 2 errors");
}
