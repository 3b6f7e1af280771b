#include "Cross/engine/platform/RecursiveMutex.h"

namespace Plat {

void RecursiveMutex::Enter() { mutex.lock(); }

void RecursiveMutex::Leave() { mutex.unlock(); }

} // namespace Plat
