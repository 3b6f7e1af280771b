#pragma once

// The system's socket layer, which some systems want started. Threads: any.

#include "Cross/engine/core/Export.h"

#include <cstdint>

namespace Plat {

class CROSS_ENGINE_API Socket {
public:
    // Asks for a version of the layer, the major number in the low byte, the minor one above it. Each start
    // needs a clean-up of its own. 0 on success.
    static int StartUp(std::uint16_t version);

    // 0 on success, -1 without a start.
    static int CleanUp();
};

} // namespace Plat
