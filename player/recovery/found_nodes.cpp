#include "player/recovery/found_nodes.h"

#include <algorithm>

#include "headless/scene_view.h"

namespace player {

FoundNodes::FoundNodes(const MissingWork& work, RecoveryCore& core)
    : work_(work), core_(core), objects_(core.Objects()) {
    core.KnowOwners(work.plugins);
    for (const TapeNode& node : work.nodes)
        unbound_.push_back(&node);
    std::ranges::sort(unbound_, {}, &TapeNode::id);
    Find();
}

FoundNodes::~FoundNodes() {
    for (TVL::CoreNode* const node : borrowed_)
        node->Destroy();
}

// Nodes of one name are told apart by what else they are called, as far as that goes.
void FoundNodes::Find() {
    for (const Likeness likeness : {Likeness::kMarkAndName, Likeness::kMark, Likeness::kName})
        std::erase_if(unbound_, [&](const TapeNode* node) { return Bind(*node, likeness); });
}

// Marks tell more than names in the host, which others may bear as well.
FoundNodes::Found FoundNodes::FindInScene(const TapeNode& node, Likeness likeness) {
    const bool isOpened = work_.base.kind == Checkpoint::Kind::kOpened && !node.storedName.empty();
    const std::string& plugin = isOpened ? node.storedPlugin : node.plugin;
    const std::string& name = isOpened ? node.storedName : node.name;
    // In the order in which they were made.
    std::vector<headless::NodeView> nodes = headless::Nodes();
    std::ranges::sort(nodes, {}, &headless::NodeView::handle);
    const std::size_t names = likeness == Likeness::kMark ? 1 : node.hostNames.size();
    for (std::size_t index = 0; index < std::max<std::size_t>(names, 1); ++index)
        for (const headless::NodeView& view : nodes) {
            if (node.isReal && usedHandles_.contains(view.handle)) continue;
            RecoveryCore::MarkedNode* const marked = core_.FindMarked(view.handle);
            const bool isMarked = marked && marked->plugin == plugin && marked->name == name;
            const bool isNamed =
                index < node.hostNames.size() && view.name == node.hostNames[index];
            if ((likeness == Likeness::kName || isMarked) &&
                (likeness == Likeness::kMark || isNamed))
                return {view.handle, marked};
        }
    return {};
}

bool FoundNodes::Bind(const TapeNode& node, Likeness likeness) {
    const Found found = FindInScene(node, likeness);
    if (found.handle == 0) return false;
    TVL::CoreNode* live = nullptr;
    if (node.isReal && found.marked) {
        core_.Rename(*found.marked, node.owner, node.name);
        live = found.marked->node;
    } else if (TVL::CoreNode* const handle = core_.NodeOfHandle(found.handle)) {
        live = handle;
        if (node.isReal) {
            live = handle->Claim(objects_.Find<TVL::CoreElement>(node.owner), node.name);
            handle->ReleaseNode(handle);
        } else {
            borrowed_.push_back(handle);
        }
    }
    if (!live) return false;
    if (node.isReal) usedHandles_.insert(found.handle);
    names_[node.id] = live->GetName();
    return objects_.Match(node.id, objects_.IdOf(live));
}

void FoundNodes::Ends(ObjectId node) {
    std::erase(borrowed_, objects_.Find<TVL::CoreNode>(node));
}

std::string FoundNodes::NameOf(ObjectId node) const {
    if (const auto name = names_.find(node); name != names_.end()) return name->second;
    const auto told = std::ranges::find(work_.nodes, node, &TapeNode::id);
    if (told == work_.nodes.end()) return "a node of the tape";
    return told->hostNames.empty() ? told->name : told->hostNames.front();
}

}  // namespace player
