#include "host/hold.h"
#include "tests/support/play/play.h"
#include "tvl/ids.h"

namespace play {

Rig::Rig(std::string name, Play& play) : record_{std::move(name)}, play_(play) {
    plugin = &record_;
}

std::vector<int> Rig::ListExtensions() {
    try {
        play_.During("extensions", [] {});
    } catch (...) {  // its nodes go without a word to it
        for (const TVL::CoreNode* node : Nodes())
            play_.loose.insert(node->GetNodeName());
        throw;
    }
    return {TVL::kNodesBeingDeleted, TVL::kSceneBeingSaved};
}

std::intptr_t Rig::HandleExtension(int id, void* argument) {
    if (id == TVL::kNodesBeingDeleted) play_.During("deletion", [this] { LetGo(); });
    if (id == TVL::kSceneBeingSaved)
        play_.During("saving", [&] { Store(*static_cast<XMLNode*>(argument)); });
    return 0;
}

void Rig::OnNodeRemoved(TVL::CNode* node) {
    play_.During("removed", [&] { heard[node] = false; });
}

void Rig::OnNodeRestored(TVL::CNode* node) {
    play_.During("restored", [&] {
        heard[node] = true;
        if (play_.sceneGoes) play_.loose.insert(node->GetNodeName());
    });
}

std::vector<TVL::CoreNode*> Rig::Nodes() {
    std::vector<TVL::CoreNode*> nodes;
    for (TVL::CNode* node : play_.Adaptor().GetNodes(this))
        nodes.push_back(static_cast<TVL::CoreNode*>(node));
    return nodes;
}

void Rig::Delete(TVL::CoreNode* node, bool withHostNode) {
    if (!play_.Adaptor().IsHoldingUndo()) Forget(node);
    node->Delete(withHostNode);
}

void Rig::Claim(TVL::CoreNode* found, const std::string& name) {
    if (TVL::CoreNode* const own = found->Claim(this, name)) {
        own->SetListener(this);
        Forget(own);
    }
    found->Destroy();
}

// Nodes may come, at the end, and go meanwhile.
void Rig::LetGo() {
    play_.Adaptor().BeginUndoGroup("let go");
    for (std::size_t left = Nodes().size(); left > 0 && !Nodes().empty(); --left)
        Delete(Nodes().front(), true);
    play_.Adaptor().EndUndoGroup();
}

void Rig::Drop() {
    for (TVL::CoreNode* node : Nodes())
        node->Destroy();
    heard.clear();
}

void Rig::Store(XMLNode& masters) {
    std::string nodes;
    for (const TVL::CoreNode* node : Nodes())
        nodes += "<node name=\"" + node->GetNodeName() + "\"/>";
    masters.AddChild(XMLNode("<masternode><TVL_Plugin><name>" + Name() + "</name><nodeinfo>" +
                             nodes + "</nodeinfo></TVL_Plugin></masternode>"));
}

// A name that is taken, as when a scene is merged into itself, gives way to a new one. Claims leave
// no record.
void Rig::Load(const XMLNode& pluginState) {
    const XMLNode& info = pluginState.Child("nodeinfo");
    const std::vector<TVL::CNode*> found = play_.Adaptor().ClaimNodes(Name(), info);
    for (std::size_t index = 0; index < found.size(); ++index) {
        if (!found[index]) continue;
        const std::string& stored = info.children[index]->attributes.at("name");
        const std::string name = play_.Adaptor().FindNode(this, stored) ? play_.NewName() : stored;
        if (theHold.Holding() || play_.IsSceneUnsure()) play_.loose.insert(name);
        Claim(static_cast<TVL::CoreNode*>(found[index]), name);
    }
}

}  // namespace play
