#pragma once

#include "tvl/node.h"
#include "tvl/snapshot.h"

namespace replay {

// A transform snapshot for as long as a block lasts. Empty if the node lends none, as one whose
// host node is gone.
class TransformLoan {
  public:
    TransformLoan(TVL::CoreNode& node, double seconds)
        : node_(node), snapshot_(node.AcquireSnapshot(seconds)) {}
    ~TransformLoan() {
        if (snapshot_) node_.ReleaseSnapshot(snapshot_);
    }
    TransformLoan(const TransformLoan&) = delete;
    TransformLoan& operator=(const TransformLoan&) = delete;

    explicit operator bool() const { return snapshot_ != nullptr; }
    TVL::CSnapshot* operator->() const { return snapshot_; }

  private:
    TVL::CoreNode& node_;
    TVL::CSnapshot* snapshot_;  // the node's
};

}  // namespace replay
