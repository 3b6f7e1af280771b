#include "Cross/engine/platform/RecursiveMutex.h"
