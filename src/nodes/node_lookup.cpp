#include "nodes/node_lookup.h"

#include <algorithm>

#include "nodes/max_node.h"
#include "nodes/node_list.h"

namespace {

CMAXNode* FindAt(const INode* hostNode, bool mayBeGone) {
    const auto found = AdaptorNodes().byHost.find(hostNode);
    if (!hostNode || found == AdaptorNodes().byHost.end()) return nullptr;
    const std::vector<CMAXNode*>& nodes = found->second;
    const auto present = std::ranges::find_if(nodes, &CMAXNode::HostNode);
    if (present != nodes.end()) return *present;
    return mayBeGone ? nodes.front() : nullptr;
}

}  // namespace

CMAXNode* FindRealNode(const INode* hostNode) {
    return FindAt(hostNode, false);
}

CMAXNode* FindAnnouncedNode(const INode* hostNode) {
    return FindAt(hostNode, true);
}
