#include "nodes/node_lookup.h"

#include "nodes/max_node.h"
#include "nodes/node_list.h"

CMAXNode* FindRealNode(INode* hostNode) {
    const HostNodeLink wanted(hostNode);
    if (!wanted.IsSet()) return nullptr;
    for (CMAXNode* node : AdaptorNodes().nodes)
        if (node->HostLink() == wanted) return node;
    return nullptr;
}
