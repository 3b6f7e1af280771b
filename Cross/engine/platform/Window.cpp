#include "Cross/engine/platform/Window.h"

#include <chrono>
#include <thread>

namespace Plat {

void Window::Sleep(std::uint32_t milliseconds) {
    if (milliseconds == 0)
        std::this_thread::yield();
    else
        std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

} // namespace Plat
