#include "nodes/node_list.h"

#include <algorithm>
#include <utility>

#include "foundation/thrown.h"
#include "nodes/max_node.h"

namespace {

CMAXNode* FindAt(const INode* hostNode, bool mayBeGone) {
    const auto found = AdaptorNodes().byHost.find(hostNode);
    if (!hostNode || found == AdaptorNodes().byHost.end()) return nullptr;
    const std::vector<CMAXNode*>& nodes = found->second;
    const auto present = std::ranges::find_if(nodes, &CMAXNode::HostNode);
    if (present != nodes.end()) return *present;
    return mayBeGone ? nodes.front() : nullptr;
}

// Takes something out of an entry, which goes when it holds nothing any more.
template <class Map, class Key, class Take>
void TakeOut(Map& map, const Key& key, Take take) {
    const auto entry = map.find(key);
    if (entry == map.end()) return;
    take(entry->second);
    if (entry->second.empty()) map.erase(entry);
}

}  // namespace

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
    TakeOut(list.byHost, node->HostLink().Pointer(), [&](auto& same) { std::erase(same, node); });
    TakeOut(list.byOwner, listing.owner, [&](NodeList::OfOwner& owned) {
        owned.nodes.erase(listing.number);
        TakeOut(owned.byName, node->NodeName(), [&](auto& same) { same.erase(listing.number); });
    });
}

CMAXNode* FindRealNode(const INode* hostNode) {
    return FindAt(hostNode, false);
}

CMAXNode* FindAnnouncedNode(const INode* hostNode) {
    return FindAt(hostNode, true);
}

TVL::CNode* FindNode(const TVL::CoreElement* owner, std::string_view name) {
    const auto& byOwner = AdaptorNodes().byOwner;
    const auto ofOwner = byOwner.find(owner);
    if (ofOwner == byOwner.end()) return nullptr;
    const auto found = ofOwner->second.byName.find(std::string(name));
    return found == ofOwner->second.byName.end() ? nullptr : found->second.begin()->second;
}

std::vector<TVL::CNode*> GetNodes(const TVL::CoreElement* owner) {
    std::vector<TVL::CNode*> found;
    const auto& byOwner = AdaptorNodes().byOwner;
    const auto ofOwner = byOwner.find(owner);
    if (ofOwner == byOwner.end()) return found;
    for (const auto& [number, node] : ofOwner->second.nodes)
        found.push_back(node);
    return found;
}
