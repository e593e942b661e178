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

std::optional<std::string> TagTextOn(INode& node) {
    std::string text;
    if (!node.UserPropExists(kNodeTag) || !node.GetUserPropString(kNodeTag, text)) return {};
    return text;
}

const TagsInScene::Names* TagsInScene::NamesOn(INode& node) {
    const std::optional<std::string> text = TagTextOn(node);
    if (!text) return nullptr;
    const auto [entry, isNew] = read_.try_emplace(node.GetHandle());
    ReadTag& read = entry->second;
    if (isNew || read.text != *text) {
        const XMLNode tag(*text);
        read = {*text, {tag.Child(kNameElement).Text(), tag.Child(kObjectNameElement).Text()}};
    }
    return &read.names;
}

void AbandonGatherings() {
    TaggedNodeLists& lists = NodesWithTags();
    for (const auto& list : lists.running)
        list->Abandon();
    lists.running.clear();
    lists.inScene.Forget();
}
