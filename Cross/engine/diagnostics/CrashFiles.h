#pragma once

// Files that a crash report is to include. Threads: any.

#include "Cross/engine/core/Export.h"

// Adds a file by its real path, which is copied, and gives a handle, 0 or above; handles rise and are never
// used twice. `flag` is kept and has no effect.
CROSS_ENGINE_API int dbCrashAddCrashFile(char const * path, bool flag);

// Takes a file out of the report; an unknown handle is ignored. The file itself is not touched.
CROSS_ENGINE_API void dbCrashRemoveCrashFile(int handle);

// Calls `visit` for each file in the report in ascending order of handles. `path` is valid during the call;
// `visit` must not add or remove files.
CROSS_ENGINE_API void dbCrashVisitFiles(void (*visit)(int handle, char const * path, void * context),
                                        void * context);
