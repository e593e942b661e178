#include "nodes/node_creation.h"

#include <memory>
#include <optional>
#include <utility>

#include "controllers/host_controls.h"
#include "controllers/scalar_control.h"
#include "controllers/transform_control.h"
#include "core_link/core_link.h"
#include "host/interface.h"
#include "nodes/max_node.h"
#include "nodes/node_deletion.h"
#include "nodes/node_lifetime.h"
#include "nodes/node_names.h"
#include "nodes/snapshots.h"
#include "objects/host_objects.h"
#include "tvl/ids.h"
#include "tvl/log.h"
#include "undo/undo_groups.h"

namespace {

constexpr std::uint32_t kRed = 255;

// Nothing: the Core that asks for a node has left while it was asked for its option, and with it
// the node's owner.
std::optional<bool> WantsOwnControllers() {
    const CoreInterface* const asking = AttachedCore();
    const bool wants = CoreOption(TVL::kOptimisedControllers, true);
    return AttachedCore() == asking ? std::optional(wants) : std::nullopt;
}

void PutTransformControl(INode& host) {
    const NewControl control =
        MakeControl(TransformControl::kSuperClassID, TransformControl::kClassID);
    if (control) host.SetTMController(control.get());
}

void PutScalarControls(CameraObject& camera) {
    const auto findCamera = [&camera] { return &camera; };
    ForEachParameter(findCamera, [](Animatable& parameters, int index) {
        const HostString name = parameters.SubAnimName(index);
        if (name != "FOV" && name != "Target Distance") return;
        const NewControl control =
            MakeControl(ScalarControl::kSuperClassID, ScalarControl::kClassID);
        if (control) parameters.AssignController(control.get(), index);
    });
}

std::string HostNameOf(const TVL::CoreElement* owner, const std::string& name) {
    return CutHostName(PluginNameOf(owner) + "_" + name);
}

// The record stands in the hold before the listener hears of the node, so that whatever the
// listener does to it, even ending it, comes behind its creation. Whether the listener has heard.
bool RecordCreation(const NodeWatch& node) {
    if (!IsHoldingUndo()) return false;
    AddUndoChunk(std::make_unique<NodeInstanceRestoreObj>(node.Get(), true));
    if (node.Get()) TellRestored(*node.Get());
    return true;
}

// What a node is to hang below, held by a link, since the Core may end it while it is asked for its
// option.
HostNodeLink LinkTo(TVL::CNode* parent) {
    return parent ? static_cast<CMAXNode*>(parent)->HostLink() : HostNodeLink();
}

struct FreeObject {
    void operator()(Object* object) const { object->DeleteThis(); }
};
template <class T>
using NewObject = std::unique_ptr<T, FreeObject>;

// The host node of a new object, which the scene owns from here on; null if there is none, and the
// object is freed. A host that throws has it all the same: nobody can tell how far it came.
INode* NewHostNode(NewObject<Object> object) {
    Object* const given = object.release();
    INode* const host = GetCOREInterface()->CreateObjectNode(given);
    if (!host) given->DeleteThis();
    return host;
}

// The real node of a new scene node, made and finished. If that fails both go again.
template <class Finish>
TVL::CNode* NewRealNode(TVL::CoreElement* owner, const std::string& name,
                        const HostNodeLink& parent, INode& host, Finish finish) {
    const HostNodeLink link(&host);
    std::optional<NodeWatch> node;
    try {
        auto made = std::make_unique<CMAXNode>(owner, name, parent.Get(), &host);
        node.emplace(made.get());
        static_cast<void>(made.release());
        finish(*node);
        return node->Get();
    } catch (...) {
        if (node && node->Get()) node->Get()->Destroy();
        TakeBackHostNode(link.Get());
        throw;
    }
}

}  // namespace

// Both ask the Core for its option before there is a node that it could end meanwhile. The listener
// can end the new node when it hears of it.

TVL::CNode* CreateLensNode(TVL::CoreElement* owner, const std::string& name, TVL::CNode* parent,
                           TVL::NodeListener* listener) {
    const HostNodeLink parentLink = LinkTo(parent);
    const std::optional<bool> ownControllers = WantsOwnControllers();
    if (!ownControllers) return nullptr;
    NewObject<CameraObject> object(GetCOREInterface()->CreateCameraObject(0));
    if (!object) return nullptr;
    CameraObject& camera = *object;
    camera.SetConeState(1);
    camera.SetHorzLineState(1);
    camera.Enable(1);
    INode* const host = NewHostNode(std::move(object));
    if (!host) return nullptr;
    return NewRealNode(owner, name, parentLink, *host, [&](const NodeWatch& node) {
        node.Get()->SetListener(listener);
        if (*ownControllers) {
            PutTransformControl(*host);
            PutScalarControls(camera);
        }
        host->SetName(HostNameOf(owner, name).c_str());
        RecordCreation(node);
    });
}

TVL::CNode* CreateHelperNode(TVL::CoreElement* owner, const std::string& name, TVL::CNode* parent,
                             const TVL::CMesh& mesh, TVL::NodeListener* listener) {
    TVL::Log log("creating helper", TVL::Log::kNotice);
    log.WriteValue("meshname", name);
    log.WriteValue("parent", parent ? parent->GetNodeName() : std::string("(NULL)"));
    const HostNodeLink parentLink = LinkTo(parent);
    const std::optional<bool> ownControllers = WantsOwnControllers();
    if (!ownControllers) return nullptr;
    TriObject* const object = CreateNewTriObject();
    if (!object) {
        log.Write("Unable to create 3ds max mesh object", TVL::Log::kError);
        return nullptr;
    }
    INode* const host = NewHostNode(NewObject<Object>(object));
    if (!host) {
        const CMAXNode without(owner, name, parentLink.Get(), nullptr);
        log.Write("Error creating node reference", TVL::Log::kError);
        return nullptr;
    }
    return NewRealNode(owner, name, parentLink, *host, [&](const NodeWatch& node) {
        host->SetWireColor(kRed);
        CMAXNode::CMAXSnapshot_Helper(object).Write(mesh);
        node.Get()->SetListener(listener);
        if (*ownControllers) PutTransformControl(*host);
        const bool isHeardOf = RecordCreation(node);
        try {
            INode* const named = node.Get() ? node.Get()->HostNode() : nullptr;
            if (named) named->SetName(HostNameOf(owner, name).c_str());
        } catch (...) {
            if (isHeardOf && node.Get()) TellRemoved(*node.Get());
            throw;
        }
    });
}
