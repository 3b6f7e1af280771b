#include "Cross/engine/memory/MemPool.h"
