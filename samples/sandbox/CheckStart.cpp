#include "samples/sandbox/Checks.h"

void CheckStart(Report & report, StartUp const & start, bool failedOnce) {
    report.Begin("staged loading");
    std::string const whole = "+settings +tables +art +inventory +assets +scripts";
    std::string const undone = "+settings +tables +art +inventory +assets !scripts "
                               "-assets -inventory -art -tables -settings ";
    std::string const expected = failedOnce ? undone + whole : whole;
    report.Expect(start.GetEvents() == expected, "steps in order: " + start.GetEvents());
    report.Expect(start.GetProgress() == 1.0f, "the bar stands at its end");
    report.Expect(start.WasProgressSteady(), "the bar never went back");
    report.Evidence(start.GetEvents());
    report.Evidence("the bar never went back");
}
