#include "replay_core/state/node_book.h"

#include <algorithm>

namespace replay {

bool NodeBook::Has(const TVL::CNode* node) const {
    return std::ranges::find(nodes_, node) != nodes_.end();
}

void NodeBook::OnNodeRemoved(TVL::CNode* node) {
    std::erase(nodes_, node);
}

void NodeBook::OnNodeRestored(TVL::CNode* node) {
    if (!Has(node)) nodes_.push_back(AsCoreNode(node));
}

void NodeBook::MakeRoom(std::size_t newNodes) {
    const std::size_t all = nodes_.size() + newNodes;
    if (nodes_.capacity() < all) nodes_.reserve(std::max(all, 2 * nodes_.size()));
}

}  // namespace replay
