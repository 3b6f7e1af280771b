#include "Cross/engine/platform/RecursiveMutex.h"

namespace Plat {

RecursiveMutex::RecursiveMutex() = default;

RecursiveMutex::~RecursiveMutex() = default;

void RecursiveMutex::Enter() { mutex.lock(); }

void RecursiveMutex::Leave() { mutex.unlock(); }

} // namespace Plat
