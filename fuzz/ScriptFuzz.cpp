// Runs any bytes as a data file, walks what it has set, and saves and loads that: the second save must be the
// first.

#include "Cross/engine/diagnostics/Trace.h"
#include "Cross/engine/filesystem/RamStream.h"
#include "Cross/engine/scriptconfig/LuaConfig.h"
#include "Cross/engine/scriptconfig/LuaConfigSave.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <lua.hpp>
#include <string>
#include <string_view>

namespace {

constexpr int c_maxInstructions = 20000;
constexpr std::size_t c_maxMemory = std::size_t{16} << 20;
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

// What the scripts of one state may use up, and Lua's allocator when they may not.
class Limits {
public:
    explicit Limits(lua_State * L) : L(L) {
        normal = lua_getallocf(L, &normalContext);
        lua_setallocf(L, allocate, this);
        lua_sethook(L, stop, LUA_MASKCOUNT, c_maxInstructions);
    }

    Limits(Limits const &) = delete;
    Limits & operator=(Limits const &) = delete;

    ~Limits() {
        lua_sethook(L, nullptr, 0, 0);
        lua_setallocf(L, normal, normalContext);
    }

private:
    static void * allocate(void * context, void * block, std::size_t oldSize, std::size_t newSize) {
        auto & limits = *static_cast<Limits *>(context);
        if (newSize > oldSize && limits.used + (newSize - oldSize) > c_maxMemory)
            return nullptr;
        limits.used += newSize - oldSize; // wraps below 0 and back, for blocks from before
        return limits.normal(limits.normalContext, block, oldSize, newSize);
    }

    // From now on every instruction is an error, so that no pcall keeps the script running.
    static void stop(lua_State * L, lua_Debug *) {
        lua_sethook(L, stop, LUA_MASKCOUNT, 1);
        luaL_error(L, "too many instructions");
    }

    lua_State * L;
    lua_Alloc normal;
    void * normalContext = nullptr;
    std::size_t used = std::size_t{1} << 20; // above what a new state can give back
};

// Functions whose own loops no count of instructions stops, and the one that writes to the terminal.
void hideLibraries(lua_State * L) {
    lua_getmetatable(L, LUA_GLOBALSINDEX);
    lua_getfield(L, -1, "__index");
    for (char const * name : {LUA_STRLIBNAME, LUA_TABLIBNAME, "print"}) {
        lua_pushnil(L);
        lua_setfield(L, -2, name);
    }
    lua_pushliteral(L, "");
    lua_pushnil(L);
    lua_setmetatable(L, -2);
    lua_pop(L, 3);
}

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
    hideLibraries(L);
    {
        Limits const limits(L);
        LuaConfigSave::LoadLua(config, source);
    }
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
