#pragma once

#include <ostream>
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

// Writes a glTF 2.0 file (ISO/IEC 12113:2022, from the Khronos Group): the nodes of each take
// with what they show, its camera with the lens of its first frame, and an animation of the take's
// name, whose times are those of the scene. What stays as it is has no sampler. Of several takes
// each has a node of its name, above its own. The frames are kept until they are written, in 4
// bytes a number; `losses` gets an entry for each take. The result is empty, also if `done` gave it
// up, or says in one line why there is no file; the stream's own state tells whether it could be
// written.
std::string WriteGltf(const std::vector<MovingTake>& takes, GltfForm form, std::ostream& out,
                      const FrameDone& done, std::vector<Loss>& losses);

}  // namespace interchange
