#include "scene_state/node_tags.h"

#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "core_link/core_link.h"
#include "host/hold.h"
#include "nodes/host_node_link.h"
#include "nodes/max_node.h"
#include "nodes/node_list.h"
#include "scene_state/state_chunk.h"
#include "scene_state/state_format.h"
#include "scene_state/tagged_nodes.h"
#include "tvl/ids.h"
#include "undo/undo_groups.h"

namespace {

struct OwnerState {
    XMLNode parts;           // one child for each stored part of the owner
    bool isWritten = false;  // on the owner's first node
};
using OwnerStates = std::unordered_map<TVL::CoreElement*, OwnerState>;

// A node whose host node is gone cannot carry its owner's state, and leaves that to the next one.
bool CarriesTag(CMAXNode& node) {
    return node.Owner() && node.HostNode() && !node.IsSnapshot();
}

// Whether an owner can be left that has not been asked: its nodes could bear no tag when they were
// met, as that of a host node that was away, and those who were asked meanwhile may have brought it
// back.
bool AskNewOwners(OwnerStates& states) {
    bool isAnyNew = false;
    bool isAnyAway = false;
    ForEachListedNode([&](CMAXNode& node) {
        if (!CarriesTag(node)) {
            isAnyAway = true;
            return;
        }
        TVL::CoreElement* const owner = node.Owner();
        const auto [entry, isNew] = states.try_emplace(owner);
        if (!isNew) return;
        isAnyNew = true;
        XMLNode parts = Element("masternodes");
        if (!CallCore("extension 56 of an owner",
                      [&] { owner->HandleExtension(TVL::kSceneBeingSaved, &parts); }))
            RecordOfState().isTagLost = true;
        entry->second.parts.Swap(parts);
    });
    return isAnyNew && isAnyAway;
}

// An owner may create, delete or merge nodes while it answers. The walk meets what is listed
// meanwhile, but not what it has passed.
OwnerStates AskOwners() {
    OwnerStates states;
    while (AskNewOwners(states)) {
    }
    return states;
}

enum class Carrier { kFirstNode, kEachNode };

XMLNode TagOf(const CMAXNode& node, OwnerState& state, Carrier carrier) {
    XMLNode tag = Element(kNodeTag);
    tag.AddChild(XMLNode(kNameElement, PluginNameOf(node.Owner())));
    tag.AddChild(XMLNode(kObjectNameElement, node.NodeName()));
    const bool wasWritten = std::exchange(state.isWritten, true);
    if (wasWritten && carrier == Carrier::kFirstNode) return tag;
    for (const auto& part : state.parts.children)
        tag.AddChild(*part);
    return tag;
}

// The tag that a node bears, across an undo, redo or cancel of the step in which it was written.
class TagAcrossUndo {
  public:
    explicit TagAcrossUndo(INode& host) : host_(&host) {}

    // Runs before the host's own record of the property, and after it.
    void Pass() {
        INode* const host = host_.Get();
        const std::optional<std::string> before = std::exchange(text_, std::nullopt);
        if (std::exchange(isHeld_, !isHeld_)) {
            if (host && before) host->SetUserPropString(kNodeTag, *before);
        } else if (host) {
            text_ = TagTextOn(*host);
        }
    }

  private:
    HostNodeLink host_;
    bool isHeld_ = false;
    std::optional<std::string> text_;
};

// One stands on each side of the host's record.
class TagRestore final : public RestoreObj {
  public:
    explicit TagRestore(std::shared_ptr<TagAcrossUndo> tag) : tag_(std::move(tag)) {}
    void Restore(int) override { Pass(); }
    void Redo() override { Pass(); }

  private:
    void Pass() {
        TVL::TraceIfThrown("the keeping of a tag", [this] { tag_->Pass(); });
    }

    std::shared_ptr<TagAcrossUndo> tag_;
};

void SetNodeTag(INode& host, const std::string& text) {
    TagsHaveChanged();
    if (!theHold.Holding() || theHold.RestoreOrRedoing()) {
        host.SetUserPropString(kNodeTag, text);
        return;
    }
    const auto tag = std::make_shared<TagAcrossUndo>(host);
    theHold.Put(new TagRestore(tag));
    host.SetUserPropString(kNodeTag, text);
    theHold.Put(new TagRestore(tag));
}

// All owners answer before the first tag is written, so that whatever they do meanwhile meets no
// scene with half of its tags.
void Store(Carrier carrier) {
    OwnerStates states = AskOwners();
    ForEachListedNode([&](CMAXNode& node) {
        if (!CarriesTag(node)) return;
        const auto state = states.find(node.Owner());
        if (state == states.end() || state->second.parts.children.empty()) return;
        SetNodeTag(*node.HostNode(), TagOf(node, state->second, carrier).Write());
    });
}

}  // namespace

void StoreSceneState() {
    Store(Carrier::kFirstNode);
}

void StoreStateForNextCore() {
    AdaptorNodes().clearHostNode = nullptr;
    EndHoldOfGroups();
    Store(theHold.Holding() ? Carrier::kEachNode : Carrier::kFirstNode);
}

// A copy that was made of a tagged node is none of the Core's, and its tag is a double to the byte.
// Any other tag waits for a Core that takes it, whatever names it bears.
void ClearNodeTags() {
    AdaptorNodes().clearHostNode = nullptr;
    constexpr const char* kLooking = "the looking for copies";
    std::unordered_set<std::string> written;
    ForEachListedNode([&](const CMAXNode& node) {
        INode* const host = node.HostNode();
        if (!host) return;
        TVL::TraceIfThrown(kLooking, [&] { written.insert(TagTextOn(*host).value_or("")); });
        ClearNodeTag(*host);
    });
    written.erase("");
    if (written.empty()) return;
    const auto clearIfCopy = [&](INode& node) {
        if (written.contains(TagTextOn(node).value_or(""))) ClearNodeTag(node);
    };
    TVL::TraceIfThrown(kLooking, [&] {
        WalkScene([&](INode& node) { TVL::TraceIfThrown(kLooking, [&] { clearIfCopy(node); }); });
    });
}

void ClearNodeTag(INode& hostNode) {
    TVL::TraceIfThrown("the clearing of a tag", [&hostNode] { SetNodeTag(hostNode, ""); });
}
