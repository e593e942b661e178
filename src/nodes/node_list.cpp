#include "nodes/node_list.h"

#include <limits>

#include "foundation/thrown.h"
#include "nodes/max_node.h"

namespace {

// The entries of one key, in the order of their listings.
template <class Map, class Key>
auto EntriesOf(const Map& map, const Key& key) {
    constexpr std::uint64_t kAny = 0;  // less than every number
    struct Entries {
        typename Map::const_iterator first, last;
        auto begin() const { return first; }
        auto end() const { return last; }
    };
    const auto last = std::numeric_limits<std::uint64_t>::max();
    return Entries{map.lower_bound({key, kAny}), map.upper_bound({key, last})};
}

CMAXNode* FindAt(const INode* hostNode, bool mayBeGone) {
    CMAXNode* first = nullptr;
    if (!hostNode) return nullptr;
    for (const auto& [place, node] : EntriesOf(AdaptorNodes().byHost, hostNode)) {
        if (node->HostNode()) return node;
        if (!first) first = node;
    }
    return mayBeGone ? first : nullptr;
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
    if (!listing.byOwner) listing.byOwner = NewEntry<NodeList::ByOwner>(node);
    if (!listing.byName) listing.byName = NewEntry<NodeList::ByName>(node);

    NodeList& list = AdaptorNodes();
    const std::uint64_t number = listing.number = ++list.lastNumber;
    listing.owner = node->Owner();
    Insert(list.nodes, listing.inOrder, number);
    Insert(list.byHost, listing.byHost, std::pair(node->HostLink().Pointer(), number));
    Insert(list.byOwner, listing.byOwner, std::pair(listing.owner, number));
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
    listing.byOwner = list.byOwner.extract({listing.owner, number});
    listing.byName = list.byName.extract({{listing.owner, node->NodeName()}, number});
}

CMAXNode* FindRealNode(const INode* hostNode) {
    return FindAt(hostNode, false);
}

CMAXNode* FindAnnouncedNode(const INode* hostNode) {
    return FindAt(hostNode, true);
}

TVL::CNode* FindNode(const TVL::CoreElement* owner, std::string_view name) {
    for (const auto& [place, node] : EntriesOf(AdaptorNodes().byName, std::pair(owner, name)))
        return node;
    return nullptr;
}

std::vector<TVL::CNode*> GetNodes(const TVL::CoreElement* owner) {
    std::vector<TVL::CNode*> found;
    for (const auto& [place, node] : EntriesOf(AdaptorNodes().byOwner, owner))
        found.push_back(node);
    return found;
}

bool OwnsNodes(const TVL::CoreElement* owner) {
    const auto nodes = EntriesOf(AdaptorNodes().byOwner, owner);
    return nodes.first != nodes.last;
}
