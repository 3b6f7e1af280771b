#include "samples/sandbox/Checks.h"

#include "Cross/engine/core/Text.h"
#include "Cross/engine/filesystem/FilePath.h"
#include "samples/sandbox/BuildTable.h"
#include "samples/sandbox/Files.h"

namespace {

// The script with another speed in it.
std::string withSpeed(std::string const & script, std::string const & speed) {
    std::size_t const begin = script.find("speed = ");
    std::size_t const end = script.find_first_of(" \n", begin + 8);
    return script.substr(0, begin) + "speed = " + speed + script.substr(end);
}

std::string shortest(float number) {
    std::string text;
    text::Printf(text, "%g", static_cast<double>(number));
    return text;
}

} // namespace

void CheckReload(Report & report, Game & game) {
    report.Begin(Subsystem::Inventory);
    Asset const asset{"units", "light_tank"};
    inventory::Handle<Unit> const tank = game.units.Find("units/light_tank");
    if (!report.Expect(tank && tank.Get(), "the tank is loaded"))
        return;
    FilePath::PumpFileChanges(); // what the start wrote is no news
    float const before = tank->speed;
    float const reach = tank->reach;
    unsigned int const reloads = game.journal.reloads;

    std::string error;
    std::string const edited = withSpeed(ReadWholeFile(asset.ScriptPath().c_str()), "99.5");
    report.Expect(BuildTable(asset, edited, error), error);
    report.Expect(tank->speed == before, "nothing changes before the pump");
    FilePath::PumpFileChanges();
    report.Expect(tank->speed == 99.5f && game.journal.reloads == reloads + 1,
                  "one reload brings the new speed");
    report.Evidence("an edited file changed the speed behind the same handle from " + shortest(before) +
                    " to " + shortest(tank->speed));

    report.Expect(BuildTable(asset, error), error);
    FilePath::PumpFileChanges();
    report.Expect(tank->speed == before && tank->reach == reach,
                  "the file as it was brings the old tank back");
    report.Evidence("the file as it was brought the old speed back");
}
