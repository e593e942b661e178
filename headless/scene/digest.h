#pragma once

#include <cstdint>

namespace headless {

// See SceneDigest of headless/scene_view.h.
std::uint64_t DigestScene();

}  // namespace headless
