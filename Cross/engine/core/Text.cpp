#include "Cross/engine/core/Text.h"
