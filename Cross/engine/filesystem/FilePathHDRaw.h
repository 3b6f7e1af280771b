#pragma once

// Files by real path, with no alias mapping: a ':' is an ordinary character. Threads: any.

#include "Cross/engine/core/Export.h"
#include "Cross/engine/filesystem/ByteStream.h"

class CROSS_ENGINE_API FilePathHDRaw {
public:
    // Opens a regular file; the caller deletes the stream. Null on failure. Writing creates the file or
    // replaces its content under the rules of FilePath. `unused` is not read.
    static ByteStream * UnaliasedFileOpen(char const * path, StreamMode mode, bool unused);
    static ByteStream * UnaliasedFileOpen(char16_t const * path, StreamMode mode, bool unused);
};
