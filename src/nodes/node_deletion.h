#pragma once

#include <vector>

#include "host/node.h"
#include "tvl/core_element.h"

// The host's announcement that selected nodes are about to be deleted. While it runs, a Delete of
// the Core's leaves the host nodes of the table to the host.
struct DeletionState {
    INodeTab* deletingNodes = nullptr;              // the host's; null outside the announcement
    std::vector<TVL::CoreElement*> notifiedOwners;  // told already in this announcement
};

// The adaptor's announcement.
DeletionState& DeletionInProgress();

// Whether the host is about to delete this node by itself.
bool IsBeingDeletedByHost(INode* hostNode);

// Puts the host's default transform controller on a node that has a TransformControl.
void ConvertTransformController(INode* hostNode);

// Takes the adaptor's own controllers off a node that goes back to the host: its TransformControl,
// and the ScalarControls among the parameters of its object.
void RevertControllers(INode* hostNode);
