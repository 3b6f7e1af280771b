#include "Cross/engine/platform/Guid.h"
