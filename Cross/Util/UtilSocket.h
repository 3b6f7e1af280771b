#pragma once

// Starts and stops the system's socket layer for an application that uses sockets; the library itself does
// not. The application keeps the calls in balance. Threads: any.

#include "Cross/engine/core/Export.h"

// Starts the layer, version 2.2. 0 on success.
CROSS_UTIL_API int UtilSocketStartUp();

// Takes back one start. 0 on success, -1 without a start.
CROSS_UTIL_API int UtilSocketShutDown();
