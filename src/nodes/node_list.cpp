#include "nodes/node_list.h"

#include <algorithm>

#include "foundation/thrown.h"
#include "nodes/max_node.h"

namespace {

constexpr std::uint64_t kAny = 0;  // less than every number

CMAXNode* FindAt(const INode* hostNode, bool mayBeGone) {
    if (!hostNode) return nullptr;
    const NodeList::ByHost& all = AdaptorNodes().byHost;
    const auto first = all.lower_bound({hostNode, kAny});
    const auto isOne = [&](auto at) { return at != all.end() && at->first.first == hostNode; };
    for (auto at = first; isOne(at); ++at) {
        if (at->second->HostNode()) return at->second;
    }
    return mayBeGone && isOne(first) ? first->second : nullptr;
}

// The owner's first entry by name, or that of the next owner.
NodeList::ByName::const_iterator FirstOf(const TVL::CoreElement* owner) {
    return AdaptorNodes().byName.lower_bound({{owner, {}}, kAny});
}

bool IsOf(const TVL::CoreElement* owner, NodeList::ByName::const_iterator at) {
    return at != AdaptorNodes().byName.end() && at->first.first.first == owner;
}

template <class Map>
auto NewEntry(CMAXNode* node) {
    Map map;
    map.emplace(typename Map::key_type(), node);
    return map.extract(map.begin());
}

template <class Map, class Key>
void Insert(Map& map, typename Map::node_type& entry, const Key& key) {
    entry.key() = key;
    map.insert(std::move(entry));
}

}  // namespace

bool IsListed(const CMAXNode* node) {
    return node->Listing().number != 0;
}

void ListNode(CMAXNode* node) {
    if (IsListed(node)) return;
    NodeListing& listing = node->Listing();
    if (!listing.inOrder) listing.inOrder = NewEntry<NodeList::InOrder>(node);
    if (!listing.byHost) listing.byHost = NewEntry<NodeList::ByHost>(node);
    if (!listing.byName) listing.byName = NewEntry<NodeList::ByName>(node);

    NodeList& list = AdaptorNodes();
    const std::uint64_t number = listing.number = ++NodeList::lastNumber;
    listing.owner = node->Owner();
    Insert(list.nodes, listing.inOrder, number);
    Insert(list.byHost, listing.byHost, std::pair(node->HostLink().Pointer(), number));
    Insert(list.byName, listing.byName,
           std::pair(std::pair(listing.owner, std::string_view(node->NodeName())), number));
}

void UnlistNode(CMAXNode* node) {
    if (!IsListed(node)) return;
    TVL::TraceIfThrown("the clearing of a tag", [node] {
        const auto clear = AdaptorNodes().clearHostNode;
        INode* const host = clear ? node->HostNode() : nullptr;
        if (host) clear(*host);
    });
    NodeList& list = AdaptorNodes();
    NodeListing& listing = node->Listing();
    const std::uint64_t number = std::exchange(listing.number, 0);
    listing.inOrder = list.nodes.extract(number);
    listing.byHost = list.byHost.extract({node->HostLink().Pointer(), number});
    listing.byName = list.byName.extract({{listing.owner, node->NodeName()}, number});
}

CMAXNode* FindRealNode(const INode* hostNode) {
    return FindAt(hostNode, false);
}

CMAXNode* FindAnnouncedNode(const INode* hostNode) {
    return FindAt(hostNode, true);
}

TVL::CNode* FindNode(const TVL::CoreElement* owner, std::string_view name) {
    const auto first = AdaptorNodes().byName.lower_bound({{owner, name}, kAny});
    return IsOf(owner, first) && first->first.first.second == name ? first->second : nullptr;
}

std::vector<TVL::CNode*> GetNodes(const TVL::CoreElement* owner) {
    std::vector<std::pair<std::uint64_t, TVL::CNode*>> listed;
    for (auto at = FirstOf(owner); IsOf(owner, at); ++at)
        listed.emplace_back(at->first.second, at->second);
    std::ranges::sort(listed);
    std::vector<TVL::CNode*> found;
    for (const auto& [number, node] : listed)
        found.push_back(node);
    return found;
}

bool OwnsNodes(const TVL::CoreElement* owner) {
    return IsOf(owner, FirstOf(owner));
}
