#include "Cross/engine/filesystem/FilePathHDRaw.h"
