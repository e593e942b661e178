#include <cmath>

#include "controllers/transform_control.h"
#include "host/hold.h"
#include "host/interface.h"
#include "nodes/max_node.h"
#include "tests/nodes/node_test.h"
#include "tvl/ids.h"

namespace {

using Names = std::vector<std::string>;

class NodeDeletion : public NodeTest {
  protected:
    void DeleteByUser(const Names& names) {
        world.Session().Select(names);
        world.Session().DeleteSelected();
    }
};

TEST_F(NodeDeletion, EndsTheNodeAtOnceOutsideAGroup) {
    Helper("Hip")->Delete(true);
    EXPECT_EQ(Find("Hip"), nullptr);
    EXPECT_EQ(Host("Rig_Hip"), nullptr);
    EXPECT_TRUE(listener.heard.empty());
}

TEST_F(NodeDeletion, InAGroupIsTakenBackAndRepeated) {
    Node* const hip = Helper("Hip");
    Helper("Knee");
    bool hadHostNode = true;
    listener.onRestored = [&](TVL::CNode* node) { hadHostNode = !Core(node)->GetName().empty(); };
    InGroup("Remove", [&] {
        hip->Delete(true);
        hip->Delete(true);  // not listed any more
    });
    EXPECT_EQ(Listed(), (Names{"Knee"}));
    EXPECT_EQ(Host("Rig_Hip"), nullptr);

    ASSERT_TRUE(world.Session().Undo());
    EXPECT_FALSE(hadHostNode);  // the host's node follows
    EXPECT_EQ(Listed(), (Names{"Knee", "Hip"}));
    EXPECT_EQ(Find("Hip"), hip);
    EXPECT_EQ(hip->GetName(), "Rig_Hip");

    ASSERT_TRUE(world.Session().Redo());
    EXPECT_EQ(Listed(), (Names{"Knee"}));
    EXPECT_EQ(listener.heard, (Heard{"-Hip", "+Hip", "-Hip"}));
}

TEST_F(NodeDeletion, TellsOfCreationUndoneAndRedone) {
    InGroup("Make", [&] { Helper("Hip"); });
    Helper("Knee");
    ASSERT_TRUE(world.Session().Undo());
    EXPECT_EQ(Listed(), (Names{"Knee"}));
    EXPECT_EQ(Host("Rig_Hip"), nullptr);
    ASSERT_TRUE(world.Session().Redo());
    EXPECT_EQ(Listed(), (Names{"Knee", "Hip"}));
    EXPECT_EQ(Find("Hip")->GetName(), "Rig_Hip");
    EXPECT_EQ(listener.heard, (Heard{"+Hip", "-Hip", "+Hip"}));
}

TEST_F(NodeDeletion, OfANewNodeIsForgottenWhenItsGroupIsCancelled) {
    adaptor.BeginUndoGroup("Try");
    Helper("Hip")->Delete(true);
    Helper("Knee");
    adaptor.CancelUndoGroup();
    EXPECT_TRUE(Listed().empty());
    EXPECT_TRUE(headless::Nodes().empty());
    EXPECT_EQ(listener.heard, (Heard{"+Hip", "-Hip", "+Knee", "-Knee", "+Hip", "-Hip"}));
}

TEST_F(NodeDeletion, LeavesTheHostNodeWithDefaultControllersIfAskedTo) {
    Node* const camera = Camera("Cam");
    EXPECT_EQ(Host("Rig_Cam")->GetTMController()->ClassID(), TransformControl::kClassID);
    camera->Delete(false);
    ASSERT_NE(Host("Rig_Cam"), nullptr);
    EXPECT_EQ(Host("Rig_Cam")->GetTMController()->ClassID(), kPositionRotationScaleClassId);
    Animatable* const parameters = Host("Rig_Cam")->GetObjectRef()->SubAnim(0);
    ASSERT_NE(parameters, nullptr);
    for (int index = 0; index < parameters->NumSubs(); ++index)
        EXPECT_EQ(parameters->SubAnim(index)->ClassID(), kLinearFloatClassId);
}

TEST_F(NodeDeletion, ByTheUserIsLeftToTheHost) {
    Node* const hip = Helper("Hip");
    Helper("Knee", hip);
    int told = 0;
    rig.onDeletion = [&] {
        ++told;
        Find("Hip")->Delete(true);
        ASSERT_NE(Host("Rig_Hip"), nullptr);
        Find("Knee")->Delete(true);
    };
    DeleteByUser({"Rig_Hip", "Rig_Knee"});
    EXPECT_EQ(told, 1);
    EXPECT_TRUE(Listed().empty());
    EXPECT_TRUE(headless::Nodes().empty());
    ASSERT_TRUE(world.Session().Undo());
    EXPECT_EQ(headless::Nodes().size(), 2U);
}

TEST_F(NodeDeletion, ThroughASnapshotNodeNeedsASourceOfTheSameOwner) {
    Node* const hip = Helper("Hip");
    Node* const knee = Helper("Knee", hip);
    Node* const stranger = Core(adaptor.CreateHelperNode(&other, "Anchor", nullptr, {}, nullptr));
    hip->SetParent(stranger);

    Node* const fromStranger = Core(stranger->GetChild(0));
    fromStranger->Delete(true);  // of the rig, reached from the other plug-in
    ASSERT_NE(Host("Rig_Hip"), nullptr);

    Node* const fromHip = Core(hip->GetChild(0));
    fromHip->Delete(true);
    EXPECT_EQ(Host("Rig_Knee"), nullptr);
    EXPECT_EQ(knee->GetName(), "");

    // A source that was given back counts with the owner that it had.
    Node* const viaReleased = Core(fromStranger->GetParent());
    fromStranger->Destroy();
    viaReleased->Delete(true);  // of the other plug-in, reached from the rig's
    EXPECT_NE(Host("Other_Anchor"), nullptr);
    viaReleased->Destroy();

    // Whatever has come to where it was.
    Node* const first = Helper("First");
    Node* const viaFirst = Core(Helper("Second", first)->GetParent());
    Node* const again = Core(viaFirst->GetChild(0));
    viaFirst->Destroy();
    new CMAXNode(&other, "", nullptr, nullptr);
    again->Delete(true);
    EXPECT_EQ(Host("Rig_Second"), nullptr);
}

TEST_F(NodeDeletion, OfASnapshotNodeWithoutOwnerAlwaysGoesAhead) {
    Node* const hip = Helper("Hip");
    hip->Unclaim();
    EXPECT_TRUE(Listed().empty());
    EXPECT_TRUE(hip->IsSnapshot());
    hip->Delete(true);
    EXPECT_EQ(Host("Rig_Hip"), nullptr);
}

TEST_F(NodeDeletion, OfTheTailOfAnAnimationKeepsTheKeyAtItsTime) {
    Node* const hip = Helper("Hip");
    Node* const knee = Helper("Knee");
    knee->HandleExtension(TVL::kStopRecording, nullptr);
    adaptor.BeginRecordingUnkeyed({});
    for (const double seconds : {0.0, 0.5, 1.0, 1.5}) {
        TVL::CSnapshot* const snapshot = hip->AcquireSnapshot(seconds);
        snapshot->SetWorldTransform(snapshot->GetWorldTransform());
        hip->ReleaseSnapshot(snapshot);
    }
    adaptor.EndRecording();
    hip->DeleteAnimationFrom(std::nan(""));
    hip->DeleteAnimationFrom(0.5);
    Control* const controller = Host("Rig_Hip")->GetTMController();
    ASSERT_EQ(controller->NumKeys(), 2);
    EXPECT_EQ(controller->GetKeyTime(1), 2400);
    hip->DeleteAnimationFrom(-1);
    EXPECT_EQ(controller->NumKeys(), 0);
}

TEST_F(NodeDeletion, OfACamerasAnimationReachesItsParameters) {
    Node* const camera = Camera("Cam");
    auto* const lens = static_cast<CameraObject*>(Host("Rig_Cam")->GetObjectRef());
    adaptor.BeginRecordingUnkeyed({});
    lens->SetFOV(100, 1);
    lens->SetFOV(4800, 2);
    adaptor.EndRecording();
    camera->DeleteAnimationFrom(0.5);
    Interval valid = FOREVER;
    EXPECT_EQ(lens->GetFOV(4800, valid), 1);
}

}  // namespace
