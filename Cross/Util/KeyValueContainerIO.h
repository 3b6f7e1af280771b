#pragma once

// KeyValueContainerIO: a container as script text with two tables, the numbers under the container's name and
// the texts under that name with "_strings" behind it. So its files can be read and edited by hand.
//
// The name has at most 247 characters. Threads: one for all containers.

#include "Cross/engine/core/Export.h"

class ByteStream;
class KeyValueContainer;
class LuaConfig;

namespace KeyValueContainerIO {

// False when writing fails; the reason is in the trace then.
CROSS_UTIL_API bool Save(KeyValueContainer const & container, ByteStream & stream, char const * name);

// Merge: what the tables name is added or replaced, other entries stay. A missing table adds nothing. A field
// that is no number counts 0, one that is no text "". False, with the container unchanged, only for a stream
// that is no script; the reason is in the trace then.
CROSS_UTIL_API bool Load(KeyValueContainer & container, ByteStream & stream, char const * name);
CROSS_UTIL_API bool Load(KeyValueContainer & container, LuaConfig & config, char const * name);

} // namespace KeyValueContainerIO
