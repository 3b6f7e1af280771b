#include "Cross/engine/platform/Window.h"
