#include "replay_core/state/load_state.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <set>
#include <span>
#include <utility>

#include "replay_core/state/claim_nodes.h"
#include "replay_core/state/read_state.h"
#include "replay_core/state/stored_form.h"
#include "tvl/log.h"

namespace replay {
namespace {

using NodesByName = std::map<std::string, TVL::CoreNode*>;

NodesByName NodesOf(const Take& take) {
    NodesByName nodes;
    for (TVL::CoreNode* node : take.Book().Nodes())
        nodes.emplace(node->GetNodeName(), node);
    return nodes;
}

bool HasOneOf(const Take& take, std::span<const StoredNode> nodes, const FoundNodes& found) {
    const NodesByName own = NodesOf(take);
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        const auto same = own.find(nodes[i].name);
        if (found[i] && same != own.end() && same->second->IsSameNode(found[i])) return true;
    }
    return false;
}

class Loader {
  public:
    Loader(TVL::AdaptorInterface& adaptor, Takes& takes, StoredState state)
        : adaptor_(adaptor), takes_(takes), plugins_(std::move(state.plugins)) {
        for (const StoredPlugin& plugin : plugins_)
            storedNames_.insert(plugin.name);
        loaded_.faults = std::move(state.faults);
    }

    LoadedState Load() {
        for (const StoredPlugin& plugin : plugins_)
            made_.push_back(&LoadPlugin(plugin));
        return std::move(loaded_);
    }

  private:
    Take& LoadPlugin(const StoredPlugin& plugin) {
        const FoundNodes found = FoundNodes::ByTag(adaptor_, plugin.name, plugin.nodes);
        Take* const there = ThereAlready(plugin, found);
        Take& take = there ? *there : NewTake(plugin);
        LoadedTake loaded;
        loaded.name = take.Name();
        loaded.storedName = plugin.name;
        loaded.isNew = !there;
        loaded.nodesClaimed = ClaimFound(take, plugin.nodes, found);
        loaded.nodesClaimed += ClaimByNumber(take, plugin);
        loaded.nodesNotFound = SettleMissing(take);
        if (loaded.isNew || loaded.nodesClaimed > 0) loaded_.takes.push_back(std::move(loaded));
        return take;
    }

    Take* ThereAlready(const StoredPlugin& plugin, const FoundNodes& found) const {
        Take* const take = takes_.Find(plugin.name);
        if (!take || !take->IsThere()) return nullptr;
        const bool isIt =
            take->Rest().isLost || !found.HasAny() || HasOneOf(*take, plugin.nodes, found);
        return isIt ? take : nullptr;
    }

    // What can fail comes first: a take that is there knows all that was stored of it.
    Take& NewTake(const StoredPlugin& plugin) {
        std::vector<Recording> recordings = plugin.recordings;
        StoredRest rest{.missingNodes = plugin.nodes, .unknown = plugin.unknown, .isLost = true};
        if (!plugin.type.empty()) rest.type = plugin.type;
        const bool isAtTop = plugin.parent == StoredPlugin::kNone;
        Take& take = takes_.Add(FreeName(plugin.name), isAtTop ? nullptr : made_[plugin.parent]);
        take.SetRecordings(std::move(recordings));
        take.Rest() = std::move(rest);
        return take;
    }

    // A name that another plug-in of the same state bears is left to that. Goes on behind the name
    // that was found last, so that a state in which all share one takes no longer than another.
    std::string FreeName(const std::string& storedName) {
        std::string storable = StorableName(storedName);
        if (!takes_.Find(storable)) return storable;
        std::string& name = lastNames_.try_emplace(storable, storable).first->second;
        do
            name = NextName(name);
        while (takes_.Find(name) || storedNames_.contains(name));
        return name;
    }

    static std::size_t ClaimFound(Take& take, std::span<const StoredNode> nodes,
                                  const FoundNodes& found) {
        const NodesByName own = NodesOf(take);
        std::size_t claimed = 0;
        for (std::size_t i = 0; i < nodes.size(); ++i) {
            if (!found[i] || own.contains(nodes[i].name)) continue;
            if (ClaimNode(*found[i], take, nodes[i].name)) ++claimed;
        }
        return claimed;
    }

    std::size_t ClaimByNumber(Take& take, const StoredPlugin& plugin) {
        const NodesByName own = NodesOf(take);
        std::vector<StoredNode> sought;
        for (const StoredNode& node : plugin.nodes)
            if (!own.contains(node.name) && node.element.Count(form::kNumber) > 0)
                sought.push_back(node);
        if (sought.empty()) return 0;
        const FoundNodes found = FoundNodes::ByNumber(adaptor_, plugin.name, sought);
        std::size_t claimed = 0;
        for (std::size_t i = 0; i < sought.size(); ++i) {
            if (!found[i] || !NameAgrees(*found[i], plugin.name, sought[i].name)) continue;
            if (ClaimNode(*found[i], take, sought[i].name)) ++claimed;
        }
        return claimed;
    }

    // The names of those that are missing still.
    static std::vector<std::string> SettleMissing(Take& take) {
        const NodesByName own = NodesOf(take);
        StoredRest& rest = take.Rest();
        std::erase_if(rest.missingNodes,
                      [&](const StoredNode& node) { return own.contains(node.name); });
        rest.isLost = rest.isLost && own.empty();
        std::vector<std::string> names;
        for (const StoredNode& node : rest.missingNodes)
            names.push_back(node.name);
        return names;
    }

    TVL::AdaptorInterface& adaptor_;
    Takes& takes_;
    std::vector<StoredPlugin> plugins_;
    std::set<std::string> storedNames_;
    std::map<std::string, std::string> lastNames_;  // given in place of a name that was taken
    std::vector<const Take*> made_;                 // for each of plugins_ so far
    LoadedState loaded_;
};

}  // namespace

LoadedState LoadState(TVL::AdaptorInterface& adaptor, Takes& takes, const XMLNode& state) {
    return Loader(adaptor, takes, ReadState(state)).Load();
}

void WriteToTrace(const LoadedState& loaded) {
    if (loaded.takes.empty() && loaded.faults.empty()) return;
    TVL::Log log("Stored state", TVL::Log::kNotice);
    for (const std::string& fault : loaded.faults)
        log.Write(fault, TVL::Log::kWarning);
    for (const LoadedTake& take : loaded.takes) {
        log.WriteValue("take", take.name);
        if (take.name != take.storedName) log.WriteValue("stored as", take.storedName);
        log.WriteValue("nodes claimed", std::to_string(take.nodesClaimed));
        for (const std::string& name : take.nodesNotFound)
            log.WriteValue("node not found", take.name + ": " + name, TVL::Log::kWarning);
    }
}

}  // namespace replay
