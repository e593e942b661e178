#pragma once

#include <cstdint>
#include <map>
#include <string_view>
#include <utility>
#include <vector>

#include "nodes/host_node_link.h"
#include "tvl/node.h"

class CMAXNode;

// The real nodes of the adaptor, in order of creation, each at most once. The list does not own
// them: a node ends by Delete, by the undo record that holds it, or by the Core's Destroy, and
// takes itself out. They are found by what they stand for, by owner, and by owner and name, so that
// a Core can make, claim and delete the nodes of a large scene one by one.
struct NodeList {
    // Each by its key and the number of its listing: those of one key in the order of their
    // listings.
    template <class Key>
    using By = std::map<std::pair<Key, std::uint64_t>, CMAXNode*>;
    using InOrder = std::map<std::uint64_t, CMAXNode*>;
    using ByHost = By<const INode*>;  // compared, never followed
    using ByName = By<std::pair<const TVL::CoreElement*, std::string_view>>;

    InOrder nodes;
    ByHost byHost;
    ByName byName;  // the nodes' own names; those of an owner follow each other, by name

    // Goes on in the next adaptor's list, which a walk over this one may meet while it runs.
    static inline std::uint64_t lastNumber = 0;

    // What the scene node bears of a node that leaves the list is to go; null while it bears
    // nothing.
    void (*clearHostNode)(INode& host) = nullptr;

    // Counts what can have brought nodes with properties on them into the scene, or back into it:
    // copies, merging, undo.
    std::uint64_t arrivals = 0;

    // Claims of nodes that were there to be claimed, and that came to nothing.
    std::uint64_t lostClaims = 0;
};

// A node's place in the list, kept in the node. While the node is out it has the entries with which
// it comes back, so that no undo loses it for want of memory.
struct NodeListing {
    std::uint64_t number = 0;                 // 0: not listed
    const TVL::CoreElement* owner = nullptr;  // whose node it was when it was listed

    NodeList::InOrder::node_type inOrder;
    NodeList::ByHost::node_type byHost;
    NodeList::ByName::node_type byName;
};

// The adaptor's list.
NodeList& AdaptorNodes();

bool IsListed(const CMAXNode* node);

// Appends a node that is not listed yet. One that was listed before needs no memory.
void ListNode(CMAXNode* node);

// Takes a node out, the order of the rest staying; one that is not listed is ignored.
void UnlistNode(CMAXNode* node);

// The first real node that stands for a scene node of the host; null if there is none. The pointer
// is compared and never followed: the node is in the scene, or, where it may be gone, was there
// when the host announced it.
CMAXNode* FindRealNode(const INode* hostNode);
CMAXNode* FindAnnouncedNode(const INode* hostNode);

// The first real node of this owner and this name (the Core's name, not the host's), or null.
TVL::CNode* FindNode(const TVL::CoreElement* owner, std::string_view name);

// All real nodes of this owner, in order of creation.
std::vector<TVL::CNode*> GetNodes(const TVL::CoreElement* owner);

// Whether there are any. The pointer is compared and never followed: the owner may be gone.
bool OwnsNodes(const TVL::CoreElement* owner);

// Visits the nodes in order. They may come and go meanwhile, and the adaptor with them; who comes
// is visited too.
template <class Visit>
void ForEachListedNode(Visit visit) {
    const auto next = [](std::uint64_t number) { return AdaptorNodes().nodes.upper_bound(number); };
    for (auto at = next(0); at != AdaptorNodes().nodes.end();) {
        const std::uint64_t number = at->first;
        visit(*at->second);
        at = next(number);
    }
}
