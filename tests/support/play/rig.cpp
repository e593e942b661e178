#include "support/play/rig.h"

#include <utility>

namespace play {

Rig::Rig(std::string name, World& world) : record_{std::move(name)}, world_(world) {
    plugin = &record_;
}

std::intptr_t Rig::HandleExtension(int id, void* argument) {
    if (id == 43) LetGo();
    if (id == 56) Store(*static_cast<XMLNode*>(argument));
    if (onMoment) onMoment(id == 43 ? "deletion" : "saving");
    return 0;
}

void Rig::Hear(TVL::CNode* node, bool restored) {
    heard[node] = restored;
    if (onMoment) onMoment(restored ? "restored" : "removed");
}

std::vector<TVL::CoreNode*> Rig::Nodes() {
    std::vector<TVL::CoreNode*> nodes;
    for (TVL::CNode* node : world_.Adaptor().GetNodes(this))
        nodes.push_back(static_cast<TVL::CoreNode*>(node));
    return nodes;
}

// The listener may act meanwhile, so the list is read anew for each node.
void Rig::LetGo() {
    world_.Adaptor().BeginUndoGroup("let go");
    for (std::size_t left = Nodes().size(); left > 0 && !Nodes().empty(); --left)
        Nodes().back()->Delete(true);
    world_.Adaptor().EndUndoGroup();
}

void Rig::Drop() {
    for (TVL::CoreNode* node : Nodes())
        node->Destroy();
    heard.clear();
}

void Rig::Store(XMLNode& masters) {
    XMLNode info("<nodeinfo/>");
    for (const TVL::CoreNode* node : Nodes())
        info.AddChild(XMLNode("<node/>")).attributes["name"] = node->GetNodeName();
    XMLNode state("<TVL_Plugin/>");
    state.AddChild(XMLNode("name", Name()));
    state.AddChild(info);
    XMLNode master("<masternode/>");
    master.AddChild(state);
    masters.AddChild(master);
}

void Rig::Load(const XMLNode& pluginState, const std::function<std::string()>& newName) {
    const XMLNode& info = pluginState.Child("nodeinfo");
    const std::vector<TVL::CNode*> found = world_.Adaptor().ClaimNodes(Name(), info);
    for (std::size_t index = 0; index < found.size(); ++index) {
        auto* const node = static_cast<TVL::CoreNode*>(found[index]);
        if (!node) continue;
        const std::string stored = info.children[index]->attributes.at("name");
        const bool isTaken = world_.Adaptor().FindNode(this, stored) != nullptr;
        if (TVL::CoreNode* own = node->Claim(this, isTaken ? newName() : stored)) {
            own->SetListener(this);
            Forget(own);
        }
        node->Destroy();
    }
}

}  // namespace play
