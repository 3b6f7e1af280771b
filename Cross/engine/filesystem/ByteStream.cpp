#include "Cross/engine/filesystem/ByteStream.h"
