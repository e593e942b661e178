#include "tests/support/play/rig.h"

#include <utility>

namespace play {

Rig::Rig(std::string name, World& world) : record_{std::move(name)}, world_(world) {
    plugin = &record_;
}

std::intptr_t Rig::HandleExtension(int id, void* argument) {
    const char* const moment = id == 43 ? "deletion" : "saving";
    onCall(moment);
    if (id == 43) LetGo();
    if (id == 56) Store(*static_cast<XMLNode*>(argument));
    onMoment(moment);
    return 0;
}

void Rig::Hear(TVL::CNode* node, bool restored) {
    const char* const moment = restored ? "restored" : "removed";
    onCall(moment);
    heard[node] = restored;
    if (restored) onRestored(*node);
    onMoment(moment);
}

std::vector<TVL::CoreNode*> Rig::Nodes() {
    std::vector<TVL::CoreNode*> nodes;
    for (TVL::CNode* node : world_.Adaptor().GetNodes(this))
        nodes.push_back(static_cast<TVL::CoreNode*>(node));
    return nodes;
}

void Rig::Delete(TVL::CoreNode* node, bool withHostNode) {
    if (!world_.Adaptor().IsHoldingUndo()) Forget(node);
    node->Delete(withHostNode);
}

// Nodes may come, at the end, and go meanwhile.
void Rig::LetGo() {
    world_.Adaptor().BeginUndoGroup("let go");
    for (std::size_t left = Nodes().size(); left > 0 && !Nodes().empty(); --left)
        Delete(Nodes().front(), true);
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

void Rig::Load(const XMLNode& pluginState, const NameFor& nameFor) {
    const XMLNode& info = pluginState.Child("nodeinfo");
    const std::vector<TVL::CNode*> found = world_.Adaptor().ClaimNodes(Name(), info);
    for (std::size_t index = 0; index < found.size(); ++index) {
        auto* const node = static_cast<TVL::CoreNode*>(found[index]);
        if (!node) continue;
        const std::string name = nameFor(info.children[index]->attributes.at("name"));
        if (TVL::CoreNode* own = node->Claim(this, name)) {
            own->SetListener(this);
            Forget(own);
        }
        node->Destroy();
    }
}

}  // namespace play
