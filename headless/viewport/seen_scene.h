#pragma once

#include "headless/viewport/view_camera.h"

namespace headless {

// What the viewport draws, and how it looks at it.
struct SeenScene {
    AimedView aimed;  // with the error, if there is one
    DrawList list;
};
SeenScene SeeScene(const ViewportSettings& settings, TimeValue t);

}  // namespace headless
