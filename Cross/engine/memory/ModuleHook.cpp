#include "Cross/engine/memory/ModuleHook.h"

#include <algorithm>
#include <dlfcn.h>
#include <mutex>
#include <vector>

namespace {

// A module stands in the list once for each object that registered it.
struct Modules {
    std::mutex lock;
    std::vector<void const *> registered;

    // Immortal: libraries come and go while static objects are built and destroyed.
    static Modules & Instance() {
        static Modules & modules = *new Modules;
        return modules;
    }
};

} // namespace

void * MMAPIHook::ModuleFromAddress(void const * address) {
    Dl_info module = {};
    return dladdr(address, &module) != 0 ? module.dli_fbase : nullptr;
}

MMOverloads::MMOverloads(void * module) : module(module) {
    if (!module)
        return;
    Modules & modules = Modules::Instance();
    std::lock_guard const guard(modules.lock);
    modules.registered.push_back(module);
}

MMOverloads::~MMOverloads() {
    Modules & modules = Modules::Instance();
    std::lock_guard const guard(modules.lock);
    auto const place = std::find(modules.registered.begin(), modules.registered.end(), module);
    if (place != modules.registered.end())
        modules.registered.erase(place);
}

bool MMOverloads::IsRegistered(void const * module) {
    Modules & modules = Modules::Instance();
    std::lock_guard const guard(modules.lock);
    return std::find(modules.registered.begin(), modules.registered.end(), module) !=
           modules.registered.end();
}
