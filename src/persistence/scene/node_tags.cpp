#include "persistence/scene/node_tags.h"

#include <cstddef>
#include <unordered_map>

#include "nodes/max_node.h"
#include "nodes/node_list.h"
#include "persistence/scene/state_format.h"

namespace {

// Extension of an owner: the scene is being saved.
constexpr int kSavingExtension = 56;

struct OwnerState {
    XMLNode parts;           // one child for each stored part of the owner
    bool isWritten = false;  // on the owner's first node
};
using OwnerStates = std::unordered_map<TVL::CoreElement*, OwnerState>;

// A node whose host node is gone cannot carry its owner's state, and leaves that to the next one.
bool CarriesTag(CMAXNode& node) {
    return node.Owner() && node.HostNode() && !node.IsSnapshot();
}

// False if there is no owner in the list that has not been asked yet.
bool AskNewOwners(OwnerStates& states) {
    bool isAnyNew = false;
    const std::vector<CMAXNode*>& nodes = AdaptorNodes().nodes;
    for (std::size_t index = 0; index < nodes.size(); ++index) {
        CMAXNode& node = *nodes[index];
        if (!CarriesTag(node)) continue;
        TVL::CoreElement* const owner = node.Owner();
        const auto [entry, isNew] = states.try_emplace(owner);
        if (!isNew) continue;
        isAnyNew = true;
        XMLNode parts = Element("masternodes");
        owner->HandleExtension(kSavingExtension, &parts);
        entry->second.parts.Swap(parts);
    }
    return isAnyNew;
}

// An owner may create, delete or merge nodes while it answers. What moves in the list then can slip
// past one walk, so they go on until one meets nobody new.
OwnerStates AskOwners() {
    OwnerStates states;
    while (AskNewOwners(states)) {
    }
    return states;
}

XMLNode TagOf(const CMAXNode& node, OwnerState& state) {
    const TVL::PluginRecord* const plugin = node.Owner()->plugin;
    XMLNode tag = Element(kNodeTag);
    tag.AddChild(XMLNode(kNameElement, plugin ? plugin->name : std::string()));
    tag.AddChild(XMLNode(kObjectNameElement, node.NodeName()));
    if (state.isWritten) return tag;
    state.isWritten = true;
    for (const auto& part : state.parts.children)
        tag.AddChild(*part);
    return tag;
}

}  // namespace

// All owners answer before the first tag is written, so that whatever they do meanwhile meets no
// scene with half of its tags.
void StoreSceneState() {
    OwnerStates states = AskOwners();
    for (CMAXNode* node : AdaptorNodes().nodes) {
        if (!CarriesTag(*node)) continue;
        const auto state = states.find(node->Owner());
        if (state == states.end() || state->second.parts.children.empty()) continue;
        node->HostNode()->SetUserPropString(kNodeTag, TagOf(*node, state->second).Write());
    }
}

void ClearNodeTags() {
    for (const CMAXNode* node : AdaptorNodes().nodes) {
        if (INode* const host = node->HostNode()) ClearNodeTag(*host);
    }
}

void ClearNodeTag(INode& hostNode) {
    hostNode.SetUserPropString(kNodeTag, "");
}
