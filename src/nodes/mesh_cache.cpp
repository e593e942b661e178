#include "nodes/mesh_cache.h"

#include <utility>

CachedMesh MeshCache::Find(const HostNodeLink& node) const {
    const auto found = meshes_.find(node);
    return found == meshes_.end() ? CachedMesh() : found->second;
}

CachedMesh MeshCache::Keep(const HostNodeLink& node, ConvertedMesh mesh) {
    const auto end = [](TriObject* object) { object->DeleteMe(); };
    return meshes_[node] = std::shared_ptr<TriObject>(mesh.release(), end);
}

void MeshCache::Empty() {
    std::exchange(meshes_, {});
}
