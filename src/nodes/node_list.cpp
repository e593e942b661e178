#include "nodes/node_list.h"

#include <algorithm>

bool IsListed(const CMAXNode* node) {
    return std::ranges::find(AdaptorNodes().nodes, node) != AdaptorNodes().nodes.end();
}

void ListNode(CMAXNode* node) {
    if (!IsListed(node)) AdaptorNodes().nodes.push_back(node);
}

void UnlistNode(CMAXNode* node) {
    std::erase(AdaptorNodes().nodes, node);
}
