#include <algorithm>
#include <cstddef>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "core_link/core_answer.h"
#include "nodes/max_node.h"
#include "nodes/node_names.h"
#include "scene_state/node_tags.h"
#include "scene_state/state_format.h"
#include "scene_state/tagged_nodes.h"

namespace {

using NodeEntries = std::vector<const XMLNode*>;

bool IsNodeEntry(const std::unique_ptr<XMLNode>& child) {
    return child->name == kNodeElement;
}

NodeEntries EntriesOf(const XMLNode& nodeInfo) {
    NodeEntries entries;
    for (const auto& child : nodeInfo.children)
        if (IsNodeEntry(child)) entries.push_back(child.get());
    return entries;
}

std::string_view EntryName(const XMLNode& entry) {
    const auto name = entry.attributes.find(kNodeNameAttribute);
    return name == entry.attributes.end() ? std::string_view() : std::string_view(name->second);
}

bool IsComplete(const NewNodes& claims) {
    return std::ranges::all_of(claims, [](const auto& claim) { return claim != nullptr; });
}

void FindGatheredNodes(const std::string& pluginName, const NodeEntries& entries,
                       NewNodes& claims) {
    const auto& gatherings = NodesWithTags().running;
    if (gatherings.empty()) return;
    for (std::size_t index = 0; index < entries.size(); ++index) {
        INode* const host =
            gatherings.back()->Find(pluginName, std::string(EntryName(*entries[index])));
        if (host) claims[index] = std::make_unique<CMAXNode>(nullptr, host);
    }
}

// Of entries with one name only the last is looked for, and gets the first node in the scene.
void FindTaggedNodes(const std::string& pluginName, const NodeEntries& entries, NewNodes& claims) {
    std::unordered_map<std::string_view, std::size_t> byName;
    for (std::size_t index = 0; index < entries.size(); ++index)
        byName[EntryName(*entries[index])] = index;

    TagsInScene readNow;
    const auto& loads = NodesWithTags().loads;
    TagsInScene& tags = loads.empty() ? readNow : *loads.back();
    tags.MarkUnordered();
    for (const auto& [name, index] : byName) {
        if (claims[index]) continue;
        INode* const host = tags.Find(pluginName, std::string(name));
        if (host) claims[index] = std::make_unique<CMAXNode>(nullptr, host);
    }
}

void FindNodesByHandle(const NodeEntries& entries, NewNodes& claims) {
    for (std::size_t index = 0; index < entries.size(); ++index) {
        if (!claims[index]) claims[index] = NodeFor(entries[index]->Child(kHandleElement));
    }
}

std::vector<TVL::CNode*> FindNodes(const std::string& pluginName, const NodeEntries& entries) {
    NewNodes claims(entries.size());
    FindGatheredNodes(pluginName, entries, claims);
    if (!IsComplete(claims)) FindTaggedNodes(pluginName, entries, claims);
    FindNodesByHandle(entries, claims);
    return GiveAway(std::move(claims));
}

}  // namespace

// Where nothing can be found out nobody is found, and the Core has not taken what it loads.
std::vector<TVL::CNode*> ClaimNodes(const std::string& pluginName, const XMLNode& nodeInfo) {
    std::vector<TVL::CNode*> claimed;
    const bool isDone = TVL::TraceIfThrown("ClaimNodes", [&] {
        claimed.resize(
            static_cast<std::size_t>(std::ranges::count_if(nodeInfo.children, IsNodeEntry)));
        claimed = FindNodes(pluginName, EntriesOf(nodeInfo));
    });
    if (isDone) return claimed;
    ++lostAnswers;
    for (const auto& load : NodesWithTags().loads)
        load->MarkUnanswered();
    return claimed;
}
