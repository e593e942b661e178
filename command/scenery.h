#pragma once

#include <cstdint>
#include <optional>

namespace headless {

// The handle of the node "Ground". If there is none, one is drawn: a flat square of 20 metres
// around the origin, which is no undo step.
std::uint32_t FindOrDrawGround();

// The handle of the first shape in the scene.
std::optional<std::uint32_t> FirstShape();

}  // namespace headless
