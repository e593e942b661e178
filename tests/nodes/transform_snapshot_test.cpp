#include <limits>

#include "host/animate.h"
#include "measures/core_space.h"
#include "tests/nodes/node_test.h"
#include "tests/support/allocations.h"

namespace {

using Ticks = std::vector<TimeValue>;

class TransformSnapshot : public NodeTest {
  protected:
    static Point3 PlaceOf(const std::string& name) { return Host(name)->GetNodeTM(0).GetTrans(); }

    // Times of a node's keys.
    static Ticks Keys(const std::string& hostName) {
        Ticks times;
        Control* const controller = Host(hostName)->GetTMController();
        for (int index = 0; index < controller->NumKeys(); ++index)
            times.push_back(controller->GetKeyTime(index));
        return times;
    }

    Node* const hip = Helper("Hip");
    Node* const knee = Helper("Knee", hip);
};

TEST_F(TransformSnapshot, HasTheUnitsAndAxesOfTheCoreAndBelowAParentThoseOfTheHost) {
    const double s = HostUnitsPerMetre();
    EXPECT_FLOAT_EQ(static_cast<float>(s), 39.37F);
    TVL::CSnapshot* const snapshot = hip->AcquireSnapshot(0);
    TVL::CMatrix4 pose{{{1 / s, 0, 0, 0}, {0, 0, -1 / s, 0}, {0, 1 / s, 0, 0}, {0, 0, 0, 1}}};
    EXPECT_EQ(snapshot->GetWorldTransform(), pose);
    EXPECT_EQ(snapshot->GetLocalTransform(), pose);
    pose[3][1] = 2;
    // The last column is not read.
    const auto withOddColumn = [](TVL::CMatrix4 matrix) {
        matrix[0][3] = std::numeric_limits<double>::quiet_NaN();
        matrix[3][3] = 99;
        return matrix;
    };
    snapshot->SetWorldTransform(withOddColumn(pose));
    EXPECT_FLOAT_EQ(Host("Rig_Hip")->GetNodeTM(0).GetRow(0).x, 1);
    EXPECT_FLOAT_EQ(PlaceOf("Rig_Hip").z, 78.74F);
    EXPECT_EQ(snapshot->GetWorldTransform()[3][3], 1);

    TVL::CSnapshot* const below = knee->AcquireSnapshot(0);
    const TVL::CMatrix4 offset = ToCore(MovedBy(Point3(0, 0, -4)));
    for (const float x : {10.0F, 20.0F}) {
        Host("Rig_Hip")->SetNodeTM(0, MovedBy(x));
        below->SetLocalTransform(withOddColumn(offset));
        EXPECT_EQ(PlaceOf("Rig_Knee"), Point3(x, 0, -4));
        EXPECT_EQ(below->GetLocalTransform(), offset);
        EXPECT_DOUBLE_EQ(below->GetWorldTransform()[3][1], -4 / s);
    }
    Host("Rig_Hip")->SetNodeTM(0, ToHost(TVL::CMatrix4::Diagonal(0, 0, 0, 1)));
    EXPECT_EQ(below->GetLocalTransform(), TVL::CMatrix4::Zero());
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
    EXPECT_TRUE(first != second && first->GetTime() == 1);
    EXPECT_EQ(OwnFields::OwnerOf(first), &rig);
    for (TVL::CSnapshot* snapshot : {first, second, static_cast<TVL::CSnapshot*>(nullptr)})
        hip->ReleaseSnapshot(snapshot);
    const std::size_t before = Allocations();
    EXPECT_EQ(hip->AcquireSnapshot(3), second);
    EXPECT_EQ(hip->AcquireSnapshot(4), first);
    EXPECT_EQ(Allocations(), before);
}

TEST_F(TransformSnapshot, OfEachOfTheOwnersNodesIsAKeyAtTheStartOfARecording) {
    knee->HandleExtension(TVL::kStopRecording, nullptr);  // no more recording
    adaptor.CreateHelperNode(&other, "Stranger", nullptr, {}, nullptr);
    Host("Rig_Hip")->SetNodeTM(0, MovedBy(Point3(3, 4, 5)));
    adaptor.SetCurrentTime(0.5);
    InGroup("Take", [&] {
        EXPECT_EQ(adaptor.BeginRecording({&rig}), 0);
        EXPECT_TRUE(Animating() && !world.Session().AnimateButtonEnabled());
        EXPECT_EQ(PlaceOf("Rig_Hip"), Point3(3, 4, 5));
        EXPECT_EQ(Keys("Rig_Knee"), Ticks());
        EXPECT_EQ(Keys("Other_Stranger"), Ticks());
        adaptor.SetCurrentTime(2);
        EXPECT_EQ(adaptor.EndRecording(), 0);
    });
    EXPECT_TRUE(!Animating() && world.Session().AnimateButtonEnabled());

    // An undo of the take takes the key and the move of the time back.
    for (const bool isThere : {true, false, true}) {
        EXPECT_EQ(Keys("Rig_Hip"), isThere ? Ticks{2400} : Ticks());
        EXPECT_EQ(adaptor.GetCurrentTime(), isThere ? 2 : 0.5);
        isThere ? world.Session().Undo() : world.Session().Redo();
    }
}

TEST_F(TransformSnapshot, IsWrittenAtTheTickBelowItsTimeAndKeysBehindATimeCanBeLost) {
    Node* const camera = Camera("Cam");
    const auto distanceAt = [camera](double seconds, bool writes = false) {
        TVL::CSnapshot_Lens* const lens = camera->AcquireLensSnapshot(seconds);
        if (writes) lens->SetTargetDistance(seconds);
        const double distance = lens->GetTargetDistance();
        camera->ReleaseLensSnapshot(lens);
        return distance;
    };
    world.Session().PressAnimateButton(true);
    adaptor.BeginRecordingUnkeyed({&rig});
    for (const double seconds : {0.0004, 0.5, 1.0, 1.50019}) {
        TVL::CSnapshot* const snapshot = hip->AcquireSnapshot(seconds);
        snapshot->SetWorldTransform(snapshot->GetWorldTransform());
        EXPECT_EQ(snapshot->GetTime(), seconds);
        hip->ReleaseSnapshot(snapshot);
        distanceAt(seconds, true);
    }
    adaptor.EndRecording();
    EXPECT_TRUE(Animating());  // as the user had it
    world.Session().PressAnimateButton(false);
    const std::pair<double, Ticks> cases[] = {
        {NAN, {1, 2400, 4800, 7200}}, {0.5, {1, 2400}}, {-1, {}}};
    for (const auto& [from, left] : cases) {
        hip->DeleteAnimationFrom(from);
        EXPECT_EQ(Keys("Rig_Hip"), left) << from;
    }
    EXPECT_EQ(distanceAt(1), 1);
    camera->DeleteAnimationFrom(0.5);  // reaches the camera's parameters
    EXPECT_EQ(distanceAt(0), double{0.0004F});
    EXPECT_EQ(distanceAt(1), 0.5);
}

}  // namespace
