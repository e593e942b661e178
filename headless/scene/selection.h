#pragma once

#include <vector>

#include "scene/node.h"

// Which nodes are selected. Changes are undoable, and are told to the panel and to the utility.
namespace headless {

// In the order of their handles.
const std::vector<SceneNode*>& SelectedNodes();

void SelectNodes(const std::vector<SceneNode*>& nodes, bool clearFirst);
void DeselectNodes(const std::vector<SceneNode*>& nodes);
void Deselect(SceneNode& node);
void ClearSelection();

// When the scene is freed.
void ForgetSelection();

}  // namespace headless
