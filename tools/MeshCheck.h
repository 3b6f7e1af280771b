#pragma once

// The meshes and bound volumes in a chunk file, and everything that is wrong with them.

#include "Cross/Util/BoundVolume.h"
#include "Cross/engine/core/MathPrim.h"

#include <string>
#include <vector>

class ByteStream;

struct MeshReport {
    struct Finding {
        unsigned int offset;
        std::string reason;
    };

    struct Mesh {
        std::string name; // "" for one that is in no list
        MathPrim::Mesh mesh;
        unsigned int vertexOffset; // of its vertices in the file
    };

    // "N meshes, N vertices, N triangles, N bound volumes", and chunks of other kinds where there are some.
    std::string Summary() const;

    // The findings as "FILE: offset N: reason".
    std::vector<std::string> Lines(std::string const & file) const;

    std::vector<Finding> findings; // by offset
    std::vector<BoundVolume> volumes;
    std::vector<Mesh> meshes;
    std::size_t otherChunks = 0; // which are passed over
};

MeshReport CheckMeshes(ByteStream & stream);
