#include "replay_core/recorder/helper_look.h"

#include "replay_core/recorder/snapshot_loan.h"

namespace replay {

void DressNode(TVL::CoreNode& node, const TVL::CMesh& mesh, const Colour& colour) {
    const SnapshotLoan look(node, node.AcquireHelperSnapshot(),
                            &TVL::CoreNode::ReleaseHelperSnapshot);
    if (!look) return;
    look->SetMesh(mesh);
    look->SetColor(colour.red, colour.green, colour.blue);
}

}  // namespace replay
