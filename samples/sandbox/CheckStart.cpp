#include "samples/sandbox/Checks.h"

void CheckStart(Report & report, StartUp const & start, bool failedOnce) {
    report.Begin("staged loading");
    std::string const expected = failedOnce ? "+tables +inventory +assets !scripts -assets -inventory "
                                              "-tables +tables +inventory +assets +scripts"
                                            : "+tables +inventory +assets +scripts";
    report.Expect(start.GetEvents() == expected, "steps in order: " + start.GetEvents());
    report.Expect(start.GetProgress() == 1.0f, "the bar stands at its end");
    report.Expect(start.WasProgressSteady(), "the bar never went back");
    report.Evidence(start.GetEvents());
    report.Evidence("the bar never went back");
}
