#include "Cross/engine/filesystem/PathText.h"
