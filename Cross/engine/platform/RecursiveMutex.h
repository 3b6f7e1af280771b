#pragma once

// A mutex that one thread may enter repeatedly; it is free again after as many calls of Leave. Leaving a
// mutex that the thread did not enter, or destroying one that is held, is outside the contract.

#include "Cross/engine/core/Export.h"

#include <mutex>

namespace Plat {

class CROSS_ENGINE_API RecursiveMutex {
public:
    RecursiveMutex() = default;
    RecursiveMutex(RecursiveMutex const &) = delete;
    RecursiveMutex & operator=(RecursiveMutex const &) = delete;
    ~RecursiveMutex() = default;

    void Enter();
    void Leave();

private:
    std::recursive_mutex mutex;
};

} // namespace Plat
