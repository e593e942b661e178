#include "replay_core/state/claim_nodes.h"

#include <algorithm>
#include <memory>

#include "replay_core/state/node_book.h"
#include "replay_core/state/stored_form.h"
#include "tvl/xml_node.h"

namespace replay {
namespace {

// No plug-in bears this name, and so no tag that one has written: every node is found by its
// handle.
constexpr std::string_view kNobody("\0", 1);

// What the adaptor matches by is the attribute, and here it may hold anything, because this element
// does not become text.
XMLNode SoughtNodes(std::span<const StoredNode> nodes, bool withNumbers) {
    XMLNode info(form::kNodeInfo, "");
    for (const StoredNode& stored : nodes) {
        auto& node = info.children.emplace_back(std::make_unique<XMLNode>(form::kNode, ""));
        node->attributes[form::kName] = stored.name;
        if (withNumbers) node->AddChild(stored.element.Child(form::kNumber));
    }
    return info;
}

}  // namespace

FoundNodes FoundNodes::ByTag(TVL::AdaptorInterface& adaptor, const std::string& pluginName,
                             std::span<const StoredNode> nodes) {
    return FoundNodes(adaptor.ClaimNodes(pluginName, SoughtNodes(nodes, false)));
}

FoundNodes FoundNodes::ByNumber(TVL::AdaptorInterface& adaptor, const std::string& pluginName,
                                std::span<const StoredNode> nodes) {
    return FoundNodes(adaptor.ClaimNodes(pluginName, SoughtNodes(nodes, true)));
}

FoundNodes FoundNodes::ByHandle(TVL::AdaptorInterface& adaptor,
                                std::span<const std::uint32_t> handles) {
    std::vector<StoredNode> nodes;
    for (const std::uint32_t handle : handles)
        nodes.emplace_back().element.AddChild(XMLNode(form::kNumber, handle));
    return ByNumber(adaptor, std::string(kNobody), nodes);
}

FoundNodes::~FoundNodes() {
    for (TVL::CNode* node : nodes_)
        if (node) AsCoreNode(node)->Destroy();
}

TVL::CoreNode* FoundNodes::operator[](std::size_t index) const {
    return index < nodes_.size() ? AsCoreNode(nodes_[index]) : nullptr;
}

bool FoundNodes::HasAny() const {
    return std::ranges::any_of(nodes_, [](const TVL::CNode* node) { return node; });
}

bool ClaimNode(TVL::CoreNode& found, Take& take, const std::string& name) {
    take.Book().MakeRoom(1);
    TVL::CoreNode* const claimed = found.Claim(&take, name);
    if (!claimed) return false;
    claimed->SetListener(&take.Book());
    take.Book().OnNodeRestored(claimed);
    return true;
}

bool NameAgrees(TVL::CoreNode& found, std::string_view pluginName, const std::string& name) {
    const std::string hostName = found.GetName();
    return hostName == name || hostName == std::string(pluginName) + "_" + name;
}

}  // namespace replay
