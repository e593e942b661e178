#include "host/animate.h"
#include "host/control.h"
#include "tests/nodes/node_test.h"
#include "tvl/ids.h"

namespace {

class Recording : public NodeTest {
  protected:
    // Times of the keys of a helper of the rig's.
    static std::vector<TimeValue> Keys(const std::string& name) {
        std::vector<TimeValue> times;
        Control* const controller = Host("Rig_" + name)->GetTMController();
        for (int index = 0; index < controller->NumKeys(); ++index)
            times.push_back(controller->GetKeyTime(index));
        return times;
    }
    using Ticks = std::vector<TimeValue>;
};

TEST_F(Recording, StartsWithAKeyOfThePresentPoseOnTheOwnersNodes) {
    Helper("Hip");
    Helper("Knee")->HandleExtension(TVL::kStopRecording, nullptr);  // no more recording
    adaptor.CreateHelperNode(&other, "Stranger", nullptr, {}, nullptr);
    Host("Rig_Hip")->SetNodeTM(0, MovedBy(Point3(3, 4, 5)));
    adaptor.SetCurrentTime(0.5);
    InGroup("Take", [&] {
        EXPECT_EQ(adaptor.BeginRecording({&rig}), 0);
        EXPECT_TRUE(Animating());
        EXPECT_FALSE(world.Session().AnimateButtonEnabled());
        EXPECT_EQ(Keys("Hip"), Ticks{2400});
        EXPECT_EQ(Host("Rig_Hip")->GetNodeTM(0).GetTrans(), Point3(3, 4, 5));
        EXPECT_EQ(Keys("Knee"), Ticks());
        EXPECT_EQ(Host("Other_Stranger")->GetTMController()->NumKeys(), 0);
        adaptor.SetCurrentTime(2);
        EXPECT_EQ(adaptor.EndRecording(), 0);
    });
    EXPECT_FALSE(Animating());
    EXPECT_TRUE(world.Session().AnimateButtonEnabled());

    // Undoing the take takes the key and the move of the time back.
    ASSERT_TRUE(world.Session().Undo());
    EXPECT_EQ(Keys("Hip"), Ticks());
    EXPECT_EQ(adaptor.GetCurrentTime(), 0.5);
    ASSERT_TRUE(world.Session().Redo());
    EXPECT_EQ(Keys("Hip"), Ticks{2400});
    EXPECT_EQ(adaptor.GetCurrentTime(), 2);
}

TEST_F(Recording, HasKeysAtTheTicksBelowTimesAndLosesThoseBehindOne) {
    Node* const hip = Helper("Hip");
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
    EXPECT_EQ(Keys("Hip"), Ticks());
    for (const double seconds : {0.0004, 0.5, 1.0, 1.50019}) {
        TVL::CSnapshot* const snapshot = hip->AcquireSnapshot(seconds);
        snapshot->SetWorldTransform(snapshot->GetWorldTransform());
        EXPECT_EQ(snapshot->GetTime(), seconds);
        hip->ReleaseSnapshot(snapshot);
        distanceAt(seconds, true);
    }
    EXPECT_EQ(Keys("Hip"), (Ticks{1, 2400, 4800, 7200}));
    adaptor.EndRecording();
    EXPECT_TRUE(Animating());  // as the user had it
    world.Session().PressAnimateButton(false);
    hip->DeleteAnimationFrom(std::numeric_limits<double>::quiet_NaN());
    hip->DeleteAnimationFrom(0.5);
    EXPECT_EQ(Keys("Hip"), (Ticks{1, 2400}));
    hip->DeleteAnimationFrom(-1);
    EXPECT_EQ(Keys("Hip"), Ticks());

    EXPECT_EQ(distanceAt(1), 1);
    camera->DeleteAnimationFrom(0.5);  // reaches the camera's parameters
    EXPECT_EQ(distanceAt(0), double{0.0004F});
    EXPECT_EQ(distanceAt(1), 0.5);
}

}  // namespace
