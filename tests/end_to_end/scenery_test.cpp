#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <string>
#include <vector>

#include "headless/primitives.h"
#include "headless/scene_view.h"
#include "host/interface.h"
#include "tests/end_to_end/stage.h"
#include "tests/support/watcher.h"

// Takes that heed what else is in the scene: a ground, a shape, a camera that follows.

namespace {

// Field of view and target distance at each frame.
std::vector<float> LensValues(int frames) {
    auto* const object =
        dynamic_cast<CameraObject*>(headless::FindNode("walk_Camera")->GetObjectRef());
    std::vector<float> values;
    for (int frame = 0; frame < frames; ++frame) {
        Interval valid;
        values.push_back(object->GetFOV(frame * kTicksPerFrame, valid));
        values.push_back(object->GetTDist(frame * kTicksPerFrame, valid));
    }
    return values;
}

// Also from a scene that was opened, and when it is written a second time up to where any node is
// deleted by its user. The lens was read at its first frame before, as a viewport does, and is read
// there again.
TEST(Scenery, AFollowingCameraIsReadBackAsWrittenAlsoAfterAStop) {
    for (const char* optimised : {"1", "0"}) {
        SCOPED_TRACE(optimised);
        Stage stage;
        stage.Tell("LUMISET_FOLLOW_CAMERA", "1");
        stage.Tell("LUMISET_OPTIMISED", optimised);
        stage.Tell("LUMISET_CAPTURE_FRAMES", "0:60");
        auto report = stage.Record(stage.WriteFile("walk.bvh", Walk(70)));
        EXPECT_LT(std::stod(report["capture.1.maxFieldOfViewErrorDegrees"]), 1e-5);
        EXPECT_LT(std::stod(report["capture.1.maxTargetDistanceErrorMetres"]), 1e-6);
        EXPECT_EQ(View("walk_Camera").keys.count, 60);
        // It goes along with the walk, six metres in all.
        EXPECT_NEAR(PlaceOf("walk_Camera", 59)[0] - PlaceOf("walk_Camera", 0)[0], 5.9, 0.01);
        const std::vector<float> lens = LensValues(60);
        EXPECT_NE(lens.front(), lens[std::size_t{2} * 59]) << "the field of view is not animated";
        stage.Reopen();
        EXPECT_EQ(LensValues(60), lens);

        LensValues(1);
        Put(headless::NewSphere(1, 8), "bystander");
        int changes = 0;
        Watcher watcher([&] {
            if (++changes != 41) return;
            stage.Host().Select({"bystander"});
            stage.Host().DeleteSelected();
        });
        watcher.ReplaceReference(0, headless::FindNode("walk_Camera")->GetObjectRef());
        EXPECT_TRUE(stage.Press()["error"].starts_with("the recording was stopped at frame "));
        watcher.ReplaceReference(0, nullptr);
        const std::vector<float> stopped = LensValues(60);
        for (std::size_t i = 0; i < lens.size(); ++i)
            EXPECT_NEAR(stopped[i], lens[i], 1e-4) << "frame " << i / 2;
    }
}

// The ground is two metres long and slopes up the way that is walked, by one in four. It is turned
// and scaled, so that rays have to find it in its own space.
TEST(Scenery, FeetThatWouldSinkIntoTheGroundLiftTheWholeFigureOntoIt) {
    Stage stage;
    const double slope = std::atan(0.25);
    const auto cosine = static_cast<float>(std::cos(slope) / 2);
    const auto sine = static_cast<float>(std::sin(slope) / 2);
    const Matrix3 world({cosine, 0, sine}, {0, 0.5F, 0}, {-sine, 0, cosine},
                        {static_cast<float>(kUnitsPerMetre), 0, 0});
    INode* const ground =
        Put(headless::NewGround(static_cast<float>(4 * kUnitsPerMetre), 3), "Ground", world);
    stage.Tell("LUMISET_GROUND", HandleOf(ground));
    const auto point = headless::StraightLines({{5, 5, 5}, {5, 5, 5}});
    stage.Tell("LUMISET_GUIDE", HandleOf(Put(headless::NewSplines({point}), "Point")));
    // A foot for a knee, half a metre below the hip, and its tip as far below that.
    std::string walk = Walk(40);
    walk.replace(walk.find("Knee"), 4, "LeftFoot");
    auto report = stage.Record(stage.WriteFile("walk.bvh", walk));

    std::size_t lifted = 0;
    for (int frame = 0; frame < 40; ++frame) {
        SCOPED_TRACE(frame);
        // The tip of the foot is the lowest: where the walk has it, and where the ground is there.
        const double swing = frame * std::numbers::pi / 180;
        const double x = frame / 10.0;
        const bool isAboveGround = std::abs(x - 1) < std::cos(slope);
        const double tip = 1 - std::cos(swing);
        const double lift = isAboveGround ? std::max(0.0, (x - 1) / 4 - tip) : 0;
        lifted += lift > 1e-5;
        ExpectPlace("walk_Hip", frame, {x, 1 + lift, 0}, 1e-5);
        ExpectPlace("walk_LeftFoot", frame,
                    {x, 1 + lift - std::cos(swing) / 2, -std::sin(swing) / 2}, 1e-5);
    }
    EXPECT_GT(lifted, 5u);
    EXPECT_EQ(report["capture.1.liftedFrames"], std::to_string(lifted));
    EXPECT_LT(std::stod(report["capture.1.maxPositionErrorMetres"]), 5e-6);
    auto* const arrows = dynamic_cast<TriObject*>(headless::FindNode("walk_Guide")->GetObjectRef());
    EXPECT_TRUE(arrows && arrows->GetMesh().faces.empty()) << "along a curve without length";
    EXPECT_GT(View("walk_LeftFoot").wireColour >> 16, View("walk_LeftFoot").wireColour & 0xFF)
        << "the left is blue";
}

}  // namespace
