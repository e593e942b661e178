#pragma once

#include "host/object.h"
#include "nodes/host_node_link.h"

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
