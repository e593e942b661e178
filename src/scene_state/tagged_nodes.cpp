#include "scene_state/tagged_nodes.h"

#include <utility>

#include "nodes/node_list.h"
#include "scene_state/state_format.h"

TagNames TagNames::Of(const XMLNode& tag) {
    return {tag.Child(kNameElement).Text(), tag.Child(kObjectNameElement).Text()};
}

void NodesByNames::Add(TagNames names, const HostNodeLink& node) {
    byPluginName_[std::move(names.plugin)][std::move(names.object)].push_back(node);
}

std::span<const HostNodeLink> NodesByNames::Find(const std::string& pluginName,
                                                 const std::string& objectName) const {
    const auto plugin = byPluginName_.find(pluginName);
    if (plugin == byPluginName_.end()) return {};
    const auto object = plugin->second.find(objectName);
    if (object == plugin->second.end()) return {};
    return object->second;
}

void TaggedNodeList::Add(TagNames names, INode& node) {
    nodes_.emplace_back(&node);
    byNames_.Add(std::move(names), nodes_.back());
}

INode* TaggedNodeList::Find(const std::string& pluginName, const std::string& objectName) const {
    const std::span<const HostNodeLink> nodes = byNames_.Find(pluginName, objectName);
    for (auto node = nodes.rbegin(); node != nodes.rend(); ++node) {
        if (INode* const host = node->Get()) return host;
    }
    return nullptr;
}

void TaggedNodeList::Abandon() {
    isAbandoned_ = true;
    byNames_.Clear();
    nodes_.clear();
}

std::optional<std::string> TagTextOn(INode& node) {
    std::string text;
    if (!node.UserPropExists(kNodeTag) || !node.GetUserPropString(kNodeTag, text)) return {};
    return text;
}

const TagNames* TagsInScene::NamesOn(INode& node) {
    std::optional<std::string> text = TagTextOn(node);
    if (!text) return nullptr;
    const auto [entry, isNew] = tags_.try_emplace(node.GetHandle());
    ReadTag& read = entry->second;
    if (isNew || read.text != *text) {
        TagNames names = TagNames::Of(XMLNode(*text));
        read = {std::move(*text), std::move(names)};
    }
    return &read.names;
}

void TagsInScene::Read() {
    isRead_ = false;
    byNames_.Clear();
    WalkScene([this](INode& node) {
        if (const TagNames* const names = NamesOn(node)) byNames_.Add(*names, HostNodeLink(&node));
    });
    arrivals_ = AdaptorNodes().arrivals;
    isRead_ = isInOrder_ = true;
}

// Nodes that are gone, or have another tag by now, are passed over.
INode* TagsInScene::Find(const std::string& pluginName, const std::string& objectName) {
    if (!isRead_ || arrivals_ != AdaptorNodes().arrivals) Read();
    std::span<const HostNodeLink> nodes = byNames_.Find(pluginName, objectName);
    if (nodes.size() > 1 && !isInOrder_) {
        Read();
        nodes = byNames_.Find(pluginName, objectName);
    }
    for (const HostNodeLink& node : nodes) {
        INode* const host = node.Get();
        const TagNames* const names = host ? NamesOn(*host) : nullptr;
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
