#pragma once

#include <cstdint>
#include <map>
#include <memory>

#include "host/node.h"
#include "host/object.h"

// Ends a triangle-mesh object that was converted for the adaptor.
struct DeleteConverted {
    void operator()(TriObject* object) const { object->DeleteMe(); }
};
using ConvertedMesh = std::unique_ptr<TriObject, DeleteConverted>;

// Meshes that scene nodes were converted to, one for each node, kept so that the slow conversion
// runs once in a recording. An entry is good for the node whose handle it carries: a later node at
// the same address is another one.
struct MeshCache {
    struct Entry {
        std::uint32_t handle = 0;
        ConvertedMesh mesh;
    };

    std::map<INode*, Entry> meshes;
    std::uint32_t timesEmptied = 0;  // a borrower that saw another number holds nothing any more
};

// The adaptor's cache.
MeshCache& ConvertedMeshes();

// Frees all meshes. It runs at both ends of a recording.
void EmptyMeshCache();
