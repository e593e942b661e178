#include "nodes/node_list.h"

#include <algorithm>

#include "foundation/thrown.h"
#include "nodes/max_node.h"

bool IsListed(const CMAXNode* node) {
    const auto& byHost = AdaptorNodes().byHost;
    const auto sameHost = byHost.find(node->HostLink().Pointer());
    return sameHost != byHost.end() &&
           std::ranges::find(sameHost->second, node) != sameHost->second.end();
}

void ListNode(CMAXNode* node) {
    if (IsListed(node)) return;
    AdaptorNodes().byHost[node->HostLink().Pointer()].push_back(node);
    try {
        AdaptorNodes().nodes.push_back(node);
    } catch (...) {
        UnlistNode(node);
        throw;
    }
}

// A node that dies cannot fail to go for want of memory.
void UnlistNode(CMAXNode* node) {
    if (!IsListed(node)) return;
    const auto clear = AdaptorNodes().clearHostNode;
    INode* const host = clear ? node->HostNode() : nullptr;
    const auto thrown = TVL::ThrownBy([&] {
        if (host) clear(*host);
    });
    if (thrown) TVL::TraceThrown("the clearing of a tag", *thrown);
    std::erase(AdaptorNodes().nodes, node);
    const auto sameHost = AdaptorNodes().byHost.find(node->HostLink().Pointer());
    std::erase(sameHost->second, node);
    if (sameHost->second.empty()) AdaptorNodes().byHost.erase(sameHost);
}
