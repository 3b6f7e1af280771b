#include "Cross/engine/platform/Time.h"
