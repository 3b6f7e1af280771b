#include "Cross/engine/diagnostics/CrashFiles.h"
