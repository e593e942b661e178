#include "replay_core/state/claim_nodes.h"

#include <algorithm>
#include <memory>

#include "replay_core/state/stored_form.h"
#include "tvl/xml_node.h"

namespace replay {
namespace {

// What the adaptor matches by is the attribute, and here it may hold anything, because this element
// does not become text.
XMLNode NodeInfo(std::span<const StoredNode> nodes, bool withNumbers) {
    XMLNode info("");
    info.kind = XMLNode::kElement;
    info.name = form::kNodeInfo;
    for (const StoredNode& stored : nodes) {
        auto& node = info.children.emplace_back(std::make_unique<XMLNode>(""));
        node->kind = XMLNode::kElement;
        node->name = form::kNode;
        node->attributes[form::kName] = stored.name;
        if (withNumbers) node->AddChild(stored.element.Child(form::kNumber));
    }
    return info;
}

}  // namespace

FoundNodes FoundNodes::ByTag(TVL::AdaptorInterface& adaptor, const std::string& pluginName,
                             std::span<const StoredNode> nodes) {
    return {adaptor.ClaimNodes(pluginName, NodeInfo(nodes, false)), nodes.size()};
}

FoundNodes FoundNodes::ByNumber(TVL::AdaptorInterface& adaptor, const std::string& pluginName,
                                std::span<const StoredNode> nodes) {
    return {adaptor.ClaimNodes(pluginName, NodeInfo(nodes, true)), nodes.size()};
}

FoundNodes::FoundNodes(std::vector<TVL::CNode*> nodes, std::size_t count) {
    nodes.resize(std::max(nodes.size(), count));
    for (TVL::CNode* node : nodes)
        nodes_.push_back(static_cast<TVL::CoreNode*>(node));
}

FoundNodes::~FoundNodes() {
    for (TVL::CoreNode* node : nodes_)
        if (node) node->Destroy();
}

bool FoundNodes::HasAny() const {
    return std::ranges::any_of(nodes_, [](const TVL::CoreNode* node) { return node; });
}

bool ClaimNode(TVL::CoreNode& found, Take& take, const std::string& name) {
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
