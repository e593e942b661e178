#include "host/control.h"
#include "measures/core_space.h"
#include "tests/nodes/node_test.h"
#include "tests/support/allocations.h"

namespace {

using TVL::CMatrix4;

CMatrix4 At(double x, double y, double z) {
    CMatrix4 matrix = CMatrix4::Identity();
    matrix[3][0] = x;
    matrix[3][1] = y;
    matrix[3][2] = z;
    return matrix;
}

Point3 HostPosition(INode* host, TimeValue t = 0) {
    return host->GetNodeTM(t).GetTrans();
}

class TransformSnapshot : public NodeTest {
  protected:
    void Place(Node& node, const CMatrix4& pose, double seconds = 0) {
        TVL::CSnapshot* const snapshot = node.AcquireSnapshot(seconds);
        snapshot->SetWorldTransform(pose);
        node.ReleaseSnapshot(snapshot);
    }
};

TEST_F(TransformSnapshot, ReadsAnUnscaledNodeWithTheFactorOfTheUnits) {
    Node* const hip = Helper("Hip");
    const double s = HostUnitsPerMetre();
    EXPECT_FLOAT_EQ(static_cast<float>(s), 39.37F);
    TVL::CSnapshot* const snapshot = hip->AcquireSnapshot(0);
    const CMatrix4 pose = snapshot->GetWorldTransform();
    EXPECT_DOUBLE_EQ(pose[0][0], 1 / s);
    EXPECT_DOUBLE_EQ(pose[1][2], -1 / s);
    EXPECT_DOUBLE_EQ(pose[2][1], 1 / s);
    EXPECT_EQ(pose[3][3], 1);
    EXPECT_EQ(snapshot->GetLocalTransform(), pose);

    // The row length is what a Core keeps, so that the node does not come out scaled.
    CMatrix4 moved = pose;
    moved[3][1] = 2;
    moved[0][3] = moved[3][3] = 99;  // the last column is not read
    snapshot->SetWorldTransform(moved);
    EXPECT_FLOAT_EQ(Host("Rig_Hip")->GetNodeTM(0).GetRow(0).x, 1);
    EXPECT_FLOAT_EQ(HostPosition(Host("Rig_Hip")).z, 78.74F);
    EXPECT_EQ(snapshot->GetWorldTransform()[3][3], 1);
    hip->ReleaseSnapshot(snapshot);
}

TEST_F(TransformSnapshot, KeepsHostUnitsBelowAParent) {
    Node* const hip = Helper("Hip");
    Node* const knee = Helper("Knee", hip);
    Host("Rig_Hip")->SetNodeTM(0, ToHost(At(10, 0, 0)));
    TVL::CSnapshot* const snapshot = knee->AcquireSnapshot(0);
    snapshot->SetLocalTransform(At(0, 0, -4));
    EXPECT_EQ(HostPosition(Host("Rig_Knee")), Point3(10, 0, -4));
    EXPECT_EQ(snapshot->GetLocalTransform(), At(0, 0, -4));
    EXPECT_DOUBLE_EQ(snapshot->GetWorldTransform()[3][1], -4 / HostUnitsPerMetre());

    // Relative to where the parent is now.
    Host("Rig_Hip")->SetNodeTM(0, ToHost(At(20, 0, 0)));
    snapshot->SetLocalTransform(At(0, 0, -4));
    EXPECT_EQ(HostPosition(Host("Rig_Knee")), Point3(20, 0, -4));
    knee->ReleaseSnapshot(snapshot);
}

TEST_F(TransformSnapshot, ReadsAllZeroBelowAParentScaledToNothing) {
    Node* const hip = Helper("Hip");
    Node* const knee = Helper("Knee", hip);
    Host("Rig_Hip")->SetNodeTM(0, ToHost(CMatrix4::Diagonal(0, 0, 0, 1)));
    TVL::CSnapshot* const snapshot = knee->AcquireSnapshot(0);
    EXPECT_EQ(snapshot->GetLocalTransform(), CMatrix4::Zero());
    knee->ReleaseSnapshot(snapshot);
}

TEST_F(TransformSnapshot, WritesAtTheTickBelowATimeAndKeepsTheTime) {
    Node* const hip = Helper("Hip");
    adaptor.BeginRecordingUnkeyed({});
    const std::pair<double, TimeValue> cases[] = {{0.0004, 1}, {1.00019, 4800}, {2.5, 12000}};
    for (const auto& [seconds, ticks] : cases) {
        Place(*hip, At(seconds, 0, 0), seconds);
        Control* const controller = Host("Rig_Hip")->GetTMController();
        EXPECT_EQ(controller->GetKeyTime(controller->NumKeys() - 1), ticks);
        TVL::CSnapshot* const snapshot = hip->AcquireSnapshot(seconds);
        EXPECT_EQ(snapshot->GetTime(), seconds);
        hip->ReleaseSnapshot(snapshot);
    }
    adaptor.EndRecording();
}

TEST_F(TransformSnapshot, IsReusedFromTheEndOfThePool) {
    Node* const hip = Helper("Hip");
    TVL::CSnapshot* const first = hip->AcquireSnapshot(1);
    TVL::CSnapshot* const second = hip->AcquireSnapshot(2);
    EXPECT_NE(first, second);
    EXPECT_EQ(first->GetTime(), 1);
    hip->ReleaseSnapshot(first);
    hip->ReleaseSnapshot(second);
    hip->ReleaseSnapshot(nullptr);
    EXPECT_EQ(hip->AcquireSnapshot(3), second);
    EXPECT_EQ(hip->AcquireSnapshot(4), first);
    hip->ReleaseSnapshot(second);
    EXPECT_EQ(hip->AcquireSnapshot(5), second);
    hip->ReleaseSnapshot(first);
    hip->ReleaseSnapshot(second);
}

// A Core reads the told fields of what it is lent.
TEST_F(TransformSnapshot, BearsTheOwnerThatItsNodeHadWhenItWasMade) {
    struct OwnFields : TVL::CoreNode::Snapshot {
        static TVL::CoreElement* OwnerOf(TVL::CSnapshot* lent) {
            return static_cast<TVL::CoreNode::Snapshot*>(lent)->*(&OwnFields::owner);
        }
    };
    Node* const hip = Helper("Hip");
    TVL::CSnapshot* const snapshot = hip->AcquireSnapshot(0);
    EXPECT_EQ(OwnFields::OwnerOf(snapshot), &rig);
    hip->ReleaseSnapshot(snapshot);
}

TEST_F(TransformSnapshot, AllocatesNothingOnceThePoolIsWarm) {
    Node* const hip = Helper("Hip");
    hip->ReleaseSnapshot(hip->AcquireSnapshot(0));
    const std::size_t before = Allocations();
    for (int sample = 0; sample < 100; ++sample)
        hip->ReleaseSnapshot(hip->AcquireSnapshot(sample / 30.0));
    EXPECT_EQ(Allocations(), before);
}

}  // namespace
