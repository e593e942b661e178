#pragma once

#include <memory>
#include <unordered_map>
#include <utility>

#include "host/object.h"
#include "nodes/host_node_link.h"

// A triangle-mesh object that the host has made by a conversion.
struct FreeConverted {
    void operator()(TriObject* object) const { object->DeleteThis(); }
};
using ConvertedMesh = std::unique_ptr<TriObject, FreeConverted>;

// A mesh that the cache owns, for those that use it: it reads as null once the cache was emptied.
using CachedMesh = std::weak_ptr<TriObject>;

// Meshes that scene nodes were converted to, one for each node, kept so that the slow conversion
// runs once in a recording. Each is the geometry at the time of its conversion.
class MeshCache {
  public:
    CachedMesh Find(const HostNodeLink& node) const {
        const auto found = meshes_.find(node);
        return found == meshes_.end() ? CachedMesh() : found->second;
    }
    CachedMesh Keep(const HostNodeLink& node, ConvertedMesh mesh) {
        const auto end = [](TriObject* object) { object->DeleteMe(); };
        return meshes_[node] = std::shared_ptr<TriObject>(mesh.release(), end);
    }

    // The end of a mesh finds the cache empty.
    void Empty() { std::exchange(meshes_, {}); }

  private:
    std::unordered_map<HostNodeLink, std::shared_ptr<TriObject>, HostNodeLink::Hash> meshes_;
};

// The adaptor's cache. Both ends of a recording empty it.
MeshCache& ConvertedMeshes();
