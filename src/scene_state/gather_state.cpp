#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

#include "core_link/core_link.h"
#include "foundation/thrown.h"
#include "nodes/node_list.h"
#include "nodes/node_names.h"
#include "platform/win32.h"
#include "scene_state/node_tags.h"
#include "scene_state/state_chunk.h"
#include "scene_state/state_format.h"
#include "scene_state/stored_plugins.h"
#include "scene_state/tagged_nodes.h"
#include "tvl/panel.h"

namespace {

constexpr const char* kNeverClaimed =
    "Some nodes were found beloning to Tarvo Lumiset, but they were never claimed. \n"
    " The following nodes were left out:\n\n";

using Handles = std::unordered_set<std::uint32_t>;

// The list of one gathering, known to the adaptor while it runs.
class RunningGathering {
  public:
    RunningGathering() { NodesWithTags().running.push_back(list_); }
    ~RunningGathering() {
        if (!list_->IsAbandoned()) NodesWithTags().running.pop_back();
    }
    RunningGathering(const RunningGathering&) = delete;
    RunningGathering& operator=(const RunningGathering&) = delete;

    TaggedNodeList& List() { return *list_; }

  private:
    std::shared_ptr<TaggedNodeList> list_ = std::make_shared<TaggedNodeList>();
};

// Nodes that the gatherings around this one have collected, and will report and clear themselves.
Handles AlreadyCollected() {
    Handles handles;
    for (const auto& list : NodesWithTags().running) {
        for (const HostNodeLink& node : list->Nodes()) {
            if (INode* const host = node.Get()) handles.insert(host->GetHandle());
        }
    }
    return handles;
}

// The root bears no tag. What a tag holds of plug-ins is taken out of it, and the rest not looked
// at any more.
StoredPlugins CollectNodeTags(TaggedNodeList& taggedNodes) {
    const Handles collected = AlreadyCollected();
    StoredPlugins masters;
    WalkScene([&](INode& node) {
        if (node.IsRootNode() || collected.contains(node.GetHandle())) return;
        const std::optional<std::string> text = TagTextOn(node);
        if (!text) return;
        XMLNode tag(*text);
        if (tag.name.empty() && tag.children.empty()) return;
        taggedNodes.Add(TagNames::Of(tag), node);
        for (auto& child : tag.children) {
            if (child->name == kMasterElement) masters.push_back(std::move(child));
        }
    });
    return masters;
}

std::vector<INode*> UnclaimedNodes(const TaggedNodeList& taggedNodes) {
    std::vector<INode*> unclaimed;
    for (const HostNodeLink& node : taggedNodes.Nodes()) {
        INode* const host = node.Get();
        if (host && !FindRealNode(host)) unclaimed.push_back(host);
    }
    return unclaimed;
}

Handles UnclaimedHandles(const TaggedNodeList& taggedNodes) {
    Handles handles;
    for (INode* host : UnclaimedNodes(taggedNodes))
        handles.insert(host->GetHandle());
    return handles;
}

std::string UnclaimedNames(const TaggedNodeList& taggedNodes) {
    std::string names;
    for (INode* host : UnclaimedNodes(taggedNodes))
        names += NameInScene(host) + "\n";
    return names;
}

void ReportUnclaimed(const TaggedNodeList& taggedNodes) {
    if (taggedNodes.Nodes().empty()) return;
    const std::string names = UnclaimedNames(taggedNodes);
    if (names.empty()) return;
    MessageBoxA(nullptr, (kNeverClaimed + names).c_str(), TVL::kGatherCaption,
                MB_OK | MB_ICONERROR);
}

void ClearTags(const TaggedNodeList& taggedNodes, const Handles& kept) {
    for (const HostNodeLink& node : taggedNodes.Nodes()) {
        INode* const host = node.Get();
        if (host && !kept.contains(host->GetHandle())) ClearNodeTag(*host);
    }
}

}  // namespace

// A Core that could not load, or find its nodes, has not taken what it left unclaimed: the tags
// stay, for the next gathering or in the next file.
void GatherSceneState() {
    if (!AttachedCore() || IsCoreLeaving()) return;
    RunningGathering gathering;
    const XMLNode state = StateTree(CollectNodeTags(gathering.List()));
    const bool isTaken = HandToCore(state);
    TVL::TraceIfThrown("the report of unclaimed nodes", [&] { ReportUnclaimed(gathering.List()); });
    ClearTags(gathering.List(), isTaken ? Handles() : UnclaimedHandles(gathering.List()));
}
