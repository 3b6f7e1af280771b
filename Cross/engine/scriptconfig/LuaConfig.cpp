#include "Cross/engine/scriptconfig/LuaConfig.h"
