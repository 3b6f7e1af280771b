#include "Cross/engine/filesystem/ByteStreamAdapter.h"
