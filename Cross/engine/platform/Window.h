#pragma once

// Services of the window system's thread.

#include "Cross/engine/core/Export.h"

#include <cstdint>

namespace Plat {

class CROSS_ENGINE_API Window {
public:
    // Gives up the processor for at least that long; 0 only yields.
    static void Sleep(std::uint32_t milliseconds);
};

} // namespace Plat
