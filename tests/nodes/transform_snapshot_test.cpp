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

class TransformSnapshot : public NodeTest {
  protected:
    static void Put(const std::string& name, const CMatrix4& matrix) {
        Host(name)->SetNodeTM(0, ToHost(matrix));
    }
    static Point3 PlaceOf(const std::string& name) { return Host(name)->GetNodeTM(0).GetTrans(); }

    Node* const hip = Helper("Hip");
    Node* const knee = Helper("Knee", hip);
};

TEST_F(TransformSnapshot, ReadsAnUnscaledNodeWithTheFactorOfTheUnits) {
    const double s = HostUnitsPerMetre();
    EXPECT_FLOAT_EQ(static_cast<float>(s), 39.37F);
    TVL::CSnapshot* const snapshot = hip->AcquireSnapshot(0);
    const CMatrix4 pose = snapshot->GetWorldTransform();
    const CMatrix4 expected{{{1 / s, 0, 0, 0}, {0, 0, -1 / s, 0}, {0, 1 / s, 0, 0}, {0, 0, 0, 1}}};
    EXPECT_EQ(pose, expected);
    EXPECT_EQ(snapshot->GetLocalTransform(), pose);

    // The row length is what a Core keeps, so that the node does not come out scaled.
    CMatrix4 moved = pose;
    moved[3][1] = 2;
    moved[0][3] = moved[3][3] = 99;  // the last column is not read
    snapshot->SetWorldTransform(moved);
    EXPECT_FLOAT_EQ(Host("Rig_Hip")->GetNodeTM(0).GetRow(0).x, 1);
    EXPECT_FLOAT_EQ(PlaceOf("Rig_Hip").z, 78.74F);
    EXPECT_EQ(snapshot->GetWorldTransform()[3][3], 1);
    hip->ReleaseSnapshot(snapshot);
}

TEST_F(TransformSnapshot, KeepsHostUnitsBelowWhereTheParentIsNow) {
    TVL::CSnapshot* const snapshot = knee->AcquireSnapshot(0);
    for (const float x : {10.0F, 20.0F}) {
        Put("Rig_Hip", At(x, 0, 0));
        snapshot->SetLocalTransform(At(0, 0, -4));
        EXPECT_EQ(PlaceOf("Rig_Knee"), Point3(x, 0, -4));
        EXPECT_EQ(snapshot->GetLocalTransform(), At(0, 0, -4));
        EXPECT_DOUBLE_EQ(snapshot->GetWorldTransform()[3][1], -4 / HostUnitsPerMetre());
    }
    Put("Rig_Hip", CMatrix4::Diagonal(0, 0, 0, 1));  // scaled to nothing
    EXPECT_EQ(snapshot->GetLocalTransform(), CMatrix4::Zero());
    knee->ReleaseSnapshot(snapshot);
}

// A Core reads the told fields of what it is lent.
struct OwnFields : TVL::CoreNode::Snapshot {
    static TVL::CoreElement* OwnerOf(TVL::CSnapshot* lent) {
        return static_cast<TVL::CoreNode::Snapshot*>(lent)->*(&OwnFields::owner);
    }
};

TEST_F(TransformSnapshot, IsReusedFromTheEndOfThePoolWithoutAllocating) {
    TVL::CSnapshot* const first = hip->AcquireSnapshot(1);
    TVL::CSnapshot* const second = hip->AcquireSnapshot(2);
    EXPECT_NE(first, second);
    EXPECT_EQ(first->GetTime(), 1);
    EXPECT_EQ(OwnFields::OwnerOf(first), &rig);
    hip->ReleaseSnapshot(first);
    hip->ReleaseSnapshot(second);
    hip->ReleaseSnapshot(nullptr);
    const std::size_t before = Allocations();
    EXPECT_EQ(hip->AcquireSnapshot(3), second);
    EXPECT_EQ(hip->AcquireSnapshot(4), first);
    hip->ReleaseSnapshot(second);
    EXPECT_EQ(hip->AcquireSnapshot(5), second);
    EXPECT_EQ(Allocations(), before);
    hip->ReleaseSnapshot(first);
    hip->ReleaseSnapshot(second);
}

}  // namespace
