#include "host/animate.h"
#include "host/control.h"
#include "tests/nodes/node_test.h"
#include "tvl/ids.h"

namespace {

class Recording : public NodeTest {
  protected:
    static int KeyCount(const std::string& hostName) {
        return Host(hostName)->GetTMController()->NumKeys();
    }
};

TEST_F(Recording, StartsWithAKeyOfThePresentPoseOnTheOwnersNodes) {
    Node* const hip = Helper("Hip");
    Helper("Knee");
    adaptor.CreateHelperNode(&other, "Stranger", nullptr, {}, nullptr);
    Find("Knee")->HandleExtension(TVL::kStopRecording, nullptr);  // no more recording
    Host("Rig_Hip")->SetNodeTM(0, MovedBy(Point3(3, 4, 5)));
    adaptor.SetCurrentTime(0.5);

    InGroup("Take", [&] {
        EXPECT_EQ(adaptor.BeginRecording({&rig}), 0);
        EXPECT_TRUE(Animating());
        EXPECT_FALSE(world.Session().AnimateButtonEnabled());
        EXPECT_EQ(KeyCount("Rig_Hip"), 1);
        EXPECT_EQ(Host("Rig_Hip")->GetTMController()->GetKeyTime(0), 2400);
        EXPECT_EQ(Host("Rig_Hip")->GetNodeTM(0).GetTrans(), Point3(3, 4, 5));
        EXPECT_EQ(KeyCount("Rig_Knee"), 0);
        EXPECT_EQ(KeyCount("Other_Stranger"), 0);
        adaptor.SetCurrentTime(2);
        EXPECT_EQ(adaptor.EndRecording(), 0);
    });
    EXPECT_FALSE(Animating());
    EXPECT_TRUE(world.Session().AnimateButtonEnabled());

    // Undoing the take takes the key and the move of the time back.
    ASSERT_TRUE(world.Session().Undo());
    EXPECT_EQ(KeyCount("Rig_Hip"), 0);
    EXPECT_DOUBLE_EQ(adaptor.GetCurrentTime(), 0.5);
    ASSERT_TRUE(world.Session().Redo());
    EXPECT_EQ(KeyCount("Rig_Hip"), 1);
    EXPECT_DOUBLE_EQ(adaptor.GetCurrentTime(), 2);
    EXPECT_EQ(hip->GetNodeName(), "Hip");
}

TEST_F(Recording, LeavesTheAnimateModeOfTheUserOn) {
    Helper("Hip");
    world.Session().PressAnimateButton(true);
    adaptor.BeginRecordingUnkeyed({&rig});
    EXPECT_EQ(KeyCount("Rig_Hip"), 0);  // no key to start from
    adaptor.EndRecording();
    EXPECT_TRUE(Animating());
    world.Session().PressAnimateButton(false);
}

}  // namespace
