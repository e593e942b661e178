#include "replay_core/state/node_book.h"

#include <algorithm>

#include "replay_core/state/core_node.h"
#include "replay_core/state/guarded.h"

namespace replay {

bool NodeBook::Has(const TVL::CNode* node) const {
    return std::ranges::find(nodes_, node) != nodes_.end();
}

void NodeBook::OnNodeRemoved(TVL::CNode* node) {
    std::erase(nodes_, node);
}

void NodeBook::OnNodeRestored(TVL::CNode* node) {
    LogFault(Guarded([&] {
        if (!Has(node)) nodes_.push_back(AsCoreNode(node));
    }));
}

}  // namespace replay
