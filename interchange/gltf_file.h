#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "interchange/bvh_file.h"
#include "interchange/take.h"

namespace interchange {

// One of the animations of a file.
struct MovingTake {
    const Take* take = nullptr;
    Poses* poses = nullptr;
};

enum class GltfForm {
    kText,    // .gltf, JSON with its buffer as base64
    kBinary,  // .glb
};

// The bytes of a glTF 2.0 file (Khronos Group, "glTF 2.0 Specification", 2021): the nodes of each
// take with what they show, its camera with the lens of its first frame, and an animation of the
// take's name, whose times are those of the scene. What stays as it is has no sampler. Empty if
// `done` gave it up. `losses` gets an entry for each take.
std::string GltfOf(const std::vector<MovingTake>& takes, GltfForm form, const FrameDone& done,
                   std::vector<Loss>& losses);

}  // namespace interchange
