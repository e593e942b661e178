#include <climits>

#include "headless/primitives.h"
#include "host/interface.h"
#include "tests/nodes/node_test.h"

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
