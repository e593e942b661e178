#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "headless/scene/child_list.h"
#include "host/node.h"

namespace headless {

class SceneNode;

// What a node is by itself, without its links.
struct NodeLook {
    std::string name;
    bool isHidden = false;
    std::uint32_t wireColour = 0xC0C0C0;  // red in the low byte
    std::map<HostString, HostString, std::less<>> userProps;
};

// A node belongs to the scene and to the undo records that name it, and is freed with the last of
// them; whoever deletes it takes it out of the scene only. Plain pointers to nodes are good within
// one call.
using NodePtr = std::shared_ptr<SceneNode>;

// One node of the scene, or its root. Changes are undoable unless it says otherwise.
class SceneNode final : public INode, public std::enable_shared_from_this<SceneNode> {
  public:
    // Neither object nor controller yet. The root has handle 0.
    static NodePtr New(std::uint32_t handle);

    const char* GetName() override { return Met("GetName").look_.name.c_str(); }
    void SetName(const char* name) override;

    INode* GetParentNode() override { return Met("GetParentNode").parent_; }
    bool IsRootNode() override { return handle_ == 0; }
    int NumberOfChildren() override {
        return static_cast<int>(Met("NumberOfChildren").children_.Size());
    }
    INode* GetChildNode(int index) override;
    void AttachChild(INode* child, int keepTM) override;
    void Detach(TimeValue t, int keepTM) override;

    void Hide(bool hide) override;
    bool IsHidden(std::uint32_t flags, bool forRenderer) override;
    bool Selected() override { return Met("Selected").selected_; }

    std::uint32_t GetHandle() override { return Met("GetHandle").handle_; }

    Object* GetObjectRef() override { return Met("GetObjectRef").object_; }
    const ObjectState& EvalWorldState(TimeValue t, bool evalHidden) override;

    Control* GetTMController() override { return Met("GetTMController").transform_; }
    bool SetTMController(Control* controller) override;

    Matrix3 GetNodeTM(TimeValue t, Interval* valid) override;
    void SetNodeTM(TimeValue t, const Matrix3& world) override;
    Matrix3 GetObjectTM(TimeValue t, Interval* valid) override { return GetNodeTM(t, valid); }

    Material* Mtls() override { return &material_; }
    int NumMtls() override { return 1; }

    void SetWireColor(std::uint32_t colour) override;
    std::uint32_t GetWireColor() override { return Met("GetWireColor").look_.wireColour; }

    bool UserPropExists(const HostString& key) override;
    bool GetUserPropString(const HostString& key, HostString& value) override;
    void SetUserPropString(const HostString& key, const HostString& value) override;

    void GetClassName(HostString& name) override { name = "Node"; }
    SClass_ID SuperClassID() override { return kNodeSuperClass; }
    Class_ID ClassID() override { return {kNodeSuperClass, 0}; }
    void DeleteThis() override {}  // who drops a node does not free it: it is its owners'

    // "Transform" alone.
    int NumSubs() override { return 1; }
    Animatable* SubAnim(int index) override;
    HostString SubAnimName(int index) override;
    bool AssignController(Animatable* controller, int index) override;

    // The transform controller and the object.
    int NumRefs() override { return 2; }
    RefTargetHandle GetReference(int index) override;
    void SetReference(int index, RefTargetHandle target) override;

    // A reference to a node means this very node, also in a copy of whoever refers to it.
    RefTargetHandle Clone(RemapDir&) override { return this; }

    void SetObject(Object* object);
    const NodeLook& Look() const { return look_; }
    void SetLook(NodeLook look) { look_ = std::move(look); }  // outside the scene; not undoable

    // For those who keep the scene's books; none of these is undoable.
    SceneNode* Parent() const { return parent_; }
    const ChildList& Children() const { return children_; }
    const std::string& Name() const { return look_.name; }
    const auto& UserProps() const { return look_.userProps; }
    std::size_t IndexInParent() const { return ChildList::IndexOf(link_); }
    void Hang(SceneNode& parent, std::size_t index);  // from nowhere
    void Unhang();
    void Abandon();                                // forgets parent and children
    bool HangsBelow(const SceneNode& node) const;  // or is that node

    // Moves the node to another place, which becomes the one that it had. False, and nothing done:
    // one of them is not in the scene any more, or the node would hang below itself.
    bool Rehang(NodePtr& parent, std::size_t& index);

    void MarkSelected(bool selected) { selected_ = selected; }
    bool IsSelected() const { return selected_; }
    std::uint32_t Handle() const { return handle_; }
    void MarkLeft(bool left) { left_ = left; }

  private:
    static constexpr SClass_ID kNodeSuperClass = 1;
    enum Reference { kTransform = 0, kObject = 1 };

    explicit SceneNode(std::uint32_t handle) : handle_(handle) {}
    ~SceneNode() override = default;

    // Where a guest comes in, who should know whether the node is there.
    const SceneNode& Met(const char* operation) const;

    void MoveTo(SceneNode& parent, TimeValue t, int keepTM);

    // Near each other: whoever goes over a large scene asks for these.
    std::uint32_t handle_;
    bool selected_ = false;
    bool left_ = false;  // was in the scene, and is not now
    NodeLook look_;
    SceneNode* parent_ = nullptr;
    ChildList children_;
    ChildLink link_{*this};  // in the parent's children
    Control* transform_ = nullptr;
    Object* object_ = nullptr;
    ObjectState evaluated_;
    Material material_;
};

}  // namespace headless
