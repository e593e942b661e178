#include "player/recovery/recovery_core.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "headless/scene_view.h"
#include "tvl/base64_buffer.h"
#include "tvl/huffman_buffer.h"
#include "tvl/ids.h"

namespace player {
namespace {

constexpr const char* kTag = "TVL_tag";  // the property of a node that bears its mark
const std::string kNoPlugin(1, '\0');    // no mark is found under it, so that a handle counts

// Owners here that no tape has.
constexpr std::uint64_t kOwnOwners = std::uint64_t{1} << 54;

XMLNode Unpacked(const XMLNode& plugin) {
    const auto compressed = plugin.attributes.find("compressed");
    if (compressed == plugin.attributes.end() || compressed->second != "1") return XMLNode();
    const Base64Buffer packed(plugin.Text());
    const std::vector<std::uint8_t>& stream = packed.Bytes();
    if (stream.empty()) return XMLNode();
    return XMLNode(HuffmanBuffer(stream.data(), static_cast<std::int32_t>(stream.size())).Text());
}

// Anywhere, as a text or an attribute, also in what is packed so often. Trees can be deep.
bool Holds(const XMLNode& tree, const std::string& text, int packings = 2) {
    std::vector<const XMLNode*> pending = {&tree};
    while (!pending.empty()) {
        const XMLNode& node = *pending.back();
        pending.pop_back();
        if (node.kind == XMLNode::kText && node.name == text) return true;
        for (const auto& [name, value] : node.attributes)
            if (value == text) return true;
        for (const auto& child : node.children)
            pending.push_back(child.get());
        if (packings > 0 && Holds(Unpacked(node), text, packings - 1)) return true;
    }
    return false;
}

struct Mark {
    std::uint32_t handle;
    XMLNode tag;
};

std::vector<Mark> MarksInScene() {
    std::vector<Mark> marks;
    for (const headless::NodeView& node : headless::Nodes()) {
        const auto text = node.userProperties.find(kTag);
        if (text == node.userProperties.end() || text->second.empty()) continue;
        marks.push_back({node.handle, XMLNode(text->second)});
    }
    return marks;
}

}  // namespace

CoreInterface* RecoveryCore::Attach(TVL::AdaptorInterface* adaptor, const AttachCore&) {
    objects_.emplace(*adaptor, *this);
    return objects_->Find<CoreInterface>(recorder::MakeObjectId(ObjectKind::kCore, 1));
}

// Undo records name owners and listeners.
void RecoveryCore::Detach(CoreInterface*, const DetachCore&) {
    LetGo();
    objects_->Adaptor().FlushUndoBuffer();
}

void RecoveryCore::ExpectState(std::size_t wholes, std::size_t older) {
    keepsStored_ = wholes > 1 || older > 0;
    expectedWholes_ = wholes;
}

std::span<const std::uint64_t> RecoveryCore::Answer(const Record& call) {
    recorder::ValueReader said(call);
    answer_.Begin({});
    switch (call.head.operation) {
        case Operation::CoreInterface_GetCoreState:
            givenParts_.clear();
            answer_.Put(whole_);
            break;
        case Operation::CoreInterface_SetCoreState:
            TakeState(said.Tree());
            break;
        case Operation::CoreInterface_ResetCore:
            LetGo();
            stored_ = {};
            whole_ = XMLNode();
            storedParts_.clear();
            break;
        case Operation::CoreInterface_GetOptionValue: {
            const auto option = options_.find(said.Whole());
            if (option != options_.end()) answer_.Put(option->second);
            break;
        }
        case Operation::CExtendable_HandleExtension: {
            if (said.Whole() != TVL::kSceneBeingSaved || said.Letter() != 't') break;
            XMLNode parts = said.Tree();
            for (const auto& part : GivenParts(call.head.object).children)
                parts.AddChild(*part);
            answer_.Put(recorder::ExtensionValue{'i', 0, nullptr});
            answer_.Put(recorder::ExtensionValue{'t', 0, &parts});
            break;
        }
        default:
            break;
    }
    return answer_.End().values;
}

// A file's whole states come first, then one element for plug-ins of earlier versions, and last
// what the marks bear.
void RecoveryCore::TakeState(const XMLNode& state) {
    const std::size_t place = stored_.loaded.size();
    stored_.loaded.push_back(Comparable(state));
    if (place < expectedWholes_ && !keepsStored_) {
        whole_ = state;
        stored_.whole = Comparable(state);
    }
    ClaimMarkedNodes();
    if (keepsStored_ && place <= expectedWholes_ && !state.children.empty())
        throw std::runtime_error("what is stored stays as it is");
}

TVL::CoreNode* RecoveryCore::NodeOfHandle(std::uint32_t handle) {
    XMLNode info("nodeinfo", "");
    XMLNode& entry = info.AddChild(XMLNode("node", ""));
    entry.AddChild(XMLNode("UID", std::to_string(handle)));
    const auto found = objects_->Adaptor().ClaimNodes(kNoPlugin, info);
    return found.empty() ? nullptr : static_cast<TVL::CoreNode*>(found.front());
}

RecoveryCore::MarkedNode* RecoveryCore::FindMarked(std::uint32_t handle) {
    const auto found = std::ranges::find(marked_, handle, &MarkedNode::handle);
    return found == marked_.end() ? nullptr : &*found;
}

void RecoveryCore::ClaimMarkedNodes() {
    for (const Mark& mark : MarksInScene()) {
        if (FindMarked(mark.handle)) continue;
        const std::string plugin = mark.tag.Child("name").Text();
        for (const auto& child : mark.tag.children) {
            if (child->name != "masternode") continue;
            stored_.parts.insert(Comparable(*child));
            storedParts_[plugin].push_back(*child);
        }
        TVL::CoreNode* const found = NodeOfHandle(mark.handle);
        if (!found) continue;
        MarkedNode marked{mark.handle, plugin, mark.tag.Child("objectname").Text()};
        marked.owner = OwnerOfMark(plugin);
        marked.node = found->Claim(objects_->Find<TVL::CoreElement>(marked.owner), marked.name);
        found->ReleaseNode(found);
        if (marked.node) marked_.push_back(std::move(marked));
    }
}

ObjectId RecoveryCore::OwnerOfMark(const std::string& plugin) {
    const auto [owner, isNew] = ownersOfMarks_.try_emplace(plugin);
    if (isNew) {
        owner->second =
            recorder::MakeObjectId(ObjectKind::kOwner, kOwnOwners + ownersOfMarks_.size());
        KnowOwners({{owner->second, plugin}});
    }
    return owner->second;
}

void RecoveryCore::KnowOwners(const std::map<ObjectId, std::string>& plugins) {
    for (const auto& [owner, plugin] : plugins) {
        objects_->Know(owner, plugin);
        plugins_[owner] = plugin;
    }
}

// A real node has its owner and name from when it was claimed.
void RecoveryCore::Rename(MarkedNode& marked, ObjectId owner, const std::string& name) {
    if (marked.owner == owner && marked.node->GetNodeName() == name) return;
    marked.node->Unclaim();
    TVL::CoreNode* const before = marked.node;
    marked.node = before->Claim(objects_->Find<TVL::CoreElement>(owner), name);
    before->Destroy();
    marked.owner = owner;
    marked.isRenamed = true;
}

void RecoveryCore::TakeBackName(MarkedNode& marked) {
    if (marked.isRenamed) Rename(marked, OwnerOfMark(marked.plugin), marked.name);
}

void RecoveryCore::SetState(const std::optional<XMLNode>& whole,
                            const std::map<ObjectId, XMLNode>& parts) {
    if (whole) whole_ = *whole;
    parts_ = parts;
}

// Owners of one plug-in's name share what is stored under that; the first that is asked gives it.
XMLNode RecoveryCore::GivenParts(ObjectId owner) {
    if (const auto parts = parts_.find(owner); parts != parts_.end()) return parts->second;
    XMLNode given("masternodes", "");
    const std::string& plugin = plugins_[owner];
    if (!givenParts_.insert(plugin).second) return given;
    for (const XMLNode& part : storedParts_[plugin])
        given.AddChild(part);
    return given;
}

bool RecoveryCore::Mentions(ObjectId owner, const std::string& name) const {
    if (const auto parts = parts_.find(owner); parts != parts_.end())
        return Holds(parts->second, name) || Holds(whole_, name);
    const auto plugin = plugins_.find(owner);
    return plugin != plugins_.end() && storedParts_.contains(plugin->second) && Holds(whole_, name);
}

std::vector<ObjectId> RecoveryCore::Owners() const {
    std::vector<ObjectId> owners;
    for (const auto& [owner, plugin] : plugins_)
        owners.push_back(owner);
    return owners;
}

void RecoveryCore::LetGo() {
    for (const ObjectId owner : Owners())
        for (TVL::CNode* const node :
             objects_->Adaptor().GetNodes(objects_->Find<TVL::CoreElement>(owner)))
            static_cast<TVL::CoreNode*>(node)->Destroy();
    marked_.clear();
}

}  // namespace player
