#include "Cross/engine/scriptconfig/LuaConfigSave.h"

#include "Cross/engine/diagnostics/Trace.h"
#include "Cross/engine/filesystem/FilePath.h"
#include "Cross/engine/scriptconfig/LuaConfigData.h"
#include "Cross/engine/scriptconfig/LuaSourceWriter.h"

#include <exception>

namespace {

bool traceFailedLoad(std::string const & file, std::string const & reason) {
    dbTimeStampedTracefAux("SCRIPT -- Failed to load '%s': %s", file.c_str(), reason.c_str());
    return false;
}

struct Save {
    int builtins; // reference into the registry
    bool tables;
    bool plain;
    ByteStream & stream;
    std::string failure;
};

// Exceptions end here: Lua would swallow them.
int runSave(lua_State * L) {
    Save & save = *static_cast<Save *>(lua_touserdata(L, 1));
    lua_rawgeti(L, LUA_REGISTRYINDEX, save.builtins);
    try {
        script::writeGlobals(L, lua_gettop(L), save.tables, save.plain, save.stream);
    } catch (std::exception const & error) {
        save.failure = error.what();
    }
    return 0;
}

} // namespace

bool LuaConfigSave::LoadLua(LuaConfig & config, char const * file) {
    ByteStreamProxy const stream = FilePath::OpenStream(file ? file : "", c_streamRead);
    if (!stream)
        return traceFailedLoad(file ? file : "", "cannot open the file");
    return LoadLua(config, *stream);
}

bool LuaConfigSave::LoadLua(LuaConfig & config, ByteStream & stream) {
    std::string const file = stream.GetStreamName();
    std::optional<std::string> const source = script::readSource(stream);
    if (!source)
        return traceFailedLoad(file, "cannot read all of it");
    std::string reason;
    if (!config.data->Run(script::skipPreamble(*source), ("@" + file).c_str(), reason))
        return traceFailedLoad(file, reason);
    return true;
}

bool LuaConfigSave::SaveLua(LuaConfig & config, bool first, bool second, ByteStream & stream) {
    lua_State * const L = config.data->L;
    script::StackHeight const height(L);
    Save save{config.data->Builtins(), first, second, stream, ""};
    if (lua_cpcall(L, runSave, &save) != 0)
        save.failure = script::errorText(L);
    if (save.failure.empty())
        return true;
    stream.Discard();
    dbTimeStampedTracefAux("SCRIPT -- Failed to save '%s': %s", stream.GetStreamName(), save.failure.c_str());
    return false;
}

void LuaConfigSave::FilePathOnImport(LuaConfig &) {}
