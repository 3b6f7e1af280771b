#include "Cross/engine/diagnostics/Letters.h"
