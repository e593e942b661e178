#include "replay_core/recorder/spike.h"

namespace replay {

void AddSpike(TVL::CMesh& mesh, const Spike& spike) {
    const int start = static_cast<int>(mesh.vertices.size());
    const int tip = start + 5;
    const Vector3& waist = spike.waist;
    mesh.vertices.insert(
        mesh.vertices.end(),
        {spike.start, Sum(waist, spike.side), Sum(waist, spike.front),
         Difference(waist, spike.side), Difference(waist, spike.front), spike.tip});
    for (int corner = 0; corner < 4; ++corner) {
        const int here = start + 1 + corner;
        const int next = start + 1 + (corner + 1) % 4;
        mesh.faces.insert(mesh.faces.end(), {here, next, tip, next, here, start});
    }
}

}  // namespace replay
