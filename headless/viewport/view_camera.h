#pragma once

#include <string>

#include "headless/drawing/view.h"
#include "headless/viewport.h"
#include "headless/viewport/ground_grid.h"

class INode;

namespace headless {

bool HasPictureSize(const ViewportSettings& settings);

// How the settings look at the running scene at a time: through the camera that they name, or by
// the viewport's own. Every number of the view is finite, whatever the scene
// holds.
struct AimedView {
    std::string error;  // why there is no view, in one line; empty if there is one
    View view;
    GroundGrid grid;
    const INode* camera = nullptr;  // whom it looks through; null for the viewport's own
};
AimedView AimView(const ViewportSettings& settings, TimeValue t);

// What the viewport draws, and how it looks at it.
struct SeenScene {
    AimedView aimed;  // with the error, if there is one
    DrawList list;
};
SeenScene SeeScene(const ViewportSettings& settings, TimeValue t);

}  // namespace headless
