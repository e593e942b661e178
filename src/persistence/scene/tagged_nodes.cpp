#include "persistence/scene/tagged_nodes.h"

#include <utility>
#include <vector>

#include "persistence/scene/state_format.h"

void TaggedNodeList::Add(std::unique_ptr<TaggedNode> node) {
    const std::string& pluginName = std::as_const(node->tag).Child(kNameElement).Text();
    const std::string& objectName = std::as_const(node->tag).Child(kObjectNameElement).Text();
    byPluginName_[pluginName][objectName].push_back(node.get());
    nodes_.push_back(std::move(node));
}

INode* TaggedNodeList::Find(std::string_view pluginName, std::string_view objectName) const {
    const auto plugin = byPluginName_.find(pluginName);
    if (plugin == byPluginName_.end()) return nullptr;
    const auto object = plugin->second.find(objectName);
    if (object == plugin->second.end()) return nullptr;
    const std::vector<const TaggedNode*>& nodes = object->second;
    for (auto node = nodes.rbegin(); node != nodes.rend(); ++node) {
        if (INode* const host = (*node)->hostNode.Get()) return host;
    }
    return nullptr;
}

void TaggedNodeList::Abandon() {
    isAbandoned_ = true;
    byPluginName_.clear();
    nodes_.clear();
}

void AbandonGatherings() {
    for (const auto& list : NodesWithTags().running)
        list->Abandon();
    NodesWithTags().running.clear();
}
