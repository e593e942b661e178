#pragma once

#include "replay/recording.h"
#include "tvl/node.h"
#include "tvl/snapshot.h"

namespace replay {

// A snapshot of any kind for as long as a block lasts, at a time of the scene. Empty if the node
// lends none of the kind.
template <class Snapshot>
class SnapshotLoan {
  public:
    using Release = void (TVL::CoreNode::*)(Snapshot*);

    SnapshotLoan(TVL::CoreNode& node, Snapshot* lent, Release release)
        : node_(node), snapshot_(lent), release_(release) {}
    ~SnapshotLoan() {
        if (snapshot_) (node_.*release_)(snapshot_);
    }
    SnapshotLoan(const SnapshotLoan&) = delete;
    SnapshotLoan& operator=(const SnapshotLoan&) = delete;

    explicit operator bool() const { return snapshot_ != nullptr; }
    Snapshot* operator->() const { return snapshot_; }
    Snapshot& operator*() const { return *snapshot_; }

  private:
    TVL::CoreNode& node_;
    Snapshot* snapshot_;  // the node's
    Release release_;
};

// A transform snapshot on loan. Empty if the host node is gone.
class TransformLoan : public SnapshotLoan<TVL::CSnapshot> {
  public:
    TransformLoan(TVL::CoreNode& node, double seconds)
        : SnapshotLoan(node, node.AcquireSnapshot(HostSeconds(seconds)),
                       &TVL::CoreNode::ReleaseSnapshot) {}
};

// A lens snapshot on loan. Empty if the node is no camera.
class LensLoan : public SnapshotLoan<TVL::CSnapshot_Lens> {
  public:
    LensLoan(TVL::CoreNode& node, double seconds)
        : SnapshotLoan(node, node.AcquireLensSnapshot(HostSeconds(seconds)),
                       &TVL::CoreNode::ReleaseLensSnapshot) {}
};

class MeshLoan : public SnapshotLoan<TVL::CSnapshot_Mesh> {
  public:
    MeshLoan(TVL::CoreNode& node, double seconds)
        : SnapshotLoan(node, node.AcquireMeshSnapshot(HostSeconds(seconds)),
                       &TVL::CoreNode::ReleaseMeshSnapshot) {}
};

class ShapeLoan : public SnapshotLoan<TVL::CSnapshot_Shape> {
  public:
    ShapeLoan(TVL::CoreNode& node, double seconds)
        : SnapshotLoan(node, node.AcquireShapeSnapshot(HostSeconds(seconds)),
                       &TVL::CoreNode::ReleaseShapeSnapshot) {}
};

}  // namespace replay
