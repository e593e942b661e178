#pragma once

#include <cstdint>

#include "headless/viewport.h"
#include "host/graphics_window.h"

namespace headless {

// What a node finds set in the window when its turn comes.
inline std::uint32_t RenderLimits(const ViewportSettings& settings) {
    return GW_Z_BUFFER | (settings.isWireframe ? GW_WIREFRAME : GW_ILLUM);
}

}  // namespace headless
