#pragma once

// Names of the script libraries.

#include "Cross/engine/core/Export.h"

extern CROSS_UTIL_API char const * const LUALIB_RENDERSTATS;
extern CROSS_UTIL_API char const * const LUALIB_DEBUGRENDER;
extern CROSS_UTIL_API char const * const LUALIB_INVENTORY;
extern CROSS_UTIL_API char const * const LUALIB_STATGRAPH;
extern CROSS_UTIL_API char const * const LUALIB_SYSTEMCONFIG;
extern CROSS_UTIL_API char const * const LUALIB_WARNING;
extern CROSS_UTIL_API char const * const LUALIB_CHEATMENU;
