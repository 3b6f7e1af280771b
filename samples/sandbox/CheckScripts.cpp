#include "samples/sandbox/Checks.h"

#include "samples/sandbox/Console.h"

void CheckScripts(Report & report) {
    report.Begin("scripts");

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
