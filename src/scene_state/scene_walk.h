#pragma once

#include <vector>

#include "host/interface.h"

// Visits the root of the scene and every node in it, a parent before its children, children in
// their order. Scenes can be deep, so nothing recurses.
template <class Visit>
void WalkScene(Visit visit) {
    std::vector<INode*> pending = {GetCOREInterface()->GetRootNode()};
    while (!pending.empty()) {
        INode& node = *pending.back();
        pending.pop_back();
        visit(node);
        for (int index = node.NumberOfChildren(); index-- > 0;)
            pending.push_back(node.GetChildNode(index));
    }
}
