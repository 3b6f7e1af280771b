#include "bench/Ratio.h"

#include "Cross/Util/BinaryConfig.h"
#include "Cross/Util/BinaryConfigCreator.h"
#include "Cross/Util/BinaryConfigIO.h"
#include "Cross/Util/NameHash.h"

// Else the header wants the library for its number texts.
#define FLATBUFFERS_LOCALE_INDEPENDENT 0
#include <flatbuffers/flexbuffers.h>
#include <lua.hpp>
#include <rapidjson/document.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <random>
#include <string>
#include <unordered_set>
#include <vector>

namespace {

// Names as people give them: "speed", "armour_decay", "turret_range_7". No two share a hash, which no table
// can hold.
std::vector<std::string> makeNames(std::size_t count, std::uint32_t seed) {
    static constexpr char const * c_words[] = {"speed",  "health", "armour", "range",  "turret", "decay",
                                               "damage", "build",  "time",   "cost",   "radius", "sight",
                                               "weapon", "squad",  "morale", "reload", "burst",  "accuracy",
                                               "cover",  "path",   "anim",   "sound",  "icon",   "ui"};
    std::mt19937 random(seed);
    auto const word = [&random] { return std::string(c_words[random() % std::size(c_words)]); };
    std::unordered_set<std::uint32_t> hashes;
    std::vector<std::string> names;
    while (names.size() < count) {
        std::string name = word();
        if (count > 16)
            name += "_" + word();
        if (count > 100)
            name += "_" + std::to_string(random() % (2 * count));
        if (hashes.insert(NameHash(name.c_str())).second)
            names.push_back(std::move(name));
    }
    return names;
}

class LuaState {
public:
    LuaState() : state(luaL_newstate()) {}

    LuaState(LuaState const &) = delete;
    LuaState & operator=(LuaState const &) = delete;

    ~LuaState() { lua_close(state); }

    operator lua_State *() const { return state; }

private:
    lua_State * state;
};

constexpr std::size_t c_draws = 1 << 16;

float valueOf(std::size_t index) { return static_cast<float>(index) * 0.25f; }

// One table of floats in three forms, and its names in the order of asking, one behind the other in memory.
struct Lookup {
    explicit Lookup(std::size_t count) : names(makeNames(count, 1)) {
        BinaryConfigCreator creator;
        flexbuffers::Builder builder(256, flexbuffers::BUILDER_FLAG_NONE);
        lua_newtable(lua);
        std::size_t const start = builder.StartMap();
        for (std::size_t i = 0; i < count; ++i) {
            char const * const name = names[i].c_str();
            creator.SetNumber(name, valueOf(i));
            builder.Float(name, valueOf(i));
            lua_pushnumber(lua, valueOf(i));
            lua_setfield(lua, -2, name);
        }
        builder.EndMap(start);
        builder.Finish();
        flex = builder.GetBuffer();
        BinaryConfigIO::CreateBinaryConfig(creator, config, 1);
        makeQuestions();
    }

    std::vector<std::string> names;
    BinaryConfig config;
    std::vector<std::uint8_t> flex;
    LuaState lua;
    std::string texts;
    std::vector<char const *> questions;

private:
    void makeQuestions() {
        std::mt19937 random(7);
        std::vector<std::size_t> starts;
        for (std::size_t i = 0; i < c_draws; ++i) {
            std::string const & name = names[random() % names.size()];
            starts.push_back(texts.size());
            texts.append(name.c_str(), name.size() + 1);
        }
        for (std::size_t const start : starts)
            questions.push_back(texts.data() + start);
    }
};

template <class Ask>
bench::Body asking(Lookup const & lookup, Ask ask) {
    return [&lookup, ask](benchmark::State & state) {
        std::size_t i = 0;
        for (auto _ : state)
            benchmark::DoNotOptimize(ask(lookup.questions[i++ % c_draws]));
    };
}

void addLookups(Lookup const & lookup, double flexLimit) {
    constexpr double c_luaLimit = 0.65;
    auto const ours = [&lookup](char const * name) {
        float value = 0;
        lookup.config.GetNumber(name, value);
        return value;
    };
    auto const map = flexbuffers::GetRoot(lookup.flex).AsMap();
    auto const flex = [map](char const * name) { return map[name].AsFloat(); };
    auto const lua = [&lookup](char const * name) {
        lua_getfield(lookup.lua, -1, name);
        lua_Number const value = lua_tonumber(lookup.lua, -1);
        lua_pop(lookup.lua, 1);
        return value;
    };
    std::string const size = std::to_string(lookup.names.size()) + " fields";
    bench::AddPair("float by name, FlexBuffers, " + size, flexLimit, asking(lookup, ours),
                   asking(lookup, flex));
    bench::AddPair("float by name, Lua table, " + size, c_luaLimit, asking(lookup, ours),
                   asking(lookup, lua));
}

// Builds one table after the other, each with names of its own: nobody builds the same one twice.
template <class Build>
bench::Body building(std::vector<std::string> const & names, std::size_t fields, Build build) {
    return [&names, fields, build](benchmark::State & state) {
        std::size_t first = 0;
        for (auto _ : state) {
            build(names.data() + first, fields);
            first = first + 2 * fields <= names.size() ? first + fields : 0;
        }
    };
}

void addBuilding(std::vector<std::string> const & names, std::size_t fields, double limit) {
    auto const ours = [config = std::make_shared<BinaryConfig>()](std::string const * names,
                                                                  std::size_t count) {
        BinaryConfigCreator creator;
        for (std::size_t i = 0; i < count; ++i)
            creator.SetNumber(names[i].c_str(), valueOf(i));
        BinaryConfigIO::CreateBinaryConfig(creator, *config, 1);
        benchmark::DoNotOptimize(config->GetBinaryConfigData());
    };
    auto const flex = [](std::string const * names, std::size_t count) {
        flexbuffers::Builder builder(256, flexbuffers::BUILDER_FLAG_NONE);
        std::size_t const start = builder.StartMap();
        for (std::size_t i = 0; i < count; ++i)
            builder.Float(names[i].c_str(), valueOf(i));
        builder.EndMap(start);
        builder.Finish();
        benchmark::DoNotOptimize(builder.GetBuffer().data());
    };
    bench::AddPair("building and flattening, " + std::to_string(fields) + " fields", limit,
                   building(names, fields, ours), building(names, fields, flex));
}

// A file that goes with the object.
class ScratchFile {
public:
    ScratchFile()
        : path(std::filesystem::temp_directory_path() /
               ("table_bench_" + std::to_string(std::random_device()()))) {}

    ScratchFile(ScratchFile const &) = delete;
    ScratchFile & operator=(ScratchFile const &) = delete;

    ~ScratchFile() { std::filesystem::remove(path); }

    char const * Name() const { return path.c_str(); }

private:
    std::filesystem::path path;
};

constexpr std::size_t c_groups = 100;
constexpr std::size_t c_tables = 100;
constexpr std::size_t c_fields = 58;

// The same tree in three forms: groups of tables of the same fields, about 10 MB as an image.
class Document {
public:
    Document() : names(makeNames(c_fields, 3)), json("{"), lua("return {") {
        for (std::size_t i = 0; i < c_groups; ++i)
            addGroup("group_" + std::to_string(i));
        json.back() = '}';
        lua += '}';
        if (!BinaryConfigIO::Save(file.Name(), creator, 1))
            std::abort();
    }

    char const * FileName() const { return file.Name(); }

    std::string const & Json() const { return json; }

    std::string const & Lua() const { return lua; }

    double ImageMegabytes() const {
        BinaryConfig config;
        BinaryConfigIO::Load(file.Name(), config);
        return config.GetBinaryConfigDataSize() / 1e6;
    }

private:
    // A function of its own for each group, since a script function holds only so many constants.
    void addGroup(std::string const & name) {
        creator.TablePush(name.c_str(), false);
        json += '"' + name + "\":{";
        lua += name + "=(function() return {";
        for (std::size_t i = 0; i < c_tables; ++i)
            addTable("table_" + std::to_string(i));
        json.back() = '}';
        json += ',';
        lua += "} end)(),";
        creator.TablePop();
    }

    void addTable(std::string const & name) {
        creator.TablePush(name.c_str(), false);
        json += '"' + name + "\":{";
        lua += name + "={";
        for (std::size_t i = 0; i < names.size(); ++i)
            addField(i);
        json.back() = '}';
        json += ',';
        lua += "},";
        creator.TablePop();
    }

    // The type goes with the name: half of the fields are floats.
    void addField(std::size_t index) {
        char const * const name = names[index].c_str();
        unsigned int const draw = static_cast<unsigned int>(random() % 10000);
        std::string text;
        if (index % 8 < 4) {
            static constexpr char const * c_fractions[] = {".0", ".25", ".5", ".75"};
            creator.SetNumber(name, static_cast<float>(draw) * 0.25f);
            text = std::to_string(draw / 4) + c_fractions[draw % 4];
        } else if (index % 8 < 6) {
            creator.SetNumber(name, static_cast<int>(draw));
            text = std::to_string(draw);
        } else if (index % 8 < 7) {
            creator.SetBool(name, draw % 2 == 0);
            text = draw % 2 == 0 ? "true" : "false";
        } else {
            text = "text_" + std::to_string(draw);
            creator.SetString(name, text.c_str());
            text = '"' + text + '"';
        }
        json += '"' + names[index] + "\":" + text + ',';
        lua += names[index] + '=' + text + ',';
    }

    std::vector<std::string> names;
    std::mt19937 random{5};
    BinaryConfigCreator creator;
    std::string json;
    std::string lua;
    ScratchFile file;
};

// Ours comes from its file and is checked; the peers have their texts in memory already.
void addLoading(Document const & document) {
    auto const ours = [&document](benchmark::State & state) {
        for (auto _ : state) {
            BinaryConfig config;
            if (!BinaryConfigIO::Load(document.FileName(), config) ||
                !BinaryConfigIO::Verify(config.GetBinaryConfigData(), config.GetBinaryConfigDataSize()))
                state.SkipWithError("the image does not load");
        }
    };
    auto const json = [&document](benchmark::State & state) {
        for (auto _ : state) {
            rapidjson::Document parsed;
            if (parsed.Parse(document.Json().data(), document.Json().size()).HasParseError())
                state.SkipWithError("the JSON text does not parse");
        }
    };
    auto const lua = [&document](benchmark::State & state) {
        for (auto _ : state) {
            LuaState script;
            if (luaL_loadbuffer(script, document.Lua().data(), document.Lua().size(), "=document") != 0 ||
                lua_pcall(script, 0, 1, 0) != 0)
                state.SkipWithError("the script does not run");
        }
    };
    bench::AddPair("loading and verifying, RapidJSON", 0.1, ours, json);
    bench::AddPair("loading and verifying, Lua source", 0.01, ours, lua);
    bench::AddFigure("image", document.ImageMegabytes(), "MB");
    bench::AddFigure("JSON text", static_cast<double>(document.Json().size()) / 1e6, "MB");
    bench::AddFigure("Lua source", static_cast<double>(document.Lua().size()) / 1e6, "MB");
}

} // namespace

int main(int argc, char ** argv) {
    struct Size {
        std::size_t fields;
        double lookupLimit;
        double buildingLimit;
    };

    constexpr Size c_sizes[] = {{8, 0.6, 1.0}, {64, 0.4, 1.0}, {1'000, 0.3, 1.0}, {100'000, 0.25, 0.5}};
    std::vector<std::string> const names = makeNames(100'000, 2);
    std::vector<std::unique_ptr<Lookup>> lookups;
    for (Size const & size : c_sizes) {
        lookups.push_back(std::make_unique<Lookup>(size.fields));
        addLookups(*lookups.back(), size.lookupLimit);
        addBuilding(names, size.fields, size.buildingLimit);
    }
    Document const document;
    addLoading(document);
    return bench::Run(argc, argv);
}
