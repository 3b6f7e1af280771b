#pragma once

// BoundVolumeIO: bound volumes as chunks in a chunk file that the caller has open. The cursor of the file
// stands where the chunk is to be, and behind it afterwards.
//
// The chunk "BVOL", version 2: a bool that tells whether the volume is valid; then, if it is, the centre, the
// extents and the nine numbers of the rotation of its box. Version 1, which is only read, has in front a bool
// for a sphere, and behind the two bools the sphere's centre and radius if there is one.
//
// Failures of the stream and of the chunk file pass as exceptions; the volume is as it was then.

#include "Cross/Util/BoundVolume.h"
#include "Cross/engine/core/Export.h"
#include "Cross/engine/filesystem/Chunky.h"

namespace BoundVolumeIO {

// Writes the box; the sphere is not stored, also where SetSphere gave one.
CROSS_UTIL_API void Save(Chunky & file, BoundVolume const & volume);

// Takes the box over by SetOBB. A chunk of an invalid volume leaves `volume` as it is.
CROSS_UTIL_API void Load(Chunky & file, BoundVolume & volume);

} // namespace BoundVolumeIO
