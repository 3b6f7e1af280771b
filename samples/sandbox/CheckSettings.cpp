// System settings: file, command line, script and listener in turn, and back from a saved file.

#include "samples/sandbox/Checks.h"

#include "Cross/Util/SystemConfig.h"
#include "Cross/engine/filesystem/ByteStream.h"
#include "Cross/engine/filesystem/FilePath.h"
#include "Cross/engine/platform/Options.h"
#include "samples/sandbox/Console.h"
#include "samples/sandbox/Files.h"

#include <map>

namespace {

constexpr char const * c_savePath = "SCRATCH:settings.lua";
constexpr char const * c_names[] = {"shadows", "reflections",   "vsync",
                                    "tanks",   "textureDetail", "viewDistance"};

Dictionary::Key keyOf(char const * name) { return Dictionary::Instance().GetKey(name); }

std::map<std::string, unsigned int> currentValues() {
    std::map<std::string, unsigned int> values;
    for (char const * const name : c_names)
        values[name] = SystemConfig::Instance()->GetSetting(keyOf(name));
    return values;
}

// Kilobytes that the present values of all settings cost.
unsigned int estimatedMemory() {
    SystemConfig const & config = *SystemConfig::Instance();
    unsigned int sum = 0;
    for (auto const & [name, value] : currentValues())
        sum += config.GetEstimatedMemoryUsage(keyOf(name.c_str()), static_cast<std::int32_t>(value));
    return sum;
}

void checkCommandLine(Report & report, Game const & game) {
    int option = 0;
    bool const isGiven = Plat::Options::Get("tanks", option);
    unsigned int const expected = isGiven ? static_cast<unsigned int>(option) : 8;
    report.Expect(game.world.GetUnits().size() == expected, "the world has " + std::to_string(expected) +
                                                                " tanks, not " +
                                                                std::to_string(game.world.GetUnits().size()));
    report.Evidence(std::to_string(expected) + " tanks from " +
                    (isGiven ? "the command line" : "sysconfig.lua"));
}

void checkMemory(Report & report) {
    SystemConfig const & config = *SystemConfig::Instance();
    unsigned int const cost = estimatedMemory();
    report.Expect(config.GetEstimatedBaseMemoryUsage() == 180 * 1024, "the base memory is that of the file");
    report.Expect(cost > 0, "the settings cost memory");
    report.Evidence("the settings cost " + std::to_string(cost) + " KB of " +
                    std::to_string(config.GetAllowableOverflow()) + " KB allowable overflow");
}

void checkScript(Report & report, Game const & game) {
    ConsoleAnswer const answer = RunConsoleLine("sysconfig_setsetting('tanks', 25)");
    report.Expect(answer.good, answer.text);
    report.Expect(game.world.GetUnits().size() == 25, "a script spawns units through the listener");
    report.Expect(!RunConsoleLine("sysconfig_setsetting('tanks', 2.5)").good &&
                      game.world.GetUnits().size() == 25,
                  "half a tank is refused");
    report.Evidence("a script made 25 tanks");
}

// Saves, lets an "editor" change one value in the file, and loads it again.
void checkSavedFile(Report & report, Game const & game) {
    std::map<std::string, unsigned int> expected = currentValues();
    report.Expect(SystemConfig::Instance()->Save(c_savePath), "the settings are saved");
    std::string text = ReadWholeFile(c_savePath);
    std::size_t const value = text.find("25");
    if (!report.Expect(value != std::string::npos, "the saved file holds the 25 tanks"))
        return;
    SystemConfig::Instance()->SetSetting({{keyOf("tanks"), 1}, {keyOf("shadows"), 0}});
    report.Expect(SystemConfig::Instance()->Load(c_savePath, false) && currentValues() == expected,
                  "the saved file brings every value back");

    text.replace(value, 2, "31");
    report.Expect(WriteWholeFile(c_savePath, text), "the edited file is written");
    expected["tanks"] = 31;
    report.Expect(SystemConfig::Instance()->Load(c_savePath, false) && currentValues() == expected,
                  "the edited file brings exactly its change");
    report.Expect(game.world.GetUnits().size() == 31, "the listener hears of a load");
    report.Evidence("settings were saved, edited by hand and loaded with exactly that change");
}

} // namespace

void CheckSettings(Report & report, Game const & game) {
    report.Begin(Subsystem::Configuration);
    checkCommandLine(report, game);
    checkMemory(report);
    checkScript(report, game);
    checkSavedFile(report, game);
}
