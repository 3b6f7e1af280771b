#include "Cross/engine/memory/ModuleHook.h"

namespace {

// First of the library's static objects, so that the memory layer knows the library before it serves any
// other.
MMOverloads s_overloads(MMAPIHook::ModuleFromAddress(&s_overloads));

} // namespace
