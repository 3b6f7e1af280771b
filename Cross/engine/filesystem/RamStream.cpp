#include "Cross/engine/filesystem/RamStream.h"
