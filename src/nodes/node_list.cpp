#include "nodes/node_list.h"

#include <utility>

#include "foundation/thrown.h"
#include "nodes/max_node.h"

bool IsListed(const CMAXNode* node) {
    return node->Listing().number != 0;
}

void ListNode(CMAXNode* node) {
    if (IsListed(node)) return;
    NodeList& list = AdaptorNodes();
    const NodeListing listing{++list.lastNumber, node->Owner()};
    node->Listing() = listing;
    try {
        list.nodes.emplace(listing.number, node);
        list.byHost[node->HostLink().Pointer()].push_back(node);
        NodeList::OfOwner& ofOwner = list.byOwner[listing.owner];
        ofOwner.nodes.emplace(listing.number, node);
        ofOwner.byName[node->NodeName()].emplace(listing.number, node);
    } catch (...) {
        UnlistNode(node);
        throw;
    }
}

// A node that dies cannot fail to go for want of memory.
void UnlistNode(CMAXNode* node) {
    if (!IsListed(node)) return;
    const auto thrown = TVL::ThrownBy([node] {
        const auto clear = AdaptorNodes().clearHostNode;
        INode* const host = clear ? node->HostNode() : nullptr;
        if (host) clear(*host);
    });
    if (thrown) TVL::TraceThrown("the clearing of a tag", *thrown);
    NodeList& list = AdaptorNodes();
    const NodeListing listing = std::exchange(node->Listing(), {});
    list.nodes.erase(listing.number);
    if (const auto sameHost = list.byHost.find(node->HostLink().Pointer());
        sameHost != list.byHost.end()) {
        std::erase(sameHost->second, node);
        if (sameHost->second.empty()) list.byHost.erase(sameHost);
    }
    const auto sameOwner = list.byOwner.find(listing.owner);
    if (sameOwner == list.byOwner.end()) return;
    auto& [ofOwner, byName] = sameOwner->second;
    ofOwner.erase(listing.number);
    if (const auto sameName = byName.find(node->NodeName()); sameName != byName.end()) {
        sameName->second.erase(listing.number);
        if (sameName->second.empty()) byName.erase(sameName);
    }
    if (ofOwner.empty()) list.byOwner.erase(sameOwner);
}
