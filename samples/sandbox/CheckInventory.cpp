#include "samples/sandbox/Checks.h"

#include "Cross/Util/InvUtil.h"
#include "Cross/engine/core/Types.h"
#include "Cross/engine/diagnostics/Warning.h"

#include <algorithm>

namespace {

std::vector<std::string> s_warnings;

void keepWarning(char const * const * lines, unsigned int, std::uint32_t) { s_warnings.push_back(lines[0]); }

// Adds a resource of that name that nobody asked for.
void addTwin(char const * name, Inv::ResourceTypeInfo const & kind) {
    auto * const twin = new Inv::Resource;
    twin->SetName(name);
    inventory::Front::AddResource(twin, &kind);
    Inv::Resource::Release(twin);
}

bool wasWarned(char const * words) {
    return std::any_of(s_warnings.begin(), s_warnings.end(),
                       [words](std::string const & text) { return text.find(words) != std::string::npos; });
}

void checkWarnings(Report & report, Game & game) {
    constexpr std::uint32_t c_category = 0x494E56; // INV
    dbWarningHandlerAdd(c_category, &keepWarning);
    addTwin("units/LIGHT_TANK", game.units);
    addTwin("abhjbwag", game.weapons); // these two names have one hash
    addTwin("wyumcchu", game.weapons);
    dbWarningHandlerRmv(c_category, &keepWarning);
    report.Expect(s_warnings.size() == 2 && wasWarned("Duplicate Unit resource 'units\\light_tank'") &&
                      wasWarned("Key collision with 'wyumcchu'"),
                  "a duplicate and a collision are warned of, not " + std::to_string(s_warnings.size()));
    report.Evidence("a duplicate and a collision were warned of");
    inventory::Front::Flush();
}

void checkNames(Report & report, Game const & game) {
    char name[c_maxPath];
    InvUtil::TranslateResourceName(name, "DATA:Units/Battle_Tank.attr", true);
    inventory::Handle<Unit> const tank = game.units.Find("units/battle_tank");
    report.Expect(tank && inventory::Front::GetName(tank.GetResource()) == std::string(name),
                  std::string("a file has the name of its resource, not ") + name);
}

} // namespace

void CheckInventory(Report & report, Game & game) {
    report.Begin(Subsystem::Inventory);
    LoadJournal const & journal = game.journal;
    report.Expect(journal.loads.size() >= 30,
                  "at least 30 assets, not " + std::to_string(journal.loads.size()));
    for (auto const & [asset, count] : journal.loads)
        report.Expect(count == 1, asset + " is loaded once, not " + std::to_string(count) + " times");
    report.Expect(journal.loadsAfterPostLoad == 0, "every PostLoad comes after all loads");
    report.Expect(journal.postLoads == journal.loads.size(), "each asset is post-loaded once");
    for (inventory::Handle<Unit> const & unit : game.army)
        for (inventory::Handle<Weapon> const & weapon : unit->weapons)
            report.Expect(weapon.Get() && unit->reach >= weapon->range,
                          "weapons are there when their unit is post-loaded");
    report.Evidence(std::to_string(journal.loads.size()) +
                    " assets of 2 kinds loaded once each, in batches of " + game.pumpCounts + " left");
    report.Evidence("each PostLoad came after all loads");
    checkNames(report, game);
    checkWarnings(report, game);
}

void CheckNothingLeft(Report & report) {
    report.Begin(Subsystem::Inventory);
    inventory::Front::Flush();
    Inv::DumpInfo const dump = inventory::Front::Dump();
    std::size_t left = 0;
    for (Inv::DumpInfo::BinRecord const & bin : dump.bins)
        left += bin.resources.size();
    report.Expect(left == 0, "the dump shows nothing left, not " + std::to_string(left));
    report.Evidence("nothing left in " + std::to_string(dump.bins.size()) + " bins when nobody held it");
}
