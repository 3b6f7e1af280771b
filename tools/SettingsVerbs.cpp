#include "Cross/Util/SystemConfig.h"
#include "Cross/engine/platform/Options.h"
#include "Cross/engine/scriptconfig/LuaConfig.h"
#include "Cross/engine/scriptconfig/LuaConfigSave.h"
#include "tools/AddVerb.h"
#include "tools/InputFile.h"
#include "tools/Json.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <iomanip>
#include <ostream>

namespace {

struct ExplainArguments : FileArguments {
    Lines options;
};

// The settings of one file and nothing else. They load the "sysconfig.lua" of the working folder when they
// come up, so that is for this moment a folder where this file has that name.
class Settings {
public:
    explicit Settings(std::string const & file) {
        std::filesystem::path const target = std::filesystem::absolute(file);
        std::filesystem::path const before = std::filesystem::current_path();
        std::string folder = (std::filesystem::temp_directory_path() / "crosstool-XXXXXX").string();
        if (!mkdtemp(folder.data()))
            throw std::runtime_error("no temporary folder can be made");
        std::filesystem::create_symlink(target, folder + "/sysconfig.lua");
        std::filesystem::current_path(folder);
        SystemConfig::Initialize();
        std::filesystem::current_path(before);
        std::filesystem::remove_all(folder);
    }

    Settings(Settings const &) = delete;
    Settings & operator=(Settings const &) = delete;

    ~Settings() { SystemConfig::Shutdown(); }

    SystemConfig const & Get() const { return *SystemConfig::Instance(); }
};

// What stands on the command line of the game while it lives.
class CommandLine {
public:
    explicit CommandLine(Lines const & options) {
        std::vector<char const *> arguments{"game"};
        for (std::string const & option : options)
            arguments.push_back(option.c_str());
        Plat::Options::SetCommandLine(static_cast<int>(arguments.size()), arguments.data());
    }

    CommandLine(CommandLine const &) = delete;
    CommandLine & operator=(CommandLine const &) = delete;

    ~CommandLine() { Plat::Options::SetCommandLine(0, nullptr); }
};

struct Setting {
    std::string name;
    std::uint32_t type = 0;
    std::uint32_t fileValue = 0;
    std::uint32_t value = 0;
    unsigned int kilobytes = 0;
};

// The settings as the file has them, by name.
std::vector<Setting> settingsOf(SystemConfig const & config) {
    LuaConfig state("", false);
    config.Save(state);
    state.PushTable("configuration");
    std::vector<Setting> settings(state.CountEntry());
    for (unsigned int i = 0; i < settings.size(); ++i) {
        state.PushTable(i + 1);
        state.GetString("setting", settings[i].name);
        LCGetULong(state, "value", settings[i].fileValue);
        LCGetULong(state, "valueType", settings[i].type);
        state.PopTable();
    }
    std::sort(settings.begin(), settings.end(),
              [](Setting const & left, Setting const & right) { return left.name < right.name; });
    return settings;
}

void applyOptions(SystemConfig const & config, std::vector<Setting> & settings) {
    for (Setting & setting : settings) {
        Dictionary::Key const key = Dictionary::Instance().GetKey(setting.name.c_str());
        setting.value = config.GetSetting(key);
        setting.kilobytes = config.GetEstimatedMemoryUsage(key, static_cast<std::int32_t>(setting.value));
    }
}

char const * kindText(Setting const & setting) { return setting.type == 1 ? "switch" : "number"; }

std::string optionText(std::string const & name) {
    int number = 0;
    if (Plat::Options::Get(name.c_str(), number))
        return std::to_string(number);
    return Plat::Options::Exist(name.c_str()) ? "given" : "-";
}

std::string valueText(std::uint32_t value) {
    return value == SystemConfig::NOT_SET ? "not set" : std::to_string(value);
}

bool runs(std::string const & file, Lines & reasons) {
    ByteStreamProxy const stream = OpenForReading(file, reasons);
    LuaConfig state("", false);
    if (stream && LuaConfigSave::LoadLua(state, *stream))
        return true;
    if (stream)
        reasons.push_back(file + ": is no settings file that runs");
    return false;
}

void printRow(std::ostream & out, std::array<std::string, 6> const & columns) {
    out << std::left << std::setw(32) << columns[0] << std::setw(8) << columns[1] << std::right;
    for (std::size_t i = 2; i < columns.size(); ++i)
        out << std::setw(12) << columns[i];
}

void printSettings(std::vector<Setting> const & settings, std::ostream & out) {
    printRow(out, {"setting", "kind", "file", "option", "effective", "memory"});
    out << '\n';
    for (Setting const & setting : settings) {
        printRow(out, {Quote(setting.name), kindText(setting), valueText(setting.fileValue),
                       optionText(setting.name), valueText(setting.value),
                       std::to_string(setting.kilobytes) + " KB"});
        out << (setting.value != setting.fileValue ? "  differs from the file\n" : "\n");
    }
}

struct Totals {
    std::uint64_t cost, base, driver, overflow; // kilobytes
};

Totals totalsOf(SystemConfig const & config, std::vector<Setting> const & settings) {
    std::uint64_t cost = 0;
    for (Setting const & setting : settings)
        cost += setting.kilobytes;
    return {cost, config.GetEstimatedBaseMemoryUsage(), config.GetEstimatedD3D10MemoryUsage(),
            config.GetAllowableOverflow()};
}

void printTotals(Totals const & totals, std::ostream & out) {
    std::uint64_t const used = totals.base + totals.cost;
    out << "settings: " << totals.cost << " KB\n"
        << "application: " << totals.base << " KB, with the settings " << used << " KB\n"
        << "graphics driver: " << totals.driver << " KB, with all of it " << used + totals.driver << " KB\n"
        << "allowable overflow: " << totals.overflow << " KB, "
        << (totals.cost > totals.overflow ? "less than the settings cost\n" : "enough for the settings\n");
}

void printText(std::vector<Setting> const & settings, Totals const & totals, std::string const & file,
               std::ostream & out) {
    auto const differing = std::count_if(settings.begin(), settings.end(), [](Setting const & setting) {
        return setting.value != setting.fileValue;
    });
    out << "good: " << file << ": " << CountText(settings.size(), "setting", "settings") << ", "
        << CountText(static_cast<std::size_t>(differing), "differs", "differ") << " from the file\n";
    printSettings(settings, out);
    printTotals(totals, out);
}

std::optional<std::uint32_t> knownValue(std::uint32_t value) {
    return value == SystemConfig::NOT_SET ? std::nullopt : std::optional(value);
}

JsonObject settingJson(Setting const & setting) {
    return JsonObject()
        .Add("name", setting.name)
        .Add("kind", kindText(setting))
        .Add("file", knownValue(setting.fileValue))
        .Add("option", optionText(setting.name))
        .Add("effective", knownValue(setting.value))
        .Add("kilobytes", setting.kilobytes);
}

void printJson(std::vector<Setting> const & settings, Totals const & totals, std::string const & file,
               std::ostream & out) {
    std::vector<JsonObject> list;
    for (Setting const & setting : settings)
        list.push_back(settingJson(setting));
    out << JsonObject()
               .Add("verdict", "good")
               .Add("file", file)
               .Add("settings", list)
               .Add("kilobytes", JsonObject()
                                     .Add("settings", totals.cost)
                                     .Add("application", totals.base)
                                     .Add("driver", totals.driver)
                                     .Add("overflow", totals.overflow))
               .Text()
        << '\n';
}

ExitCode explain(ExplainArguments const & arguments, Output const & output) {
    Lines reasons;
    if (!runs(arguments.file, reasons))
        return Fail(output, reasons);
    Settings const held(arguments.file);
    SystemConfig const & config = held.Get();
    std::vector<Setting> settings = settingsOf(config);
    CommandLine const line(arguments.options);
    applyOptions(config, settings);
    (arguments.asJson ? printJson : printText)(settings, totalsOf(config, settings), arguments.file,
                                               output.out);
    return exitGood;
}

} // namespace

void AddSettingsVerbs(CLI::App & app, Job & job) {
    CLI::App & settings = AddGroup(app, "settings", "System settings");
    CLI::App & verb =
        AddVerb(settings, "explain",
                "Print per setting the value of the file, the option of the game, what counts and its cost",
                "sysconfig.lua -tanks=12");
    auto const arguments = SetWork(verb, job, explain);
    AddFile(verb, "FILE", arguments->file,
            "A settings file, such as sysconfig.lua; options of the game may follow");
    AddJson(verb, arguments->asJson);
    verb.set_help_flag("--help", "Print this help message and exit"); // -h may begin an option of the game
    verb.prefix_command();
    verb.parse_complete_callback([&verb, arguments] { arguments->options = verb.remaining(); });
}
