#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "nodes/host_node_link.h"
#include "tvl/xml_node.h"

// A host node that bears a tag, and what the tag says.
struct TaggedNode {
    HostNodeLink hostNode;
    XMLNode tag;
};

// The tagged nodes of one gathering, in the order of the scene, found by the names in their tags.
class TaggedNodeList {
  public:
    void Add(std::unique_ptr<TaggedNode> node);

    const std::vector<std::unique_ptr<TaggedNode>>& Nodes() const { return nodes_; }

    // Of the nodes with these names the last one that is still in the scene; null if there is none.
    INode* Find(std::string_view pluginName, std::string_view objectName) const;

    // The Core left: the tags wait, untouched, for the next one.
    void Abandon();
    bool IsAbandoned() const { return isAbandoned_; }

  private:
    using ByObjectName = std::unordered_map<std::string_view, std::vector<const TaggedNode*>>;

    std::vector<std::unique_ptr<TaggedNode>> nodes_;
    std::unordered_map<std::string_view, ByObjectName> byPluginName_;  // views into the tags
    bool isAbandoned_ = false;
};

// The text of the tag in the node's property; an emptied tag has an empty one.
std::optional<std::string> TagTextOn(INode& node);

// What the tags that the scene bears now say whose they are. A Core that loads asks once for each
// of its plug-ins, so that a text is parsed again only if it is another one.
class TagsInScene {
  public:
    struct Names {
        std::string plugin;
        std::string object;
    };

    // Null if the node bears no tag. Good until the next call.
    const Names* NamesOn(INode& node);

    void Forget() { read_.clear(); }

  private:
    struct ReadTag {
        std::string text;
        Names names;
    };
    std::unordered_map<std::uint32_t, ReadTag> read_;  // by the node's handle
};

// The lists of the gatherings that are running, the innermost last: while a Core loads or a box
// shows, another merge can bring tags of its own. Each is shared with its gathering, which outlives
// the adaptor if the host goes down meanwhile.
struct TaggedNodeLists {
    std::vector<std::shared_ptr<TaggedNodeList>> running;
    TagsInScene inScene;  // forgotten when the last of them ends
};

// The adaptor's lists.
TaggedNodeLists& NodesWithTags();

// No gathering clears another tag: what it has not done is left to the next Core.
void AbandonGatherings();
