#pragma once

#include <cstdint>

#include "host/control.h"
#include "host/object.h"
#include "host/reference.h"
#include "host/tab.h"

// A node of the host's scene. It stays the scene's; the pointer is good until the node is deleted,
// and comes back good when that is undone. Identity over time is the handle.
class HOST_API INode : public ReferenceTarget {
  public:
    virtual const char* GetName() = 0;
    virtual void SetName(const char* name) = 0;

    // The parent of a node at the top is the root, whose own parent is null.
    virtual INode* GetParentNode() = 0;
    virtual bool IsRootNode() = 0;
    virtual int NumberOfChildren() = 0;
    virtual INode* GetChildNode(int index) = 0;

    // With keepTM the child keeps its world transform, at the current time. A node that would come
    // to hang below itself stays where it is.
    virtual void AttachChild(INode* child, int keepTM = 1) = 0;
    virtual void Detach(TimeValue t, int keepTM = 1) = 0;

    virtual void Hide(bool hide) = 0;
    virtual bool IsHidden(std::uint32_t flags = 0, bool forRenderer = false) = 0;
    virtual bool Selected() = 0;

    virtual std::uint32_t GetHandle() = 0;

    virtual Object* GetObjectRef() = 0;
    virtual const ObjectState& EvalWorldState(TimeValue t, bool evalHidden = true) = 0;

    virtual Control* GetTMController() = 0;
    virtual bool SetTMController(Control* controller) = 0;

    // World matrices at a time, in host space. `valid` may be null.
    virtual Matrix3 GetNodeTM(TimeValue t, Interval* valid = nullptr) = 0;
    virtual void SetNodeTM(TimeValue t, const Matrix3& world) = 0;
    virtual Matrix3 GetObjectTM(TimeValue t, Interval* valid = nullptr) = 0;

    // The materials of what it shows, the host's.
    virtual Material* Mtls() = 0;
    virtual int NumMtls() = 0;

    // Red in the low byte.
    virtual void SetWireColor(std::uint32_t colour) = 0;
    virtual std::uint32_t GetWireColor() = 0;

    // Texts that travel with the node.
    virtual bool UserPropExists(const HostString& key) = 0;
    virtual bool GetUserPropString(const HostString& key, HostString& value) = 0;
    virtual void SetUserPropString(const HostString& key, const HostString& value) = 0;

    ~INode() override;
};

using INodeTab = Tab<INode*>;
