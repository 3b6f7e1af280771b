#include "Cross/Util/lua/LuaLibNames.h"

char const * const LUALIB_RENDERSTATS = "renderstats";
char const * const LUALIB_DEBUGRENDER = "debugrender";
char const * const LUALIB_INVENTORY = "inventory";
char const * const LUALIB_STATGRAPH = "statgraph";
char const * const LUALIB_SYSTEMCONFIG = "systemconfig";
char const * const LUALIB_WARNING = "warninglib";
char const * const LUALIB_CHEATMENU = "cheatmenu";
