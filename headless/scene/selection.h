#pragma once

#include <vector>

#include "headless/scene/node.h"

// Which nodes are selected. Changes are undoable, and are told to the panel and to the utility.
namespace headless {

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
