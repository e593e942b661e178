#include "scene_state/tagged_nodes.h"

#include <utility>
#include <vector>

#include "nodes/node_list.h"
#include "scene_state/state_format.h"

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
    std::optional<std::string> text = TagTextOn(node);
    if (!text) return nullptr;
    const auto [entry, isNew] = tags_.try_emplace(node.GetHandle());
    ReadTag& read = entry->second;
    if (isNew || read.text != *text) {
        const XMLNode tag(*text);
        read = {std::move(*text),
                {tag.Child(kNameElement).Text(), tag.Child(kObjectNameElement).Text()}};
    }
    return &read.names;
}

void TagsInScene::Read() {
    isRead_ = false;
    byPluginName_.clear();
    WalkScene([this](INode& node) {
        const Names* const names = NamesOn(node);
        if (names) byPluginName_[names->plugin][names->object].emplace_back(&node);
    });
    arrivals_ = AdaptorNodes().arrivals;
    isRead_ = isInOrder_ = true;
}

const std::vector<HostNodeLink>* TagsInScene::Bearers(const std::string& pluginName,
                                                      const std::string& objectName) const {
    const auto plugin = byPluginName_.find(pluginName);
    if (plugin == byPluginName_.end()) return nullptr;
    const auto object = plugin->second.find(objectName);
    return object == plugin->second.end() ? nullptr : &object->second;
}

// Nodes that are gone, or have another tag by now, are passed over.
INode* TagsInScene::Find(const std::string& pluginName, const std::string& objectName) {
    if (!isRead_ || arrivals_ != AdaptorNodes().arrivals) Read();
    const std::vector<HostNodeLink>* nodes = Bearers(pluginName, objectName);
    if (nodes && nodes->size() > 1 && !isInOrder_) {
        Read();
        nodes = Bearers(pluginName, objectName);
    }
    if (!nodes) return nullptr;
    for (const HostNodeLink& node : *nodes) {
        INode* const host = node.Get();
        const Names* const names = host ? NamesOn(*host) : nullptr;
        if (names && names->plugin == pluginName && names->object == objectName) return host;
    }
    return nullptr;
}

CoreLoads::CoreLoads() {
    NodesWithTags().loads.push_back(tags_);
}

// What was loaded inside can have brought tags.
CoreLoads::~CoreLoads() {
    if (tags_->IsAbandoned()) return;
    NodesWithTags().loads.pop_back();
    TagsHaveChanged();
}

void TagsHaveChanged() {
    for (const auto& tags : NodesWithTags().loads)
        tags->MarkStale();
}

void AbandonGatherings() {
    TaggedNodeLists& lists = NodesWithTags();
    for (const auto& list : lists.running)
        list->Abandon();
    for (const auto& tags : lists.loads)
        tags->Abandon();
    lists.running.clear();
    lists.loads.clear();
}
