#include "Cross/engine/diagnostics/Trace.h"
