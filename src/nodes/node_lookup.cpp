#include "nodes/node_lookup.h"

#include "nodes/max_node.h"
#include "nodes/node_list.h"

CMAXNode* FindRealNode(INode* hostNode) {
    for (CMAXNode* node : AdaptorNodes().nodes)
        if (node->StandsFor(hostNode)) return node;
    return nullptr;
}
