#include "scene/selection.h"

#include <algorithm>
#include <utility>

#include "objects/undoable.h"
#include "scene/edit_watch.h"
#include "scene/scene.h"

namespace headless {
namespace {

std::vector<SceneNode*> selection;

auto PlaceOf(SceneNode& node) {
    return std::lower_bound(
        selection.begin(), selection.end(), node.Handle(),
        [](SceneNode* other, std::uint32_t handle) { return other->Handle() < handle; });
}

void Toggle(SceneNode& node) {
    if (node.IsSelected())
        selection.erase(PlaceOf(node));
    else if (TheScene().Contains(&node))
        selection.insert(PlaceOf(node), &node);
    else
        return;
    node.MarkSelected(!node.IsSelected());
}

void ToggleAll(const std::vector<SceneNode*>& nodes) {
    if (nodes.empty()) return;
    std::vector<NodePtr> kept;
    kept.reserve(nodes.size());
    for (SceneNode* node : nodes)
        kept.push_back(node->shared_from_this());
    Undoably([kept = std::move(kept)] {
        const EditChange change;
        for (const NodePtr& node : kept)
            Toggle(*node);
    });
}

// Those of `nodes` that are or are not selected, each once.
std::vector<SceneNode*> Those(const std::vector<SceneNode*>& nodes, bool selected) {
    std::vector<SceneNode*> found;
    for (SceneNode* node : nodes) {
        if (TheScene().Contains(node) && node->IsSelected() == selected) found.push_back(node);
    }
    std::sort(found.begin(), found.end());
    found.erase(std::unique(found.begin(), found.end()), found.end());
    return found;
}

}  // namespace

const std::vector<SceneNode*>& SelectedNodes() {
    return selection;
}

void SelectNodes(const std::vector<SceneNode*>& nodes, bool clearFirst) {
    std::vector<SceneNode*> toggled = Those(nodes, false);
    if (clearFirst) {
        for (SceneNode* node : selection) {
            if (std::find(nodes.begin(), nodes.end(), node) == nodes.end()) toggled.push_back(node);
        }
    }
    ToggleAll(toggled);
}

void DeselectNodes(const std::vector<SceneNode*>& nodes) {
    ToggleAll(Those(nodes, true));
}

void Deselect(SceneNode& node) {
    DeselectNodes({&node});
}

void ClearSelection() {
    ToggleAll(std::vector(selection));
}

void ForgetSelection() {
    for (SceneNode* node : selection)
        node->MarkSelected(false);
    selection.clear();
}

}  // namespace headless
