#pragma once

// Ties a shared library to the memory layer. Each library holds one static MMOverloads object, built at load
// from its own module handle, so that the layer knows which modules are loaded.
//
// Threads: any. Lifetime: an object registers its module from construction to destruction.

#include "Cross/engine/core/Export.h"

#include <cstddef>

namespace MMAPIHook {

// Handle of the module that holds `address`, null when no module does. Valid while the module is loaded.
CROSS_ENGINE_API void * ModuleFromAddress(void const * address);

} // namespace MMAPIHook

class CROSS_ENGINE_API MMOverloads {
public:
    // `module` comes from MMAPIHook::ModuleFromAddress; null registers nothing.
    explicit MMOverloads(void * module);
    MMOverloads(MMOverloads const &) = delete;
    MMOverloads & operator=(MMOverloads const &) = delete;
    ~MMOverloads();

    // Whether some living object registered this module.
    static bool IsRegistered(void const * module);

private:
    void * module;
};
