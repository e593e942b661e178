#pragma once

#include <vector>

#include "headless/scene/node.h"

namespace headless {

// Lets the panel that shows what is selected follow: it is told before the selection, or the
// transform controller of a selected node, changes, while the old one is still whole, and after.

class EditWatcher {
  public:
    virtual void BeforeEditChange() = 0;
    virtual void AfterEditChange() = 0;

  protected:
    ~EditWatcher() = default;
};

void WatchEdits(EditWatcher* watcher);  // at most one; null for none

// Stands around such a change. Of nested ones only the outermost is told.
class EditChange {
  public:
    EditChange();
    ~EditChange();
    EditChange(const EditChange&) = delete;
    EditChange& operator=(const EditChange&) = delete;
};

// Which nodes are selected. Changes are undoable, and are told to the panel and to the utility.

// In the order of their handles; good until the selection changes.
const std::vector<SceneNode*>& SelectedNodes();

// The one node that is selected; null if there is none, or more.
SceneNode* SoleSelectedNode();

void SelectNodes(const std::vector<SceneNode*>& nodes, bool clearFirst);
void DeselectNodes(const std::vector<SceneNode*>& nodes);
void Deselect(SceneNode& node);
void ClearSelection();

// When the scene is freed.
void ForgetSelection();

}  // namespace headless
