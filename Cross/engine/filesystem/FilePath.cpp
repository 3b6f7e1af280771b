#include "Cross/engine/filesystem/FilePath.h"
