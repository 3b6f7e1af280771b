#pragma once

// Meshes from OBJ text: positions, faces of three and more corners, objects and groups. Normals, texture
// coordinates and materials are read over; what else a file may hold is refused.

#include "Cross/Util/BasicMeshIO.h"

#include <string>
#include <string_view>
#include <vector>

// Gives a mesh per object and group that has faces, named after it, with the vertices that it uses and its
// faces cut into triangles. Empty, with the reasons as "FILE:LINE: reason" in `errors`, when anything is
// wrong.
std::vector<BasicMeshIO::MeshInfo> ReadObj(std::string const & file, std::string_view text,
                                           std::vector<std::string> & errors);
