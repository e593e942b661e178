#include "persistence/scene/scene_state.h"

#include <map>

#include "core_link/core_link.h"
#include "nodes/max_node.h"
#include "nodes/node_list.h"
#include "tvl/xml_node.h"

namespace {

// Extension of an owner: the scene is being saved.
constexpr int kSavingExtension = 56;

XMLNode Element(const char* name) {
    XMLNode element;
    element.kind = XMLNode::kElement;
    element.name = name;
    return element;
}

// One child "masternode" for each stored part of the owner.
XMLNode StateOf(TVL::CoreElement& owner) {
    XMLNode state = Element("masternodes");
    owner.HandleExtension(kSavingExtension, &state);
    return state;
}

XMLNode TagOf(const CMAXNode& node, const TVL::CoreElement& owner) {
    XMLNode tag = Element("TVL_tag");
    tag.AddChild(XMLNode("name", owner.plugin ? owner.plugin->name : std::string()));
    tag.AddChild(XMLNode("objectname", node.NodeName()));
    return tag;
}

}  // namespace

// A node whose host node is gone cannot carry its owner's state, and leaves that to the next one.
void StoreSceneState() {
    std::map<TVL::CoreElement*, bool> hasState;
    const std::vector<CMAXNode*>& nodes = AdaptorNodes().nodes;
    for (std::size_t index = 0; index < nodes.size(); ++index) {
        CMAXNode& node = *nodes[index];
        TVL::CoreElement* const owner = node.Owner();
        INode* const host = node.HostNode();
        if (!owner || !host || node.IsSnapshot()) continue;
        XMLNode tag = TagOf(node, *owner);
        if (!hasState.contains(owner)) {
            const XMLNode state = StateOf(*owner);
            for (const auto& part : state.children)
                tag.AddChild(*part);
            hasState[owner] = !state.children.empty();
        }
        if (hasState[owner]) host->SetUserPropString(kNodeTagProperty, tag.Write());
    }
}

void ClearNodeTags() {
    for (const CMAXNode* node : AdaptorNodes().nodes) {
        if (INode* const host = node->HostNode()) host->SetUserPropString(kNodeTagProperty, "");
    }
}

void GatherSceneState() {
    if (CoreInterface* const core = AttachedCore()) core->SetCoreState(Element("TVL"));
}
