#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

#include "tvl/core_element.h"
#include "tvl/node.h"

namespace replay {

// Every node that an adaptor gives out is one; null stays null.
inline TVL::CoreNode* AsCoreNode(TVL::CNode* node) {
    return static_cast<TVL::CoreNode*>(node);
}

// The nodes of one owner that are in the scene, in the order in which they came. As the listener of
// these nodes it stays right through undo and redo, whatever they bring back or take away. It must
// outlive the nodes and every undo record that names one. Whoever makes or claims nodes makes room
// for them before, so that hearing of one, or of one that comes back, cannot fail.
class NodeBook final : public TVL::NodeListener {
  public:
    void OnNodeRemoved(TVL::CNode* node) override { std::erase(nodes_, node); }
    void OnNodeRestored(TVL::CNode* node) override {
        if (!Has(node)) nodes_.push_back(AsCoreNode(node));
    }

    void MakeRoom(std::size_t newNodes) {
        const std::size_t all = nodes_.size() + newNodes;
        if (nodes_.capacity() < all) nodes_.reserve(std::max(all, 2 * nodes_.size()));
    }

    // Still the adaptor's.
    const std::vector<TVL::CoreNode*>& Nodes() const { return nodes_; }

    bool Has(const TVL::CNode* node) const {
        return std::ranges::find(nodes_, node) != nodes_.end();
    }

  private:
    std::vector<TVL::CoreNode*> nodes_;
};

}  // namespace replay
