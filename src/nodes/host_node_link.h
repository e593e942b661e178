#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>

#include "host/interface.h"

// A scene node of the host, held without a reference to it. The host may delete the node at any
// moment and bring it back by undo, so pointer and handle are kept together and looked up at each
// use: a node that is gone reads as null.
class HostNodeLink {
  public:
    HostNodeLink() = default;
    explicit HostNodeLink(INode* node) : node_(node), handle_(node ? node->GetHandle() : 0) {}

    // The node, if it is in the scene now.
    INode* Get() const {
        const bool there = node_ && GetCOREInterface()->GetINodeByHandle(handle_) == node_;
        return there ? node_ : nullptr;
    }

    // Whether a node was linked at all, present in the scene or not.
    bool IsSet() const { return node_ != nullptr; }

    // To be compared, not followed: the node may be gone, and another have come to its address.
    const INode* Pointer() const { return node_; }

    friend bool operator==(const HostNodeLink&, const HostNodeLink&) = default;

    struct Hash {
        std::size_t operator()(const HostNodeLink& link) const {
            return std::hash<std::uint32_t>()(link.handle_);
        }
    };

  private:
    INode* node_ = nullptr;
    std::uint32_t handle_ = 0;
};
