#pragma once

// Script states as Lua source: running a file in a state, and writing a state's values as source that gives
// them back.
//
// Threads: those of the state.

#include "Cross/engine/core/Export.h"

class ByteStream;
class LuaConfig;

class CROSS_ENGINE_API LuaConfigSave {
public:
    // Run a script file, opened with FilePath::OpenStream, or the rest of a stream. A UTF-8 byte order mark
    // is skipped; bytecode is refused. False when it cannot be opened or run; the reason goes to the trace.
    // The cursor is as before.
    static bool LoadLua(LuaConfig & config, char const * file);
    static bool LoadLua(LuaConfig & config, ByteStream & stream);

    // Writes the globals of the state as Lua source that LoadLua reads back into an equal state: `first`
    // selects the tables, `second` the plain values beside them. Sorted, so equal states give equal bytes.
    // Functions and what the state was built with are left out. False for a cycle, for tables deeper than
    // 150, and when writing fails; the stream is then discarded and the reason traced.
    static bool SaveLua(LuaConfig & config, bool first, bool second, ByteStream & stream);

    // Called on a fresh state before a file is imported into it. Nothing needs setting up: it does nothing.
    static void FilePathOnImport(LuaConfig & config);
};
