// Settings and key/value files from outside: what loads is saved, loads again, and is the same then.

#include "Cross/Util/KeyValueContainer.h"
#include "Cross/Util/KeyValueContainerIO.h"
#include "Cross/Util/SystemConfig.h"
#include "Cross/engine/diagnostics/Trace.h"
#include "fuzz/LimitedScript.h"
#include "tests/support/StreamBytes.h"

#include <cstdlib>

namespace {

void demand(bool holds) {
    if (!holds)
        std::abort();
}

std::string savedSettings() {
    LuaConfig state("", false);
    SystemConfig::Instance()->Save(state);
    FilledStream stream;
    demand(LuaConfigSave::SaveLua(state, true, true, stream));
    return stream.Content();
}

void checkSettings(LuaConfig & input) {
    SystemConfig::Initialize();
    if (SystemConfig::Instance()->Load(input, false)) {
        std::string const saved = savedSettings();
        SystemConfig::Shutdown();
        SystemConfig::Initialize();
        FilledStream stream(saved);
        LuaConfig again("", false);
        demand(LuaConfigSave::LoadLua(again, stream) && SystemConfig::Instance()->Load(again, false));
        demand(savedSettings() == saved);
    }
    SystemConfig::Shutdown();
}

void checkKeyValues(LuaConfig & input) {
    KeyValueContainer container, again;
    demand(KeyValueContainerIO::Load(container, input, "box"));
    FilledStream stream, second;
    demand(KeyValueContainerIO::Save(container, stream, "box"));
    stream->SetPos(0);
    demand(KeyValueContainerIO::Load(again, stream, "box"));
    demand(KeyValueContainerIO::Save(again, second, "box"));
    demand(stream.Content() == second.Content());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const * data, std::size_t size) {
    dbTraceSetSink([](char const *, void *) {}, nullptr);
    FilledStream source(std::string_view(reinterpret_cast<char const *>(data), size));
    LuaConfig input("", false);
    if (LoadLimited(input, source)) {
        checkSettings(input);
        checkKeyValues(input);
    }
    KeyValueContainer::Shutdown();
    Dictionary::Instance().Clear();
    return 0;
}
