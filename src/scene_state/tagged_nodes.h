#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

#include "host/interface.h"
#include "nodes/host_node_link.h"
#include "nodes/node_list.h"
#include "tvl/xml_node.h"

// Visits the root of the scene and every node in it, a parent before its children, children in
// their order. Scenes can be deep, so nothing recurses.
template <class Visit>
void WalkScene(Visit visit) {
    std::vector<INode*> pending = {GetCOREInterface()->GetRootNode()};
    while (!pending.empty()) {
        INode& node = *pending.back();
        pending.pop_back();
        visit(node);
        for (int index = node.NumberOfChildren(); index-- > 0;)
            pending.push_back(node.GetChildNode(index));
    }
}

// Whom a tag is for: what stays of it once it has been read, since the trees of a large scene are
// more than the caches hold.
struct TagNames {
    std::string plugin;
    std::string object;

    static TagNames Of(const XMLNode& tag);
};

// Nodes by the names in their tags, those of one name in the order in which they came.
class NodesByNames {
  public:
    void Add(TagNames names, const HostNodeLink& node);
    std::span<const HostNodeLink> Find(const std::string& pluginName,
                                       const std::string& objectName) const;
    void Clear() { byPluginName_.clear(); }

  private:
    using ByObjectName = std::unordered_map<std::string, std::vector<HostNodeLink>>;
    std::unordered_map<std::string, ByObjectName> byPluginName_;
};

// The tagged nodes of one gathering, in the order of the scene, found by the names in their tags.
class TaggedNodeList {
  public:
    void Add(TagNames names, INode& node);

    const std::vector<HostNodeLink>& Nodes() const { return nodes_; }

    // Of the nodes with these names the last one that is still in the scene; null if there is none.
    INode* Find(const std::string& pluginName, const std::string& objectName) const;

    // The Core left: the tags wait, untouched, for the next one.
    void Abandon();
    bool IsAbandoned() const { return isAbandoned_; }

  private:
    std::vector<HostNodeLink> nodes_;
    NodesByNames byNames_;
    bool isAbandoned_ = false;
};

// The text of the tag in the node's property; an emptied tag has an empty one.
std::optional<std::string> TagTextOn(INode& node);

// Who bears which tag in the scene, for a Core that asks for each of its plug-ins while it loads:
// the scene is gone through once, and again only when tags can have come.
class TagsInScene {
  public:
    // The first node, in the order of the scene, whose tag bears these names now; null if there is
    // none.
    INode* Find(const std::string& pluginName, const std::string& objectName);

    // Which of several nodes is the first can have changed since the scene was read.
    void MarkUnordered() { isInOrder_ = false; }
    void MarkStale() { isRead_ = false; }

    // The Core asked for nodes and could not be answered.
    void MarkUnanswered() { isAnswered_ = false; }
    bool IsAnswered() const { return isAnswered_; }

    // The Core left.
    void Abandon() { isAbandoned_ = true; }
    bool IsAbandoned() const { return isAbandoned_; }

  private:
    struct ReadTag {
        std::string text;
        TagNames names;
    };

    const TagNames* NamesOn(INode& node);
    void Read();

    std::unordered_map<std::uint32_t, ReadTag>
        tags_;                    // by handle; parsed again if the text changed
    NodesByNames byNames_;        // in the order of the scene
    std::uint64_t arrivals_ = 0;  // when it was read
    bool isRead_ = false;
    bool isInOrder_ = false;
    bool isAnswered_ = true;
    bool isAbandoned_ = false;
};

// The lists of the gatherings that are running, the innermost last: while a Core loads or a box
// shows, another merge can bring tags of its own. Each is shared with its gathering, which outlives
// the adaptor if the host goes down meanwhile. The same for the calls in which a Core loads.
struct TaggedNodeLists {
    std::vector<std::shared_ptr<TaggedNodeList>> running;
    std::vector<std::shared_ptr<TagsInScene>> loads;
};

// The adaptor's lists.
TaggedNodeLists& NodesWithTags();

// Stands around a call in which the Core loads.
class CoreLoads {
  public:
    CoreLoads();
    ~CoreLoads();
    CoreLoads(const CoreLoads&) = delete;
    CoreLoads& operator=(const CoreLoads&) = delete;

    // Whatever the Core has asked for so far.
    bool IsAnswered() const {
        return tags_->IsAbandoned() ||
               (tags_->IsAnswered() && lostClaimsBefore_ == AdaptorNodes().lostClaims);
    }

  private:
    std::shared_ptr<TagsInScene> tags_ = std::make_shared<TagsInScene>();
    std::uint64_t lostClaimsBefore_ = AdaptorNodes().lostClaims;
};

// A tag in the scene has been written.
void TagsHaveChanged();

// No gathering clears another tag: what it has not done is left to the next Core.
void AbandonGatherings();
