#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "headless/scene/node.h"

namespace headless {

// The names of the nodes in the scene, so that a new one can get a name of its own quickly. Names
// that are set by hand may be double.
class NameBook {
  public:
    void Add(const std::string& name);
    void Remove(const std::string& name);
    void Replace(const std::string& before, const std::string& after);

    // `stem` followed by the next number of at least two digits that makes it a new name.
    std::string MakeUnique(const std::string& stem);

  private:
    std::unordered_map<std::string, std::size_t> uses_;
    std::unordered_map<std::string, unsigned> lastNumber_;  // by stem
};

// The nodes that are in the scene, and what happens to all of them together.
class Scene {
  public:
    void Open();   // the root alone
    void Clear();  // frees every node but the root; the undo stream has been emptied before
    void Close();  // the same, and the root

    SceneNode* Root() const { return root_.get(); }
    SceneNode* Find(std::uint32_t handle) const;  // null: not in the scene
    bool Contains(const INode* node) const { return addresses_.contains(node); }
    NameBook& Names() { return names_; }
    bool IsThere(const SceneNode& node) const;  // as a node or as the root

    // A node outside the scene, under a handle that no node of this scene has had.
    NodePtr NewNode();

    // New handles go on behind this one. Setting it is for a scene that is empty.
    std::uint32_t LastHandle() const { return lastHandle_; }
    void SetLastHandle(std::uint32_t handle) { lastHandle_ = handle; }

    // A new node with a name of its own and the host's own transform controller, under the root.
    SceneNode* CreateObjectNode(Object* object);

    // Puts a node from outside under `parent`, as its last child; undoable.
    void Add(const NodePtr& node, SceneNode& parent);

    // Takes a node out; its children move up to its parent and keep their world transforms.
    void Delete(SceneNode& node);

    // Every node but the root, a parent before its children, children in their order.
    std::vector<SceneNode*> InOrder() const;

  private:
    void FlipPresence(const NodePtr& node, const NodePtr& parent, std::size_t index, bool present);
    void Enter(const NodePtr& node, SceneNode& parent, std::size_t index);
    void Leave(SceneNode& node);

    NodePtr root_;
    std::unordered_map<std::uint32_t, NodePtr> nodes_;
    std::unordered_set<const INode*> addresses_;  // of the same nodes
    // By Find, the last time; null once a node has left.
    mutable SceneNode* found_ = nullptr;
    mutable std::uint32_t foundHandle_ = 0;  // its own is as far as the node
    NameBook names_;
    std::uint32_t lastHandle_ = 0;  // goes on when the scene is emptied
};

Scene& TheScene();

}  // namespace headless
