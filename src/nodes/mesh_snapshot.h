#pragma once

#include <array>
#include <variant>

#include "host/types.h"
#include "nodes/max_node.h"
#include "nodes/mesh_cache.h"
#include "nodes/shown_object.h"

// A node's geometry at the time of acquisition, in object space and host units. It has no mesh if
// the object cannot become triangles, once the host node is gone, and once whoever owned the mesh
// has ended it: an empty mesh is read, a write does nothing, no ray hits.
class CMAXNode::CMAXSnapshot_Mesh final : public TVL::CoreNode::Snapshot_Mesh,
                                          public OrphanedSnapshot {
  public:
    explicit CMAXSnapshot_Mesh(CMAXNode& lender);

    // Converts the node at the tick unless the cache has its mesh. With a cache a new conversion is
    // left to it; without one it belongs to this snapshot until the next acquisition.
    void Acquire(CMAXNode& lender, TimeValue ticks, MeshCache* cache);
    void Release() { acquired = false; }
    bool IsAcquired() const { return acquired; }

    // The node has died.
    void LoseNode();

    // Writes to the mesh at hand: what the node shows changes only if its object is a triangle mesh
    // itself.
    void SetMesh(TVL::CMesh mesh) override;
    TVL::CMesh GetMesh() override;
    bool IntersectRay(const std::array<double, 3>& origin, const std::array<double, 3>& direction,
                      double* distance, std::array<double, 3>* normal) override;

  private:
    // What the host's evaluation gives, where that is a triangle mesh already. The host may rebuild
    // or free it at any time, so it is evaluated at each use, as long as the node shows the same
    // object.
    struct EvaluatedMesh {
        ShownObject shown;
        TimeValue ticks = 0;
    };

    void Refresh(TimeValue ticks, MeshCache* cache);
    TriObject* LiveMesh() const;

    // The snapshot owns the last alternative alone.
    std::variant<std::monostate, EvaluatedMesh, CachedMesh, ConvertedMesh> meshObject;
    HostNodeLink hostNode;
};
