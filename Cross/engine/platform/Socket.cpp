#include "Cross/engine/platform/Socket.h"

#include <atomic>

namespace Plat {

namespace {

constinit std::atomic<unsigned int> s_starts{0};

} // namespace

// Sockets are always there on this system: the calls are only kept in balance.
int Socket::StartUp(std::uint16_t) {
    ++s_starts;
    return 0;
}

int Socket::CleanUp() {
    unsigned int starts = s_starts;
    while (starts != 0 && !s_starts.compare_exchange_weak(starts, starts - 1)) {}
    return starts != 0 ? 0 : -1;
}

} // namespace Plat
