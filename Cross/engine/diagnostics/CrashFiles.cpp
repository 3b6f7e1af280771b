#include "Cross/engine/diagnostics/CrashFiles.h"

#include <map>
#include <mutex>
#include <string>

namespace {

struct CrashFile {
    std::string path;
    bool flag;
};

struct CrashList {
    std::recursive_mutex lock; // a fatal stop inside a visit still prints the files
    std::map<int, CrashFile> files;
    int nextHandle = 0;

    // Immortal: logs are closed by static destructors.
    static CrashList & Instance() {
        static CrashList & list = *new CrashList;
        return list;
    }
};

} // namespace

int dbCrashAddCrashFile(char const * path, bool flag) {
    CrashList & list = CrashList::Instance();
    std::lock_guard const guard(list.lock);
    list.files.emplace(list.nextHandle, CrashFile{path ? path : "", flag});
    return list.nextHandle++;
}

void dbCrashRemoveCrashFile(int handle) {
    CrashList & list = CrashList::Instance();
    std::lock_guard const guard(list.lock);
    list.files.erase(handle);
}

void dbCrashVisitFiles(void (*visit)(int handle, char const * path, void * context), void * context) {
    CrashList & list = CrashList::Instance();
    std::lock_guard const guard(list.lock);
    for (auto const & [handle, file] : list.files)
        visit(handle, file.path.c_str(), context);
}
