#pragma once

#include <array>
#include <variant>

#include "host/object.h"
#include "host/types.h"
#include "nodes/max_node.h"
#include "nodes/mesh_cache.h"

class CustomHelperObject;

// The snapshots that a node lends, each from its pool (snapshot_pool.h). None is a copy: they ask
// the host at each call, and what is written is in the scene at once. Once the host node is gone,
// writes do nothing, and so they do where the object counts and the node shows another one.
// `Acquire` fills a snapshot for one use; `LoseHost` is called when its node has died.
// The order of the bases and of the fields is part of the contract.

// Where a node is at one tick. Without host node transforms read as the identity.
class CMAXNode::CMAXSnapshot final : public TVL::CoreNode::Snapshot, public OrphanedSnapshot {
  public:
    explicit CMAXSnapshot(CMAXNode& lender) {
        node = &lender;
        owner = lender.owner;
    }

    void Acquire(CMAXNode& lender, double time);
    void LoseHost();

    // The world transform, for the adaptor's own rooms, which hear what the host throws.
    TVL::CMatrix4 World() const;
    void PutWorld(const TVL::CMatrix4& transform);

    void SetLocalTransform(const TVL::CMatrix4& transform) override;
    TVL::CMatrix4 GetLocalTransform() override;
    TVL::CMatrix4 GetWorldTransform() override;
    void SetWorldTransform(const TVL::CMatrix4& transform) override;
    double GetTime() override { return seconds; }

  private:
    friend class SnapshotPool<CMAXSnapshot>;

    TVL::CMatrix4 HostTransform(INode& host) const;
    void SetHostTransform(INode& host, const Matrix3& transform);

    TimeValue ticks = 0;
    double seconds = 0;
    HostNodeLink hostNode;
};

// The look and the geometry of a guide object: a host triangle mesh, or a CustomHelperObject, which
// keeps its mesh.
class CMAXNode::CMAXSnapshot_Helper final : public TVL::CoreNode::Snapshot_Helper,
                                            public OrphanedSnapshot {
  public:
    explicit CMAXSnapshot_Helper(CMAXNode& lender) { node = &lender; }

    // For an object that has no node yet: the caller's, for the moment of its making.
    explicit CMAXSnapshot_Helper(Object* object) : hostObject(object) {}

    void Acquire(CMAXNode& lender, Object* object);
    void LoseHost();

    // SetMesh, where an exception is heard of.
    void Write(const TVL::CMesh& mesh);

    void SetMesh(TVL::CMesh mesh) override;
    void SetColor(float red, float green, float blue) override;
    void SetWireframe(bool wireframe) override;
    void SetBackfaceCull(bool backfaceCull) override;

  private:
    friend class SnapshotPool<CMAXSnapshot_Helper>;

    Object* LiveObject() const;
    INode* LiveNode() const;  // null: gone, or shows another object
    CustomHelperObject* LiveHelper() const;

    Object* hostObject = nullptr;  // the host's; used only as LiveObject tells
    HostNodeLink hostNode;
};

// A camera's lens at one tick. In animate mode a write becomes a key of the parameter's controller.
// Without the camera numbers read as 0.
class CMAXNode::CMAXSnapshot_Lens final : public TVL::CoreNode::Snapshot_Lens,
                                          public OrphanedSnapshot {
  public:
    explicit CMAXSnapshot_Lens(CMAXNode& lender) { node = &lender; }

    void Acquire(CMAXNode& lender, const ShownObject& camera, double time);
    void LoseHost() { hostObject = {}; }

    void SetFieldOfView(double degrees) override;
    double GetFieldOfView() override;
    int GetFieldOfViewType() override;
    void SetFieldOfViewType(int type) override;
    void SetTargetDistance(double hostUnits) override;
    double GetTargetDistance() override;
    double GetTime() override { return seconds; }
    TVL::CMatrix4 GetLensTransform() override { return TVL::CMatrix4::Identity(); }

  private:
    friend class SnapshotPool<CMAXSnapshot_Lens>;

    ShownObject hostObject;
    TimeValue ticks = 0;
    double seconds = 0;
};

// A node's geometry at the time of acquisition, in object space and host units. It has no mesh if
// the object cannot become triangles, without host node, and once whoever owned the mesh has ended
// it: an empty mesh is read, a write does nothing, no ray hits.
class CMAXNode::CMAXSnapshot_Mesh final : public TVL::CoreNode::Snapshot_Mesh,
                                          public OrphanedSnapshot {
  public:
    explicit CMAXSnapshot_Mesh(CMAXNode& lender) { node = &lender; }

    // Converts the node at the tick unless the cache has its mesh. With a cache a new conversion is
    // left to it; without one it belongs to this snapshot until the next acquisition.
    void Acquire(CMAXNode& lender, TimeValue ticks, MeshCache* cache);
    void LoseHost();

    // Writes to the mesh at hand: what the node shows changes only if its object is a triangle mesh
    // itself.
    void SetMesh(TVL::CMesh mesh) override;
    TVL::CMesh GetMesh() override;
    bool IntersectRay(const std::array<double, 3>& origin, const std::array<double, 3>& direction,
                      double* distance, std::array<double, 3>* normal) override;

  private:
    friend class SnapshotPool<CMAXSnapshot_Mesh>;

    // What the host's evaluation gives, where that is a triangle mesh already. The host may rebuild
    // or free it at any time, so it is evaluated at each use, as long as the node shows the same
    // object.
    struct EvaluatedMesh {
        ShownObject shown;
        TimeValue ticks = 0;
    };

    TriObject* LiveMesh() const;

    // The snapshot owns the last alternative alone.
    std::variant<std::monostate, EvaluatedMesh, CachedMesh, ConvertedMesh> meshObject;
    HostNodeLink hostNode;
};

// The curves of a shape at one tick. Without the shape there are none; a curve that is not there
// has length 0 and lies at the origin.
class CMAXNode::CMAXSnapshot_Shape final : public TVL::CoreNode::Snapshot_Shape,
                                           public OrphanedSnapshot {
  public:
    explicit CMAXSnapshot_Shape(CMAXNode& lender) { node = &lender; }

    // The current curve stays what was last set on this snapshot.
    void Acquire(CMAXNode& lender, const ShownObject& shape, double time);
    void LoseHost() { hostObject = {}; }

    int GetCurveCount() override;
    int GetCurve() override { return curve; }
    void SetCurve(int index) override;
    double GetCurveLength() override;
    std::array<double, 3> GetCurvePoint(double parameter) override;
    std::array<double, 3> GetCurveTangent(double parameter) override;

  private:
    friend class SnapshotPool<CMAXSnapshot_Shape>;

    int Count() const;
    std::array<double, 3> Point(double parameter) const;
    ShapeObject* ShapeWithCurve() const;  // null: the current curve is not there

    ShownObject hostObject;
    TimeValue ticks = 0;
    double seconds = 0;
    int curve = 0;
};
