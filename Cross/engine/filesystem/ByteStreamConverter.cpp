#include "Cross/engine/filesystem/ByteStreamConverter.h"
