#include "Cross/engine/scriptconfig/LuaConfigSave.h"
