#include "samples/sandbox/Checks.h"

void CheckLoading(Report & report, LoadScreen const & load, bool failedOnce) {
    report.Begin(Subsystem::Loading);
    std::string const whole = "+tables +art +army +assets +scripts";
    std::string const undone = "+tables +art +army +assets !scripts -assets -army -art -tables ";
    std::string const expected = failedOnce ? undone + whole : whole;
    report.Expect(load.GetEvents() == expected, "steps in order: " + load.GetEvents());
    report.Expect(load.GetProgress() == 1.0f, "the bar stands at its end");
    report.Expect(load.WasProgressSteady(), "the bar never went back");
    report.Evidence("five steps, with a bar that never went back: " + load.GetEvents());
}

void CheckUnloading(Report & report, LoadScreen const & load) {
    report.Begin(Subsystem::Loading);
    std::string const undone = " -scripts -assets -army -art -tables";
    report.Expect(load.GetEvents().ends_with("+scripts" + undone), "undone in reverse: " + load.GetEvents());
    report.Evidence("undone in reverse:" + undone);
}
