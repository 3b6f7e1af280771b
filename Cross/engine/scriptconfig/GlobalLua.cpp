#include "Cross/engine/scriptconfig/GlobalLua.h"
