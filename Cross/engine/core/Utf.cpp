#include "Cross/engine/core/Utf.h"
