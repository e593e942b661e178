#include <climits>
#include <cmath>

#include "headless/primitives.h"
#include "nodes/max_node.h"
#include "tests/nodes/node_test.h"
#include "tvl/ids.h"

namespace {

class LensSnapshot : public NodeTest {
  protected:
    // Runs `work` on the lens of a node at a time.
    template <class Work>
    static void WithLens(Node& node, double seconds, Work work) {
        TVL::CSnapshot_Lens* const lens = node.AcquireLensSnapshot(seconds);
        ASSERT_NE(lens, nullptr);
        work(*lens);
        node.ReleaseLensSnapshot(lens);
    }
};

constexpr int kFrames = 2752;
double SecondsAt(int frame) {
    return frame / 30.0;
}
double DegreesAt(int frame) {
    return 30 + 20 * std::sin(frame * 0.01);
}
double DistanceAt(int frame) {
    return 100 + frame * 0.37;
}

TEST_F(LensSnapshot, ConvertsAnglesAndTakesTheThreeTypesAlone) {
    WithLens(*Camera("Eye"), 0.5, [](TVL::CSnapshot_Lens& lens) {
        EXPECT_EQ(lens.GetTime(), 0.5);
        EXPECT_EQ(lens.GetLensTransform(), TVL::CMatrix4::Identity());
        lens.SetFieldOfView(45);
        EXPECT_EQ(lens.GetFieldOfView(),
                  double{static_cast<float>(45 * 0.017453292519943295)} * 57.29577951308232);
        EXPECT_NEAR(lens.GetFieldOfView(), 45, 1e-5);
        lens.SetTargetDistance(12.3);
        EXPECT_EQ(lens.GetTargetDistance(), double{12.3F});  // in host units
        for (const int type : {0, 1, 2}) {
            lens.SetFieldOfViewType(type);
            EXPECT_EQ(lens.GetFieldOfViewType(), type);
        }
        for (const int type : {-1, 3, INT_MAX})
            lens.SetFieldOfViewType(type);
        EXPECT_EQ(lens.GetFieldOfViewType(), 2);
    });
}

// With the adaptor's controllers and with the host's own, and again from the opened scene.
// Read from the last frame, since the adaptor's controller answers with the value that was set last
// at tick 0 until it has evaluated another tick.
TEST_F(LensSnapshot, GivesBackWhatWasRecordedInManyFrames) {
    world.SetOption(TVL::kOptimisedControllers, true);
    Camera("Ours");
    world.SetOption(TVL::kOptimisedControllers, false);
    Camera("Hosts");
    adaptor.BeginRecording({&rig});
    for (const char* name : {"Ours", "Hosts"}) {
        for (int frame = 0; frame < kFrames; ++frame) {
            WithLens(*Find(name), SecondsAt(frame), [frame](TVL::CSnapshot_Lens& lens) {
                lens.SetFieldOfView(DegreesAt(frame));
                lens.SetTargetDistance(DistanceAt(frame));
            });
        }
    }
    adaptor.EndRecording();

    const auto expectTake = [](const std::string& when) {
        for (const char* name : {"Rig_Ours", "Rig_Hosts"}) {
            CMAXNode node(nullptr, Host(name));
            for (int frame = kFrames; frame-- > 0;) {
                WithLens(node, SecondsAt(frame), [&](TVL::CSnapshot_Lens& lens) {
                    ASSERT_NEAR(lens.GetFieldOfView(), DegreesAt(frame), 1e-5) << when << name;
                    ASSERT_EQ(lens.GetTargetDistance(),
                              double{static_cast<float>(DistanceAt(frame))})
                        << when << name << " in frame " << frame;
                });
            }
        }
    };
    expectTake("at once: ");
    const std::string scene = (world.Folder() / "take.scene").string();
    ASSERT_EQ(world.Session().SaveScene(scene).error, "");
    ASSERT_EQ(world.Session().OpenScene(scene).error, "");
    expectTake("opened: ");
}

TEST_F(LensSnapshot, DoesNothingOnceTheCameraIsNotShownAnyMore) {
    Node* const eye = Camera("Eye");
    TVL::CSnapshot_Lens* const lens = eye->AcquireLensSnapshot(0);
    lens->SetTargetDistance(7);
    Host("Rig_Eye")->ReplaceReference(1, headless::NewSphere(1, 8));  // another object
    lens->SetFieldOfView(30);
    lens->SetFieldOfViewType(1);
    lens->SetTargetDistance(8);
    EXPECT_EQ(lens->GetFieldOfView(), 0);
    EXPECT_EQ(lens->GetFieldOfViewType(), 0);
    EXPECT_EQ(lens->GetTargetDistance(), 0);
    EXPECT_EQ(eye->AcquireLensSnapshot(0), nullptr);
    GetCOREInterface()->DeleteNode(Host("Rig_Eye"));
    EXPECT_EQ(lens->GetTargetDistance(), 0);
    eye->ReleaseLensSnapshot(lens);
    eye->ReleaseLensSnapshot(nullptr);
}

}  // namespace
