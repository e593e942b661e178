#pragma once

#include <unordered_map>
#include <unordered_set>

#include "host/node.h"
#include "tvl/core_element.h"

// The host's announcement that selected nodes are about to be deleted. While it runs, a Delete of
// the Core's leaves the host nodes of the table to the host.
struct DeletionState {
    DeletionState() = default;
    explicit DeletionState(INodeTab& table) : deletingNodes(&table) {}

    INodeTab* deletingNodes = nullptr;  // the host's; null outside the announcement
    std::unordered_set<const TVL::CoreElement*> notifiedOwners;  // told in this announcement

    // Where each node stands in the table, as it was when it had `placesOf` entries.
    std::unordered_map<const INode*, int> places;
    int placesOf = -1;
};

// The adaptor's announcement.
DeletionState& DeletionInProgress();

// Whether the host is about to delete this node by itself.
bool IsBeingDeletedByHost(INode* hostNode);

// Takes a scene node out again that was made for the Core and does not get there. What the host
// throws at that is left to the trace.
void TakeBackHostNode(INode* hostNode) noexcept;

// Puts the host's default transform controller on a node that has a TransformControl.
void ConvertTransformController(INode* hostNode);

// Takes the adaptor's own controllers off a node that goes back to the host: its TransformControl,
// and the ScalarControls among the parameters of its object.
void RevertControllers(INode* hostNode);
