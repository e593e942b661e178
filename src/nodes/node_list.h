#pragma once

#include <unordered_map>
#include <vector>

#include "nodes/host_node_link.h"

class CMAXNode;

// The real nodes of the adaptor, in order of creation, each at most once. The list does not own
// them: a node ends by Delete, by the undo record that holds it, or by the Core's Destroy, and
// takes itself out.
struct NodeList {
    std::vector<CMAXNode*> nodes;

    // The same nodes by the pointers to what they stand for, in the same order, so that a Core can
    // claim the nodes of a large scene one by one. The pointers are compared and never followed.
    std::unordered_map<const INode*, std::vector<CMAXNode*>> byHost;

    // What the scene node bears of a node that leaves the list is to go; null while it bears
    // nothing.
    void (*clearHostNode)(INode& host) = nullptr;
};

// The adaptor's list.
NodeList& AdaptorNodes();

bool IsListed(const CMAXNode* node);

// Appends a node that is not listed yet.
void ListNode(CMAXNode* node);

// Takes a node out, the order of the rest staying; one that is not listed is ignored.
void UnlistNode(CMAXNode* node);
