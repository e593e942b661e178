#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>

#include "host/interface.h"
#include "host/object.h"

// A scene node of the host, held without a reference to it. The host may delete the node at any
// moment and bring it back by undo, so pointer and handle are kept together and looked up at each
// use: a node that is gone reads as null. A node of the next scene can have both from one of this,
// so that a link is good for the scene alone in which it was made.
class HostNodeLink {
  public:
    HostNodeLink() = default;
    explicit HostNodeLink(INode* node) : node_(node), handle_(node ? node->GetHandle() : 0) {}

    // The node, if it is in the scene now.
    INode* Get() const {
        if (!node_ || scene_ != scenesLeft_) return nullptr;
        return GetCOREInterface()->GetINodeByHandle(handle_) == node_ ? node_ : nullptr;
    }

    // The scene goes. Links made so far read as null from here on.
    static void LeaveScene() { ++scenesLeft_; }

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
    std::uint32_t scene_ = scenesLeft_;

    static constinit inline std::uint32_t scenesLeft_ = 0;
};

// The object that a scene node shows, held without a reference to it: once the node is gone or
// shows another object, it reads as null.
class ShownObject {
  public:
    ShownObject() = default;
    explicit ShownObject(const HostNodeLink& node) : node_(node) {
        if (INode* host = node_.Get()) object_ = host->GetObjectRef();
    }

    Object* Get() const {
        INode* const host = node_.Get();
        return host && host->GetObjectRef() == object_ ? object_ : nullptr;
    }

  private:
    HostNodeLink node_;
    Object* object_ = nullptr;
};
