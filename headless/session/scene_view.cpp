#include "headless/scene_view.h"

#include <algorithm>

#include "headless/classes/class_registry.h"
#include "headless/memory_chunks.h"
#include "headless/references/census.h"
#include "headless/scene/scene.h"
#include "host/custom_controls.h"

namespace {
constinit std::size_t controlModules = 0;
}

// The system's buttons are all that this host's dialogs are made of.
void InitCustomControls(HINSTANCE) {
    ++controlModules;
}

namespace headless {
namespace {

// The controller, and below it all parts that are there.
std::vector<Animatable*> WithParts(Animatable& controller) {
    std::vector<Animatable*> parts{&controller};
    for (std::size_t i = 0; i < parts.size(); ++i) {
        for (int sub = 0; sub < parts[i]->NumSubs(); ++sub) {
            if (Animatable* part = parts[i]->SubAnim(sub)) parts.push_back(part);
        }
    }
    return parts;
}

std::size_t StoredBytes(Animatable& part) {
    auto* maker = dynamic_cast<ReferenceMaker*>(&part);
    if (!maker) return 0;
    return SavedBytes([&](ISave* save) { return maker->Save(save); }).size();
}

KeyView KeysOf(Animatable& controller) {
    KeyView keys;
    std::vector<TimeValue> times;
    for (Animatable* part : WithParts(controller)) {
        for (int i = 0, count = part->NumKeys(); i < count; ++i)
            times.push_back(part->GetKeyTime(i));
        keys.storedBytes += StoredBytes(*part);
    }
    std::sort(times.begin(), times.end());
    times.erase(std::unique(times.begin(), times.end()), times.end());
    keys.count = static_cast<int>(times.size());
    if (!times.empty()) {
        keys.first = times.front();
        keys.last = times.back();
    }
    return keys;
}

std::string ClassNameOf(Animatable& object) {
    if (ClassDesc* known = TheClasses().Find(object.SuperClassID(), object.ClassID()))
        return known->ClassName();
    HostString name;
    object.GetClassName(name);
    return name;
}

NodeView ViewOf(SceneNode& node) {
    NodeView view;
    view.name = node.Name();
    view.handle = node.Handle();
    view.parent = node.Parent()->Handle();
    if (Object* object = node.GetObjectRef()) {
        view.objectSuperClass = object->SuperClassID();
        view.objectClass = object->ClassID();
        view.objectClassName = ClassNameOf(*object);
    }
    if (Control* controller = node.GetTMController()) {
        view.controllerClass = controller->ClassID();
        view.controllerClassName = ClassNameOf(*controller);
        view.keys = KeysOf(*controller);
    }
    view.hidden = node.IsHidden(0, false);
    view.selected = node.Selected();
    view.wireColour = node.GetWireColor();
    view.userProperties.insert(node.UserProps().begin(), node.UserProps().end());
    return view;
}

}  // namespace

std::vector<NodeView> Nodes() {
    std::vector<NodeView> views;
    for (SceneNode* node : TheScene().InOrder())
        views.push_back(ViewOf(*node));
    return views;
}

INode* FindNode(std::string_view name) {
    for (SceneNode* node : TheScene().InOrder()) {
        if (node->Name() == name) return node;
    }
    return nullptr;
}

bool NodePosition(std::uint32_t handle, TimeValue t, PositionView& position) {
    SceneNode* node = TheScene().Find(handle);
    if (!node) return false;
    const Point3 at = node->GetNodeTM(t, nullptr).GetTrans();
    position = {at.x, at.y, at.z};
    return true;
}

Census TakeCensus() {
    Census census;
    census.controlModules = controlModules;
    census.objects = LiveObjects::CountByClass();
    for (const auto& [name, count] : census.objects)
        census.objectCount += count;
    census.heapBlocks = HeapBlocks();
    return census;
}

}  // namespace headless
