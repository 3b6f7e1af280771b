// Settings as files and in memory: sectioned files beside two readers of such files, key/value files beside
// bare Lua, system settings beside a map of names.

#include "Cross/Util/ConfigFile.h"
#include "Cross/Util/KeyValueContainer.h"
#include "Cross/Util/KeyValueContainerIO.h"
#include "Cross/Util/Random.h"
#include "Cross/Util/SystemConfig.h"
#include "Cross/engine/filesystem/RamStream.h"
#include "bench/Ratio.h"

#define SI_NO_CONVERSION // bytes, as ours
#include <SimpleIni.h>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <ini.h>
#include <lua.hpp>
#include <map>
#include <string>
#include <vector>

namespace {

std::string nameOf(Random & random) {
    std::string name = "Name_";
    for (int i = 0; i < 8; ++i)
        name += static_cast<char>('a' + random.GetMax(26));
    return name;
}

// A file of some 5 MB in 400 sections, gone at the end.
class SampleFile {
public:
    SampleFile() : path(std::filesystem::temp_directory_path() / "crossutil-bench.ini") {
        Random random;
        random.SetSeed(1);
        std::ofstream file(path, std::ios::binary);
        for (int section = 0; section < 400; ++section) {
            file << "[" << nameOf(random) << "]\r\n";
            for (int key = 0; key < 400; ++key)
                file << nameOf(random) << " = " << random.GetBits(31) << " " << key << "\r\n";
        }
    }

    ~SampleFile() { std::filesystem::remove(path); }

    std::filesystem::path const path;
};

SampleFile const & sample() {
    static SampleFile const file;
    return file;
}

void demand(bool holds, char const * what) {
    if (holds)
        return;
    std::fprintf(stderr, "%s\n", what);
    std::exit(2);
}

void loadSections(benchmark::State & state) {
    std::string const path = sample().path.string();
    for (auto _ : state) {
        ConfigFile const file(path.c_str());
        demand(file.GetSectionCount() == 400, "the sections do not load");
    }
}

void loadSimpleIni(benchmark::State & state) {
    std::string const path = sample().path.string();
    for (auto _ : state) {
        CSimpleIniA file;
        demand(file.LoadFile(path.c_str()) == SI_OK, "SimpleIni does not load");
        CSimpleIniA::TNamesDepend sections;
        file.GetAllSections(sections);
        demand(sections.size() == 400, "SimpleIni's sections do not load");
    }
}

using Sections = std::map<std::string, std::map<std::string, std::string>>;

std::string lowerCased(std::string text) {
    for (char & letter : text)
        if (letter >= 'A' && letter <= 'Z')
            letter = static_cast<char>(letter - 'A' + 'a');
    return text;
}

void loadInih(benchmark::State & state) {
    std::string const path = sample().path.string();
    for (auto _ : state) {
        Sections sections;
        auto const take = [](void * into, char const * section, char const * key, char const * value) {
            (*static_cast<Sections *>(into))[lowerCased(section)].emplace(lowerCased(key), value);
            return 1;
        };
        demand(ini_parse(path.c_str(), take, &sections) == 0, "inih does not load");
        demand(sections.size() == 400, "inih's sections do not load");
    }
}

constexpr int c_entries = 1000;

std::string keyValueSource() {
    Random random;
    random.SetSeed(2);
    std::string numbers = "box = {\n", texts = "box_strings = {\n";
    for (int i = 0; i < c_entries; ++i) {
        numbers += nameOf(random) + " = " + std::to_string(random.GetBits(20)) + ".5,\n";
        texts += nameOf(random) + " = \"" + nameOf(random) + "\",\n";
    }
    return numbers + "}\n" + texts + "}\n";
}

void loadKeyValues(benchmark::State & state) {
    std::string const source = keyValueSource();
    RamStream stream;
    stream.Open(static_cast<unsigned int>(source.size()), c_streamWrite);
    stream.Write(source.data(), static_cast<unsigned int>(source.size()));
    for (auto _ : state) {
        stream.SetPos(0);
        KeyValueContainer container;
        demand(KeyValueContainerIO::Load(container, stream, "box"), "the container does not load");
        demand(container.Size() == c_entries && container.SizeString() == c_entries, "entries are missing");
    }
}

void readTable(lua_State * L, char const * name) {
    lua_getglobal(L, name);
    for (lua_pushnil(L); lua_next(L, -2) != 0; lua_pop(L, 1)) {
        benchmark::DoNotOptimize(lua_tostring(L, -2));
        if (lua_type(L, -1) == LUA_TNUMBER)
            benchmark::DoNotOptimize(lua_tonumber(L, -1));
        else
            benchmark::DoNotOptimize(std::string(lua_tostring(L, -1)));
    }
    lua_pop(L, 1);
}

void loadBareLua(benchmark::State & state) {
    std::string const source = keyValueSource();
    for (auto _ : state) {
        lua_State * const L = luaL_newstate();
        demand(luaL_loadbuffer(L, source.data(), source.size(), "box") == 0 && lua_pcall(L, 0, 0, 0) == 0,
               "the source does not run");
        readTable(L, "box");
        readTable(L, "box_strings");
        lua_close(L);
    }
}

std::vector<std::string> settingNames() {
    Random random;
    random.SetSeed(3);
    std::vector<std::string> names;
    for (int i = 0; i < 200; ++i)
        names.push_back(nameOf(random));
    return names;
}

void readSettings(benchmark::State & state) {
    SystemConfig::Initialize();
    std::vector<Dictionary::Key> keys;
    for (std::string const & name : settingNames()) {
        keys.push_back(Dictionary::Instance().GetKey(name.c_str()));
        SystemConfig::Instance()->SetSetting(keys.back(), 1);
    }
    for (auto _ : state)
        for (Dictionary::Key const & key : keys)
            benchmark::DoNotOptimize(SystemConfig::Instance()->GetSetting(key));
    SystemConfig::Shutdown();
}

void readMap(benchmark::State & state) {
    std::vector<std::string> const names = settingNames();
    std::map<std::string, unsigned int> settings;
    for (std::string const & name : names)
        settings[name] = 1;
    for (auto _ : state)
        for (std::string const & name : names)
            benchmark::DoNotOptimize(settings.find(name)->second);
}

} // namespace

int main(int argc, char ** argv) {
    bench::AddPair("sections of 5 MB beside SimpleIni", 0.6, loadSections, loadSimpleIni);
    bench::AddPair("sections of 5 MB beside inih into maps", 0.6, loadSections, loadInih);
    bench::AddPair("key/value file of 2000 entries beside bare Lua", 1.3, loadKeyValues, loadBareLua);
    bench::AddPair("GetSetting of 200 beside a map of names", 0.5, readSettings, readMap);
    return bench::Run(argc, argv);
}
