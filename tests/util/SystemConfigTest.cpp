#include "Cross/Util/SystemConfig.h"

#include "Cross/engine/filesystem/FileStream.h"
#include "Cross/engine/platform/Options.h"
#include "Cross/engine/scriptconfig/LuaConfig.h"
#include "tests/support/AliasedFolder.h"
#include "tests/support/TraceCapture.h"

#include <gtest/gtest.h>

#include <functional>
#include <map>

namespace {

unsigned int const c_notSet = SystemConfig::NOT_SET;

Dictionary::Key key(char const * name) { return Dictionary::Instance().GetKey(name); }

using Saved = std::map<std::string, std::string>;

// The settings of a file that was saved, as "value/valueType" by name.
Saved savedIn(std::string const & script) {
    LuaConfig state("", false);
    std::uint32_t version = 0;
    EXPECT_TRUE(state.RunString(script.c_str(), true) && LCGetULong(state, "version", version)) << script;
    EXPECT_EQ(version, 1007u);
    state.PushTable("configuration");
    Saved saved;
    for (unsigned int i = 1; i <= state.CountEntry(); ++i) {
        std::string name;
        std::uint32_t value = 0, valueType = 0;
        state.PushTable(i);
        EXPECT_TRUE(state.GetString("setting", name) && LCGetULong(state, "value", value) &&
                    LCGetULong(state, "valueType", valueType));
        saved[name] = std::to_string(value) + "/" + std::to_string(valueType);
        state.PopTable();
    }
    return saved;
}

// What stands on the command line while it lives.
class CommandLine {
public:
    explicit CommandLine(std::vector<char const *> arguments) {
        arguments.insert(arguments.begin(), "program");
        Plat::Options::SetCommandLine(static_cast<int>(arguments.size()), arguments.data());
    }

    ~CommandLine() { Plat::Options::SetCommandLine(0, nullptr); }
};

// Notes what it hears as "name old new", then acts.
class Listener : public SystemConfig::Callback {
public:
    void OnChanged(Dictionary::Key const & changed, unsigned int oldValue, unsigned int newValue) override {
        heard += Dictionary::Instance().GetString(changed);
        for (unsigned int const value : {oldValue, newValue})
            heard += value == c_notSet ? " -" : " " + std::to_string(value);
        heard += ";";
        if (act)
            act();
    }

    std::string heard;
    std::function<void()> act;
};

// Settings that begin with those of a script; missing a default file is traced and no concern here.
class SystemConfigTest : public testing::Test {
protected:
    SystemConfigTest() {
        SystemConfig::Initialize();
        config = SystemConfig::Instance();
        Run("configuration = {"
            "  { setting = 'Tanks', value = 3 },"
            "  { setting = 'shadows', value = 0, valueType = 1, memoryUsed = { 0, 1.5 } },"
            "}");
    }

    ~SystemConfigTest() override { SystemConfig::Shutdown(); }

    // Runs a script in a state of its own and loads that.
    bool Run(char const * script, bool ignoreVersion = true) {
        LuaConfig state("", false);
        EXPECT_TRUE(state.RunString(script, true)) << script;
        state.SetNumber("of the globals", 0);
        bool const loaded = config->Load(state, ignoreVersion);
        EXPECT_EQ(state.GetType("of the globals"), LuaConfig::LT_NUMBER) << "the cursor is back";
        return loaded;
    }

    unsigned int Get(char const * name) const { return config->GetSetting(key(name)); }

    TraceCapture trace;
    SystemConfig * config = nullptr;
};

} // namespace

TEST_F(SystemConfigTest, TheCommandLineBeatsTheFileOnce) {
    CommandLine const line({"-TANKS=7", "--shadows", "-speed=-1", "-other"});
    Run("configuration = { { setting = 'speed', value = 1 }, { setting = 'other', value = 2 } }");
    EXPECT_EQ(Get("tanks"), 7u);
    EXPECT_EQ(Get("shadows"), 1u) << "a bare option turns a switch on";
    EXPECT_EQ(Get("speed"), 0xFFFFFFFFu) << "numbers are signed there";
    EXPECT_EQ(Get("other"), 2u) << "a bare option is nothing to a number";
    CommandLine const later({"-tanks=8"});
    EXPECT_EQ(Get("tanks"), 7u) << "it is looked at once";
    Run("configuration = { { setting = 'tanks', value = 4, valueType = 1 } }");
    EXPECT_EQ(Get("tanks"), 4u) << "a load does not ask again";
}

TEST_F(SystemConfigTest, AnExplicitValueStays) {
    CommandLine const line({"-tanks=7", "-fresh=9"});
    config->SetSetting(key("Tanks"), 5);
    config->SetSetting(key("fresh"), 6);
    EXPECT_EQ(Get("tanks"), 5u);
    EXPECT_EQ(Get("fresh"), 6u);
    EXPECT_EQ(Get("never set"), c_notSet);
    EXPECT_FALSE(config->InitWithDefault(key("never set"), 1));
    EXPECT_EQ(Get("never set"), c_notSet);
}

TEST_F(SystemConfigTest, ANewDefaultAsksTheCommandLineAgain) {
    Listener listener;
    config->RegisterCallback(&listener, {});
    config->SetSetting(key("shadows"), 0);
    listener.heard.clear();
    EXPECT_TRUE(config->InitWithDefault(key("tanks"), 20));
    EXPECT_EQ(Get("tanks"), 20u);
    {
        CommandLine const line({"-tanks=7", "-shadows"});
        EXPECT_TRUE(config->InitWithDefault(key("tanks"), 30));
        EXPECT_TRUE(config->InitWithDefault(key("shadows"), 0));
    }
    CommandLine const line({"-tanks=8"});
    EXPECT_EQ(Get("tanks"), 8u) << "the next read asks once more";
    EXPECT_EQ(Get("shadows"), 1u);
    EXPECT_EQ(listener.heard, "");
}

TEST_F(SystemConfigTest, ListenersHearOfTheirSettings) {
    Listener all, some;
    EXPECT_EQ(config->RegisterCallback(nullptr, {}), c_notSet);
    EXPECT_EQ(config->RegisterCallback(&all, {}), 1u);
    EXPECT_EQ(config->RegisterCallback(&some, {key("tanks"), key("fresh")}), 2u);
    config->SetSetting(key("tanks"), 3);
    config->SetSetting(key("shadows"), 1);
    config->SetSetting(key("fresh"), 8);
    EXPECT_EQ(all.heard, "tanks 3 3;shadows 0 1;fresh - 8;");
    EXPECT_EQ(some.heard, "tanks 3 3;fresh - 8;");

    config->UnregisterCallback(1);
    config->UnregisterCallback(1);
    config->UnregisterCallback(c_notSet);
    config->UnregisterCallback(config->RegisterCallback(&all, {}));
    EXPECT_EQ(config->RegisterCallback(&all, {key("none of these")}), 4u) << "numbers are not used again";
    all.heard = some.heard = "";
    EXPECT_TRUE(Run("configuration = { { setting = 'fresh', value = 1 } }"));
    EXPECT_EQ(all.heard, " - -;") << "a load is told to all, once";
    EXPECT_EQ(some.heard, " - -;");
}

TEST_F(SystemConfigTest, AListIsStoredBeforeItIsTold) {
    Listener listener;
    listener.act = [&] { listener.heard += "(" + std::to_string(Get("b")) + ")"; };
    config->RegisterCallback(&listener, {key("a"), key("b")});
    config->SetSetting({{key("a"), 1}, {key("b"), 2}, {key("a"), 3}, {key("shadows"), 9}});
    EXPECT_EQ(listener.heard, "a - 1;(2)b - 2;(2)a 1 3;(2)");
    EXPECT_EQ(Get("a"), 3u);
}

TEST_F(SystemConfigTest, ListenersMayRegisterUnregisterAndSet) {
    Listener first, second, third, late;
    unsigned int const firstID = config->RegisterCallback(&first, {});
    unsigned int const secondID = config->RegisterCallback(&second, {});
    config->RegisterCallback(&third, {});
    first.act = [&] {
        config->UnregisterCallback(firstID);
        config->UnregisterCallback(secondID);
        config->RegisterCallback(&late, {});
        config->SetSetting(key("tanks"), 50);
    };
    config->SetSetting(key("tanks"), 5);
    EXPECT_EQ(first.heard, "tanks 3 5;");
    EXPECT_EQ(second.heard, "") << "it was gone before its turn";
    EXPECT_EQ(third.heard, "tanks 5 50;tanks 3 5;");
    EXPECT_EQ(late.heard, "tanks 5 50;") << "it came after the first change";
}

TEST_F(SystemConfigTest, MemoryIsEstimatedInKilobytes) {
    EXPECT_EQ(config->GetEstimatedBaseMemoryUsage(), 512000u);
    EXPECT_EQ(config->GetEstimatedD3D10MemoryUsage(), 32768u);
    EXPECT_EQ(config->GetAllowableOverflow(), 131072u);
    Run("applicationBaseMemory = 100  d3d10AdditionalMemory = -1  allowableVirtualMemoryUsage = 1e30");
    EXPECT_EQ(config->GetEstimatedBaseMemoryUsage(), 102400u);
    EXPECT_EQ(config->GetEstimatedD3D10MemoryUsage(), 0u);
    EXPECT_EQ(config->GetAllowableOverflow(), 0xFFFFFFFFu);

    auto const cost = [this](char const * name, std::int32_t index) {
        return config->GetEstimatedMemoryUsage(key(name), index);
    };
    EXPECT_EQ(cost("shadows", 1), 1536u);
    EXPECT_EQ(cost("shadows", 2) + cost("shadows", -1) + cost("tanks", 0) + cost("none", 0), 0u);
    Run("configuration = { { setting = 'shadows', value = 1, memoryUsed = {} } }");
    EXPECT_EQ(cost("shadows", 1), 1536u) << "an empty list replaces nothing";
    Run("configuration = { { setting = 'shadows', value = 1, memoryUsed = { 10, 20.0009, nil, 40 } } }");
    EXPECT_EQ(cost("shadows", 1), 20480u) << "what is less than a kilobyte is cut";
    EXPECT_EQ(cost("shadows", 2) + cost("shadows", 3), 0u) << "a hole ends the list";
}

TEST_F(SystemConfigTest, VersionsDecide) {
    Listener listener;
    config->RegisterCallback(&listener, {});
    for (auto const & [version, loads] : {std::pair<char const *, bool>{"", false},
                                          {"version = '1007'", false},
                                          {"version = 1006", false},
                                          {"version = 1006.9", false},
                                          {"version = 4294967296", false},
                                          {"version = 1007", true},
                                          {"version = 1008.5", true}}) {
        std::string const script = std::string(version) +
                                   " applicationBaseMemory = 1"
                                   " configuration = { { setting = 'tanks', value = 77 } }";
        EXPECT_EQ(Run(script.c_str(), false), loads) << version;
        EXPECT_EQ(Get("tanks"), loads ? 77u : 3u) << version;
        EXPECT_EQ(config->GetEstimatedBaseMemoryUsage(), loads ? 1024u : 512000u) << version;
        EXPECT_EQ(listener.heard.empty(), !loads) << version;
    }
}

TEST_F(SystemConfigTest, BadEntriesAreToldOrSkipped) {
    trace.lines.clear();
    std::string const longName(70, 'n');
    std::string const script = "configuration = {"
                               "  { value = 1 },"
                               "  { setting = 'no value', value = 'x' },"
                               "  { setting = 'negative', value = -1 },"
                               "  { setting = 'too large', value = 4294967296 },"
                               "  { setting = 'cut', value = 2.9, valueType = 'x' },"
                               "  { setting = '" +
                               longName +
                               "', value = 4294967295 },"
                               "  3,"
                               "  { setting = 'behind', value = 1 },"
                               "}";
    EXPECT_TRUE(Run(script.c_str()));
    EXPECT_EQ(Get("cut"), 2u);
    EXPECT_EQ(Get("negative"), c_notSet);
    EXPECT_EQ(Get("behind"), c_notSet) << "what is no table ends the walk";
    EXPECT_TRUE(config->InitWithDefault(key(longName.substr(0, 63).c_str()), 0));
    EXPECT_FALSE(config->InitWithDefault(key(longName.substr(0, 64).c_str()), 0));
    ASSERT_EQ(trace.lines.size(), 4u);
    EXPECT_NE(trace.lines[0].find("SYSTEMCONFIG -- 'setting' not found in configuration table."),
              std::string::npos);
    for (std::size_t i = 1; i < 4; ++i)
        EXPECT_NE(trace.lines[i].find("SYSTEMCONFIG -- 'value' not found in configuration table."),
                  std::string::npos);
    EXPECT_TRUE(Run("")) << "no table is an empty one";
    EXPECT_TRUE(Run("configuration = 3"));
}

TEST_F(SystemConfigTest, SavesWhatLoadsAgain) {
    AliasedFolder const folder("SAVES");
    CommandLine const line({"-tanks=7"});
    config->SetSetting(key("Created"), 9);
    config->SetSetting(key("none"), c_notSet);
    EXPECT_TRUE(Run("configuration = { { setting = 'tanks', value = 4, valueType = 1 } }"));
    ASSERT_TRUE(config->Save("SAVES:user.lua"));
    EXPECT_EQ(savedIn(folder.ReadFile("user.lua")),
              (Saved{{"tanks", "4/2"}, {"shadows", "0/1"}, {"created", "9/3"}, {"none", "4294967295/3"}}))
        << "stored values and kinds, names in lower case";

    for (char const * const name : {"tanks", "created"})
        config->SetSetting(key(name), 100);
    EXPECT_TRUE(config->Load("SAVES:user.lua", false));
    EXPECT_EQ(Get("tanks"), 4u);
    EXPECT_EQ(Get("created"), 9u);
    EXPECT_EQ(config->GetEstimatedMemoryUsage(key("shadows"), 1), 1536u);

    config->SetSetting(key("created"), 10);
    EXPECT_TRUE(config->Save((folder / "user.lua").c_str())) << "a real path";
    EXPECT_TRUE(config->Load((folder / "user.lua").c_str(), false));
    EXPECT_EQ(Get("created"), 10u);

    SystemConfig::Shutdown();
    SystemConfig::Initialize();
    config = SystemConfig::Instance();
    EXPECT_TRUE(config->Load("SAVES:user.lua", false) && config->Save("SAVES:user.lua"));
    EXPECT_EQ(savedIn(folder.ReadFile("user.lua")),
              (Saved{{"tanks", "4/2"}, {"shadows", "0/1"}, {"created", "10/2"}, {"none", "4294967295/2"}}))
        << "what a file defines is a switch or a number";
}

TEST_F(SystemConfigTest, SavesIntoAState) {
    LuaConfig state("", false);
    EXPECT_TRUE(config->Save(state));
    std::uint32_t version = 0;
    EXPECT_TRUE(LCGetULong(state, "version", version)) << "the cursor is back";
    EXPECT_EQ(version, 1007u);
    config->SetSetting(key("tanks"), 100);
    EXPECT_TRUE(config->Load(state, false));
    EXPECT_EQ(Get("tanks"), 3u);
}

TEST_F(SystemConfigTest, AFailedSaveKeepsTheOldFile) {
    AliasedFolder const folder("SAVES");
    folder.WriteFile("user.lua", "old");
    FileFaults::Instance().failingWrite = 1;
    EXPECT_FALSE(config->Save("SAVES:user.lua"));
    FileFaults::Instance().Clear();
    EXPECT_NE(trace.lines.back().find("SYSTEMCONFIG -- Failed to save configuration to 'SAVES:user.lua'."),
              std::string::npos);
    EXPECT_EQ(folder.ReadFile("user.lua"), "old");
    EXPECT_EQ(folder.CountEntries(), 1u);
}

TEST_F(SystemConfigTest, FilesThatCannotBeUsedAreTraced) {
    AliasedFolder const folder("SAVES");
    folder.WriteFile("broken.lua", "version = 1007 configuration = {");
    Listener listener;
    config->RegisterCallback(&listener, {});
    auto const expectTold = [this](bool result, std::string const & what) {
        EXPECT_FALSE(result) << what;
        EXPECT_TRUE(!trace.lines.empty() &&
                    trace.lines.back().find("SYSTEMCONFIG -- Failed to " + what + "'.") != std::string::npos);
        trace.lines.clear();
    };
    for (char const * const path : {"SAVES:none.lua", "SAVES:broken.lua", "NOWHERE:x.lua", "SAVES:"})
        expectTold(config->Load(path, true), std::string("load configuration from '") + path);
    for (char const * const path : {"NOWHERE:x.lua", "SAVES:broken.lua/x.lua"})
        expectTold(config->Save(path), std::string("save configuration to '") + path);
    EXPECT_EQ(Get("tanks"), 3u);
    EXPECT_EQ(listener.heard, "");
}

TEST(SystemConfigStart, LoadsItsDefaultFile) {
    TemporaryFolder const folder;
    std::filesystem::path const before = std::filesystem::current_path();
    std::filesystem::current_path(folder.Path());
    TraceCapture trace;
    EXPECT_FALSE(SystemConfig::IsInitialized());
    EXPECT_TRUE(SystemConfig::Initialize());
    ASSERT_EQ(trace.lines.size(), 2u);
    EXPECT_NE(trace.lines[0].find("SYSTEMCONFIG -- Failed to load configuration from 'sysconfig.lua'."),
              std::string::npos);
    EXPECT_NE(trace.lines[1].find(
                  "SystemConfig -- Could not load default configuration settings from 'sysconfig.lua'."),
              std::string::npos);
    SystemConfig::Instance()->SetSetting(key("kept"), 1);
    EXPECT_TRUE(SystemConfig::Initialize());
    EXPECT_EQ(SystemConfig::Instance()->GetSetting(key("kept")), 1u) << "the instance stays";
    SystemConfig::Shutdown();
    SystemConfig::Shutdown();
    EXPECT_EQ(SystemConfig::Instance(), nullptr);

    folder.WriteFile("sysconfig.lua", "configuration = { { setting = 'tanks', value = 3 } }");
    SystemConfig::Initialize();
    EXPECT_EQ(SystemConfig::Instance()->GetSetting(key("tanks")), 3u) << "without a version";
    EXPECT_EQ(SystemConfig::Instance()->GetSetting(key("kept")), c_notSet);
    SystemConfig::Shutdown();
    std::filesystem::current_path(before);
}

// What scripts see of the settings.
TEST_F(SystemConfigTest, ScriptsSetReadLoadAndSave) {
    AliasedFolder const folder("SAVES");
    folder.WriteFile("unversioned.lua", "configuration = { { setting = 'tanks', value = 5 } }");
    LuaConfig state("script", true);
    std::vector<std::string> & lines = trace.lines;

    std::tuple<char const *, bool, char const *> const c_cases[] = {
        // call, whether it runs, a part of the last line
        {"sysconfig_getsetting('Tanks')", true, "SYSTEMCONFIG -- 'Tanks': 3"},
        {"sysconfig_setsetting('TANKS', 12) sysconfig_getsetting('tanks')", true,
         "SYSTEMCONFIG -- 'tanks': 12"},
        {"sysconfig_setsetting('big', 4294967294) sysconfig_getsetting('big')", true,
         "SYSTEMCONFIG -- 'big': -2"},
        {"sysconfig_getsetting('unheard of')", true, "SYSTEMCONFIG -- 'unheard of' is not set."},
        {"sysconfig_setsetting('tanks', 1.5)", false,
         "Invalid parameter 2 (type expected=unsigned int, received=number) in function "
         "sysconfig_setsetting"},
        {"sysconfig_setsetting('tanks', -1)", false, "expected=unsigned int"},
        {"sysconfig_setsetting({}, 1)", false, "expected=const char*, received=table"},
        {"sysconfig_getsetting()", false, "expected=1, received=0"},
        {"sysconfig_save('SAVES:user.lua') sysconfig_setsetting('tanks', 1) sysconfig_load('SAVES:user.lua')"
         " sysconfig_getsetting('tanks')",
         true, "SYSTEMCONFIG -- 'tanks': 12"},
        {"sysconfig_load('SAVES:unversioned.lua') sysconfig_getsetting('tanks')", true,
         "SYSTEMCONFIG -- 'tanks': 12"},
        {"sysconfig_load('SAVES:none.lua')", true, "Failed to load"},
    };
    for (auto const & [call, runs, says] : c_cases) {
        lines.assign(1, "");
        EXPECT_EQ(state.RunString(call, true), runs) << call;
        EXPECT_NE(lines.back().find(says), std::string::npos) << lines.back();
    }
    Dictionary::Key known;
    EXPECT_TRUE(Dictionary::Instance().FindKey("unheard of", known));
    EXPECT_EQ(Get("tanks"), 12u);

    SystemConfig::Shutdown();
    EXPECT_TRUE(state.RunString("sysconfig_setsetting('x', 1) sysconfig_load('SAVES:user.lua')"
                                " sysconfig_save('SAVES:new.lua') sysconfig_getsetting('tanks')",
                                true));
    EXPECT_NE(lines.back().find("'tanks' is not set."), std::string::npos);
    EXPECT_EQ(folder.CountEntries(), 2u);
}
