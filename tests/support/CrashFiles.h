#pragma once

#include "Cross/engine/diagnostics/CrashFiles.h"

#include <string>
#include <utility>
#include <vector>

// Handles and real paths of what belongs to the crash report now.
using CrashFiles = std::vector<std::pair<int, std::string>>;

inline CrashFiles VisitedCrashFiles() {
    CrashFiles files;
    dbCrashVisitFiles([](int handle, char const * path,
                         void * context) { static_cast<CrashFiles *>(context)->emplace_back(handle, path); },
                      &files);
    return files;
}
