#pragma once

#include <optional>
#include <utility>
#include <vector>

#include "host/interface.h"
#include "persistence/scene/state_format.h"

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

// The tag in the node's property. A damaged text gives what could be read of it, an emptied one
// an empty node.
inline std::optional<XMLNode> TagOn(INode& node) {
    HostString text;
    if (!node.UserPropExists(kNodeTag) || !node.GetUserPropString(kNodeTag, text)) return {};
    return std::optional<XMLNode>(std::in_place, text);
}
