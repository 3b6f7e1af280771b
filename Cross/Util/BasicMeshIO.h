#pragma once

// BasicMeshIO: meshes of indexed triangles, single and as named lists, as chunks in a chunk file that the
// caller has open. The cursor of the file stands where the chunk is to be, and behind it afterwards.
//
// A mesh is the chunk "BMSH", version 1, named "BasicMesh": the number of vertices and that of indices,
// signed words; three floats per vertex; an unsigned 16-bit number per index. A list is the folder "MSHL",
// version 1, named "BasicMeshList". It holds the chunk "MSLI", version 1, named "MeshListInfo", with the
// number of meshes, a signed word, and per mesh the chunk "MSHI", version 1, named "MeshInfo", with its name
// as a text, and its "BMSH". Triangles are not stored.
//
// Failures of the stream and of the chunk file pass as exceptions, and so do counts that are negative or more
// than their chunk holds, indices that do not come in threes, and those of no vertex: such a chunk is popped,
// and `mesh` is as it was.

#include "Cross/engine/core/Export.h"
#include "Cross/engine/core/MathPrim.h"
#include "Cross/engine/filesystem/Chunky.h"

#include <string>
#include <vector>

namespace BasicMeshIO {

struct MeshInfo {
    MathPrim::Mesh mesh;
    std::string name;
};

// Writes the mesh as it stands.
CROSS_UTIL_API void Save(Chunky & file, MathPrim::Mesh const & mesh);

// Replaces vertices and indices, and appends a triangle per three indices to those that are there.
CROSS_UTIL_API void Load(Chunky & file, MathPrim::Mesh & mesh);

CROSS_UTIL_API void SaveList(Chunky & file, std::vector<MeshInfo> const & meshes);

// Appends the meshes of a list. After an exception those in front of the bad one have been appended, and the
// folder of the list has not been left.
CROSS_UTIL_API void LoadList(Chunky & file, std::vector<MeshInfo> & meshes);

} // namespace BasicMeshIO
