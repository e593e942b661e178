#include "nodes/node_lookup.h"

#include "nodes/max_node.h"
#include "nodes/node_list.h"

CMAXNode* FindRealNode(INode* hostNode) {
    const HostNodeLink wanted(hostNode);
    if (!wanted.IsSet()) return nullptr;
    const auto& byHost = AdaptorNodes().byHost;
    const auto found = byHost.find(wanted);
    return found == byHost.end() ? nullptr : found->second.front();
}
