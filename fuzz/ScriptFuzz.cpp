// Runs any bytes as a data file, walks what it has set, and saves and loads that: the second save must be the
// first.

#include "Cross/engine/diagnostics/Trace.h"
#include "Cross/engine/filesystem/RamStream.h"
#include "Cross/engine/scriptconfig/LuaConfig.h"
#include "Cross/engine/scriptconfig/LuaConfigSave.h"
#include "fuzz/LimitedScript.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <lua.hpp>
#include <string>
#include <string_view>

namespace {

constexpr unsigned int c_maxSave = 1u << 20;
constexpr int c_maxDepth = 12;

void check(bool holds) {
    if (!holds)
        std::abort();
}

// A stream that fills up: tables met twice are written twice, so a short script can make a long save.
class SmallStream : public RamStream {
public:
    unsigned int Write(void const * buffer, unsigned int size) override {
        return GetPos() + size > c_maxSave ? 0 : RamStream::Write(buffer, size);
    }

    std::string_view Text() { return {static_cast<char const *>(GetBuffer()), GetLen()}; }
};

void readField(LuaConfig & config, char const * name) {
    double number = 0;
    bool flag = false;
    std::string text;
    char16_t wide[16];
    int const kinds =
        config.GetNumber(name, number) + config.GetBoolean(name, flag) + config.GetString(name, text);
    check(kinds <= 1);
    LCGetWString(config, name, wide, 16);
}

// The names by index are those of the walk. Nothing is pushed in between, which would cost a new listing each
// time.
void compareNames(LuaConfig & config) {
    unsigned int index = 0;
    for (auto field = config.IterateBegin(); field != config.IterateEnd(); ++field, ++index) {
        char name[64];
        check(config.AtEntry(index, name, sizeof(name)));
        check(std::strncmp(name, field.GetName(), sizeof(name) - 1) == 0);
    }
    check(index == config.CountEntry());
}

void walk(LuaConfig & config, int depth, int & fieldsLeft) {
    compareNames(config);
    for (auto field = config.IterateBegin(); field != config.IterateEnd() && --fieldsLeft > 0; ++field) {
        readField(config, field.GetName());
        config.PushTable(field.GetName());
        if (depth < c_maxDepth)
            walk(config, depth + 1, fieldsLeft);
        config.PopTable();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const * data, std::size_t size) {
    dbTraceSetSink([](char const *, void *) {}, nullptr);
    RamStream source;
    source.Open(0, c_streamWrite);
    source.Write(data, static_cast<unsigned int>(size));
    source.SetPos(0);

    LuaConfig config("fuzz", false);
    lua_State * const L = config.GetState();
    LoadLimited(config, source);
    check(lua_gettop(L) == 1);

    SmallStream first;
    first.Open(0, c_streamWrite);
    if (!LuaConfigSave::SaveLua(config, true, true, first))
        return 0;
    int fieldsLeft = 2000;
    walk(config, 0, fieldsLeft);
    check(lua_gettop(L) == 1);

    LuaConfig reloaded("again", false);
    first.SetPos(0);
    check(LuaConfigSave::LoadLua(reloaded, first));
    SmallStream second;
    second.Open(0, c_streamWrite);
    check(LuaConfigSave::SaveLua(reloaded, true, true, second));
    check(first.Text() == second.Text());
    return 0;
}
