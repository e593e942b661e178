#pragma once

#include <vector>

#include "headless/scene/node.h"
#include "host/point3.h"

namespace headless {

struct NodeCopy {
    SceneNode* source;
    SceneNode* target;
};

// Copies nodes with their controllers and objects into the scene, with `withBranches` all that
// hangs below them too; undoable. A copy hangs below the copy of its source's parent, or else below
// that parent itself, and those with no copied parent are moved by `offset` in the world. Names are
// new; everything else is the source's.
std::vector<NodeCopy> CopyNodes(const std::vector<SceneNode*>& nodes, const Point3& offset,
                                bool withBranches);

// Copies that are not to stay after all, the last first.
void DeleteCopies(std::vector<NodeCopy> copies);

}  // namespace headless
