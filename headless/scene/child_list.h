#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace headless {

class SceneNode;

// A node's place among its siblings, inside the node itself.
struct ChildLink {
    explicit ChildLink(SceneNode& child) : node(&child) {}
    ChildLink(const ChildLink&) = delete;
    ChildLink& operator=(const ChildLink&) = delete;

    SceneNode* node;
    ChildLink* above = nullptr;
    ChildLink* left = nullptr;  // earlier siblings
    ChildLink* right = nullptr;
    std::size_t size = 1;        // links from here down
    std::uint32_t priority = 0;  // never above that of `above`; random, which keeps the tree flat
};

// The children of a node in their order, as a tree that runs through them: to find a place or the
// number of one, to come and to go takes the logarithm of how many there are, and only a copy
// allocates.
class ChildList {
  public:
    std::size_t Size() const { return top_ ? top_->size : 0; }
    SceneNode* At(std::size_t index) const;  // that exists
    std::vector<SceneNode*> InOrder() const;

    static std::size_t IndexOf(const ChildLink& child);

    // A child that hangs nowhere gets this index, or the last.
    void Insert(std::size_t index, ChildLink& child);
    void Remove(ChildLink& child);

    // Leaves nothing, whatever has become of the children.
    void Forget() { top_ = nullptr; }

  private:
    void Raise(ChildLink& child);
    ChildLink*& PointerTo(const ChildLink& child);

    ChildLink* top_ = nullptr;
};

}  // namespace headless
