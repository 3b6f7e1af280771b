#include "Cross/engine/filesystem/Chunky.h"
