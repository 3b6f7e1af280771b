#include "Cross/engine/diagnostics/Fatal.h"
