#include "nodes/node_lifetime.h"

#include <tuple>

#include "headless/primitives.h"
#include "tests/nodes/node_test.h"
#include "tvl/ids.h"

namespace {

using NodeLifetime = NodeTest;

TEST_F(NodeLifetime, LeavesSnapshotsThatAreOutWithoutANodeAndReportsThemInTheOrderOfThePools) {
    world.SetOption(TVL::kDynamicMeshes, true);
    Node* const eye = Camera("Eye");
    TVL::CSnapshot_Lens* const lens = eye->AcquireLensSnapshot(3);
    auto line = NodeOn(headless::NewSplines({headless::StraightLines({{}, {1, 0, 0}})}));
    TVL::CSnapshot_Shape* const shape = line->AcquireShapeSnapshot(0);
    TVL::CSnapshot_Mesh* const mesh = line->AcquireMeshSnapshot(0);
    TVL::CSnapshot_Helper* const look = line->AcquireHelperSnapshot();
    TVL::CSnapshot* const out = line->AcquireSnapshot(2);
    line->ReleaseSnapshot(line->AcquireSnapshot(3));
    const std::size_t before = Trace().size();
    line.reset();
    eye->Destroy();
    EXPECT_EQ(
        TracedLines(before),
        (Names{"(NOTICE): \tDeconstructing node", "(NOTICE): \tname: Line01",
               "(NOTICE): \tnode is a snapshot", "(ERROR): \t\tEncountered still acquired snapshot",
               "(ERROR): \t\tEncountered still acquired helper snapshot",
               "(ERROR): \t\tEncountered still acquired mesh snapshot",
               "(ERROR): \t\tEncountered still acquired shape snapshot",
               "(NOTICE): \tDeconstructing node", "(NOTICE): \tname: Eye",
               "(ERROR): \t\tEncountered still acquired lens snapshot"}));

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
    EXPECT_TRUE(mesh->GetMesh().vertices.empty());
    EXPECT_EQ(shape->GetCurveCount(), 0);
    EXPECT_EQ(lens->GetTime(), 3);
    Helper("Knee")->ReleaseSnapshot(out);
    EXPECT_EQ(SweepNodes().snapshots, 5);
}

TEST_F(NodeLifetime, HandsANodeToACoreThatClaimsIt) {
    Node* const hip = Helper("Hip");
    Node* const handle = Core(Helper("Knee", hip)->GetParent());
    EXPECT_EQ(hip->Claim(&rig, "Again"), nullptr);
    EXPECT_EQ(handle->Claim(&rig, "Again"), nullptr);  // the scene node has a real node
    hip->Unclaim();
    hip->Unclaim();
    EXPECT_EQ(Listed(), Names{"Knee"});
    Node* const claimed = handle->Claim(&other, "Joint");
    ASSERT_NE(claimed, nullptr);
    EXPECT_EQ(adaptor.FindNode(&other, "Joint"), claimed);
    EXPECT_TRUE(claimed->IsSameNode(hip));
    EXPECT_TRUE(handle->IsSnapshot() && !claimed->IsSnapshot());
    handle->Destroy();
    hip->Destroy();
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
    EXPECT_EQ(std::tie(swept.realNodes, swept.recordedNodes, swept.snapshotNodes),
              std::tuple(2, 1, 1));
    while (world.Session().Undo()) {
    }
    while (world.Session().Redo()) {
    }
    EXPECT_EQ(Scene(), "Rig_Hip(Rig_Knee)");
    EXPECT_TRUE(listener.heard.empty());

    // The scene's nodes are free for a Core that comes later, and no batch is open.
    EXPECT_EQ(kept->HandleExtension(TVL::kBeginSelection, nullptr), 1);
    EXPECT_EQ(kept->HandleExtension(TVL::kEndSelection, nullptr), 1);
    Core(kept)->Claim(&rig, "Knee")->Destroy();
    Core(kept)->Destroy();
    EXPECT_TRUE(SweepNodes().IsEmpty());
}

}  // namespace
