#include "Cross/engine/platform/File.h"
