#include "Cross/engine/platform/Options.h"
