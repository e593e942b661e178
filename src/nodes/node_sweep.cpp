#include "nodes/node_sweep.h"

#include "nodes/max_node.h"
#include "nodes/mesh_cache.h"
#include "nodes/node_list.h"
#include "nodes/node_selection.h"
#include "nodes/snapshot_pool.h"

SweptNodes SweepNodes() {
    SweptNodes swept;
    CMAXNode* node = CMAXNode::NewestAlive();
    while (node) {
        CMAXNode* const older = node->OlderAlive();
        const bool isOfThisCore = node->ForgetCore();
        if (node->IsSnapshot()) {
            if (isOfThisCore) ++swept.snapshotNodes;
        } else {
            ++(IsListed(node) ? swept.realNodes : swept.recordedNodes);
            node->Destroy();
        }
        node = older;
    }
    EndSelectionBatch();
    ConvertedMeshes().Empty();
    swept.snapshots = FreeOrphans();
    return swept;
}
