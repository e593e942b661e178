#include "headless/scene/selection.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <unordered_set>
#include <utility>

#include "headless/hold/undo_stream.h"
#include "headless/scene/scene.h"

namespace headless {
namespace {

EditWatcher* watcher = nullptr;
int changes = 0;  // that are under way

std::map<std::uint32_t, SceneNode*> selection;  // by handle
std::vector<SceneNode*> inOrder;                // the same, where somebody has asked since
bool isInOrder = true;

void Toggle(SceneNode& node) {
    if (node.IsSelected())
        selection.erase(node.Handle());
    else if (TheScene().Contains(&node))
        selection.emplace(node.Handle(), &node);
    else
        return;
    node.MarkSelected(!node.IsSelected());
    isInOrder = false;
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

void WatchEdits(EditWatcher* next) {
    watcher = next;
}

EditChange::EditChange() {
    if (changes++ == 0 && watcher) watcher->BeforeEditChange();
}

EditChange::~EditChange() {
    if (--changes == 0 && watcher) watcher->AfterEditChange();
}

const std::vector<SceneNode*>& SelectedNodes() {
    if (isInOrder) return inOrder;
    inOrder.clear();
    for (const auto& [handle, node] : selection)
        inOrder.push_back(node);
    isInOrder = true;
    return inOrder;
}

SceneNode* SoleSelectedNode() {
    return selection.size() == 1 ? selection.begin()->second : nullptr;
}

void SelectNodes(const std::vector<SceneNode*>& nodes, bool clearFirst) {
    std::vector<SceneNode*> toggled = Those(nodes, false);
    if (clearFirst) {
        const std::unordered_set<const SceneNode*> staying(nodes.begin(), nodes.end());
        for (const auto& [handle, node] : selection) {
            if (!staying.contains(node)) toggled.push_back(node);
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
    ToggleAll(SelectedNodes());
}

void ForgetSelection() {
    for (const auto& [handle, node] : selection)
        node->MarkSelected(false);
    selection.clear();
    inOrder.clear();
    isInOrder = true;
}

}  // namespace headless
