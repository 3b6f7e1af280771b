#include "Cross/engine/diagnostics/Warning.h"
