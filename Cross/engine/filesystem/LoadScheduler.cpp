#include "Cross/engine/filesystem/LoadScheduler.h"
