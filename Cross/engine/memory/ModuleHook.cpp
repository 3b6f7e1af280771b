#include "Cross/engine/memory/ModuleHook.h"
