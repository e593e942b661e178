#pragma once

#include "host/object.h"
#include "nodes/max_node.h"

class CustomHelperObject;

// The look and the geometry of a guide object: a host triangle mesh, or a CustomHelperObject, which
// keeps its mesh. It does nothing once the host node is gone or shows another object than at
// acquisition.
// The order of the fields is part of the contract.
class CMAXNode::CMAXSnapshot_Helper final : public TVL::CoreNode::Snapshot_Helper,
                                            public OrphanedSnapshot {
  public:
    explicit CMAXSnapshot_Helper(CMAXNode& lender);

    // For an object that has no node yet: the caller's, for the moment of its making.
    explicit CMAXSnapshot_Helper(Object* object) : hostObject(object) {}

    void Acquire(CMAXNode& lender, Object* object);
    void Release() { acquired = false; }
    bool IsAcquired() const { return acquired; }

    // The node has died.
    void LoseNode();

    // SetMesh, where an exception is heard of.
    void Write(const TVL::CMesh& mesh);

    void SetMesh(TVL::CMesh mesh) override;
    void SetColor(float red, float green, float blue) override;
    void SetWireframe(bool wireframe) override;
    void SetBackfaceCull(bool backfaceCull) override;

  private:
    Object* LiveObject() const;
    INode* LiveNode() const;  // null: gone, or shows another object
    CustomHelperObject* LiveHelper() const;

    Object* hostObject = nullptr;  // the host's; used only as LiveObject tells
    HostNodeLink hostNode;
};
