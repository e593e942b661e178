#pragma once

#include "replay_core/recorder/geometry.h"
#include "tvl/mesh.h"

namespace replay {

// A solid of eight faces, all looking outward: from `start` it widens to four corners around
// `waist`, `side` and `front` away from there either way, and ends in `tip`. Side, front and the
// way from start to tip are a right-handed system.
struct Spike {
    Vector3 start;
    Vector3 waist;
    Vector3 side;
    Vector3 front;
    Vector3 tip;
};

void AddSpike(TVL::CMesh& mesh, const Spike& spike);

}  // namespace replay
