#pragma once

#include "tvl/node.h"

namespace replay {

// A snapshot of any kind for as long as a block lasts. Empty if the node lends none of the kind.
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

}  // namespace replay
