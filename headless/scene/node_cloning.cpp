#include "headless/scene/node_cloning.h"

#include <algorithm>
#include <string>
#include <unordered_set>
#include <utility>

#include "headless/control/animate_mode.h"
#include "headless/hold/graveyard.h"
#include "headless/references/copy_map.h"
#include "headless/scene/scene.h"
#include "headless/scene/time_and_units.h"

namespace headless {
namespace {

// The nodes and what hangs below them, each once, a parent before its children.
std::vector<SceneNode*> WithBranches(const std::vector<SceneNode*>& nodes) {
    const std::unordered_set<const SceneNode*> chosen(nodes.begin(), nodes.end());
    std::unordered_set<const SceneNode*> inside;
    std::vector<SceneNode*> found;
    for (SceneNode* node : TheScene().InOrder()) {
        if (!chosen.contains(node) && !inside.contains(node->Parent())) continue;
        inside.insert(node);
        found.push_back(node);
    }
    return found;
}

std::string Stem(const std::string& name) {
    return name.substr(0, name.find_last_not_of("0123456789") + 1);
}

// An object that cannot be copied is shown by both nodes, so that the copy does not lose it.
Object* CopyOfObject(Object* object, RemapDir& remap) {
    auto* const copy = static_cast<Object*>(remap.CloneRef(object));
    return copy ? copy : object;
}

SceneNode* CopyOne(SceneNode& source, RemapDir& remap) {
    const NodePtr copy = TheScene().NewNode();
    copy->SetLook(source.Look());
    copy->SetName(TheScene().Names().MakeUnique(Stem(source.Name())).c_str());
    const Fresh<Object> object(CopyOfObject(source.GetObjectRef(), remap));
    copy->SetObject(object.get());
    const Fresh<Control> control(static_cast<Control*>(remap.CloneRef(source.GetTMController())));
    copy->SetTMController(control.get());
    source.BaseClone(&source, copy.get(), remap);
    auto* parent = static_cast<SceneNode*>(remap.FindMapping(source.Parent()));
    TheScene().Add(copy, parent ? *parent : *source.Parent());
    return copy.get();
}

void MoveInWorld(SceneNode& node, const Point3& offset) {
    const TimeValue t = CurrentTime();
    Matrix3 world = node.GetNodeTM(t, nullptr);
    world.SetRow(3, world.GetTrans() + offset);
    world.ValidateFlags();
    const WithoutKeys withoutKeys;
    node.SetNodeTM(t, world);
}

}  // namespace

void DeleteCopies(std::vector<NodeCopy> copies) {
    for (; !copies.empty(); copies.pop_back())
        TheScene().Delete(*copies.back().target);
}

std::vector<NodeCopy> CopyNodes(const std::vector<SceneNode*>& nodes, const Point3& offset,
                                bool withBranches) {
    CopyMap remap;
    std::vector<NodeCopy> copies;
    const std::vector<SceneNode*> sources = withBranches ? WithBranches(nodes) : nodes;
    copies.reserve(sources.size());
    try {
        for (SceneNode* source : sources) {
            if (remap.FindMapping(source)) continue;
            const bool isTop = !remap.FindMapping(source->Parent());
            copies.push_back({source, CopyOne(*source, remap)});
            if (isTop && offset != Point3()) MoveInWorld(*copies.back().target, offset);
        }
    } catch (...) {
        DeleteCopies(std::move(copies));
        throw;
    }
    return copies;
}

}  // namespace headless
