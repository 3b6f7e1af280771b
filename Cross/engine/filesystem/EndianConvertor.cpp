#include "Cross/engine/filesystem/EndianConvertor.h"
