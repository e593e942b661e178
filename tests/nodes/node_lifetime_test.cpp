#include "nodes/node_lifetime.h"

#include "nodes/max_node.h"
#include "nodes/node_list.h"
#include "tests/nodes/node_test.h"
#include "tests/support/allocations.h"
#include "tvl/ids.h"

namespace {

using NodeLifetime = NodeTest;

TEST_F(NodeLifetime, LeavesASnapshotThatIsOutWithoutANode) {
    Node* const hip = Helper("Hip");
    TVL::CSnapshot* const out = hip->AcquireSnapshot(2);
    hip->ReleaseSnapshot(hip->AcquireSnapshot(3));
    TVL::CSnapshot_Helper* const look = hip->AcquireHelperSnapshot();
    hip->Destroy();
    EXPECT_EQ(TimesTraced("Encountered still acquired snapshot"), 1U);
    EXPECT_EQ(TimesTraced("Encountered still acquired helper snapshot"), 1U);

    const std::uint64_t scene = headless::SceneDigest();
    EXPECT_EQ(out->GetTime(), 2);
    EXPECT_EQ(out->GetWorldTransform(), TVL::CMatrix4::Identity());
    EXPECT_EQ(out->GetLocalTransform(), TVL::CMatrix4::Identity());
    out->SetWorldTransform(TVL::CMatrix4::Zero());
    out->SetLocalTransform(TVL::CMatrix4::Zero());
    look->SetColor(1, 1, 1);
    look->SetMesh({});
    look->SetWireframe(false);
    EXPECT_EQ(headless::SceneDigest(), scene);

    Node* const knee = Helper("Knee");
    knee->ReleaseSnapshot(out);
    knee->ReleaseHelperSnapshot(look);
    EXPECT_EQ(SweepNodes().snapshots, 2);
}

TEST_F(NodeLifetime, EndsWithoutMemory) {
    bool hasFailed = true;
    for (std::size_t nth = 1; hasFailed; ++nth) {
        Node* const hip = Helper("Hip");
        TVL::CSnapshot* const out = hip->AcquireSnapshot(2);
        const FailingAllocation failing(nth);
        hip->Destroy();
        hasFailed = failing.HasFailed();
        EXPECT_TRUE(Listed().empty());
        EXPECT_EQ(out->GetTime(), 2);
    }
}

TEST_F(NodeLifetime, LosesTheHostNodeUnderASnapshotThatIsOut) {
    Node* const hip = Helper("Hip");
    TVL::CSnapshot* const out = hip->AcquireSnapshot(0);
    TVL::CSnapshot_Helper* const look = hip->AcquireHelperSnapshot();
    InGroup("Remove", [&] { GetCOREInterface()->DeleteNode(Host("Rig_Hip")); });
    out->SetWorldTransform(TVL::CMatrix4::Zero());
    look->SetColor(1, 1, 1);
    ASSERT_TRUE(world.Session().Undo());
    EXPECT_NE(out->GetWorldTransform(), TVL::CMatrix4::Zero());
    EXPECT_EQ(Host("Rig_Hip")->GetWireColor(), 255U);
    hip->ReleaseSnapshot(out);
    hip->ReleaseHelperSnapshot(look);
}

TEST_F(NodeLifetime, HandsANodeToACoreThatClaimsIt) {
    Node* const hip = Helper("Hip");
    Node* const knee = Helper("Knee", hip);
    EXPECT_EQ(knee->Claim(&rig, "Again"), nullptr);
    Node* const handle = Core(hip->GetChild(0));
    EXPECT_EQ(handle->Claim(&rig, "Again"), nullptr);  // the scene node has a real node

    knee->Unclaim();
    knee->Unclaim();
    EXPECT_EQ(Find("Knee"), nullptr);
    Node* const claimed = handle->Claim(&other, "Joint");
    ASSERT_NE(claimed, nullptr);
    EXPECT_FALSE(claimed->IsSnapshot());
    EXPECT_TRUE(handle->IsSnapshot());
    EXPECT_EQ(adaptor.FindNode(&other, "Joint"), claimed);
    EXPECT_TRUE(claimed->IsSameNode(knee));
    handle->Destroy();
    knee->Destroy();
}

// The caller holds the node from then on, and no record may end it.
TEST_F(NodeLifetime, FreesAnUnclaimedNodeFromItsUndoRecords) {
    InGroup("Make", [&] { Helper("Hip"); });
    Node* const hip = Find("Hip");
    hip->Unclaim();
    ASSERT_TRUE(world.Session().Undo());
    adaptor.FlushUndoBuffer();
    EXPECT_EQ(hip->GetNodeName(), "Hip");
    EXPECT_EQ(hip->GetName(), "");
    hip->Destroy();
}

TEST_F(NodeLifetime, SweepsWhatACoreLeavesBehind) {
    Node* const hip = Helper("Hip");
    Helper("Knee", hip);
    TVL::CNode* const kept = hip->GetChild(0);
    InGroup("Make", [&] { Helper("Gone"); });
    InGroup("Remove", [&] { Find("Gone")->Delete(true); });
    hip->HandleExtension(TVL::kBeginSelection, nullptr);
    listener.heard.clear();

    const SweptNodes swept = SweepNodes();
    EXPECT_EQ(swept.realNodes, 2);
    EXPECT_EQ(swept.recordedNodes, 1);
    EXPECT_EQ(swept.snapshotNodes, 1);
    EXPECT_FALSE(swept.IsEmpty());
    EXPECT_TRUE(AdaptorNodes().nodes.empty());
    EXPECT_NE(Host("Rig_Hip"), nullptr);
    while (world.Session().Undo()) {
    }
    while (world.Session().Redo()) {
    }
    EXPECT_TRUE(listener.heard.empty());

    // The scene's nodes are free for a Core that comes later, and no batch is open.
    EXPECT_EQ(kept->HandleExtension(TVL::kBeginSelection, nullptr), 1);
    EXPECT_EQ(kept->HandleExtension(TVL::kEndSelection, nullptr), 1);
    Node* const claimed = Core(kept)->Claim(&rig, "Knee");
    ASSERT_NE(claimed, nullptr);
    Core(kept)->Destroy();
    claimed->Destroy();
    EXPECT_TRUE(SweepNodes().IsEmpty());
}

}  // namespace
