#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <functional>
#include <numbers>
#include <string>
#include <utility>
#include <vector>

#include "headless/primitives.h"
#include "headless/scene_view.h"
#include "host/interface.h"
#include "host/time.h"
#include "tests/end_to_end/stage.h"

namespace {

void ExpectWalkingAt(const std::string& take, int frame) {
    constexpr double kHalfAMicron = 5e-7;
    const double swing = frame * std::numbers::pi / 180;
    const double x = frame / 10.0;
    ExpectPlace(take + "_Hip", frame, {x, 1, 0}, kHalfAMicron);
    ExpectPlace(take + "_Knee", frame, {x, 1 - 0.5 * std::cos(swing), -0.5 * std::sin(swing)},
                kHalfAMicron);
}

TEST(Recording, BuildsTheSkeletonAndKeysEveryFrameInOneUndoStep) {
    Stage stage;
    // The user's animate mode stays on, and no key stands where the time stood, between two frames.
    stage.Host().PressAnimateButton(true);
    stage.Host().SetTime(123);
    const std::uint64_t empty = headless::SceneDigest();
    const std::string walk = stage.WriteFile("walk.bvh", Walk(20));
    auto report = stage.Record(walk);
    EXPECT_EQ(report["capture.1.owner"], "walk");
    EXPECT_EQ(report["capture.1.joints"], "2");
    EXPECT_EQ(report["capture.1.frames"], "20");
    EXPECT_EQ(report["capture.1.nodes"], "3");
    EXPECT_EQ(headless::Nodes().size(), 3u);
    EXPECT_EQ(View("walk_Knee").parent, View("walk_Hip").handle);
    for (const char* joint : {"walk_Hip", "walk_Knee"}) {
        EXPECT_EQ(View(joint).keys.count, 20) << joint;
        EXPECT_EQ(View(joint).keys.last, 19 * kTicksPerFrame) << joint;
    }
    EXPECT_EQ(View("walk_Camera").keys.count, 1);
    EXPECT_EQ(stage.Host().UndoLabels(), std::vector<std::string>{"Record walk"});
    ASSERT_TRUE(stage.Host().Undo());
    EXPECT_EQ(headless::SceneDigest(), empty);
    ASSERT_TRUE(stage.Host().Redo());
    for (const int frame : {0, 1, 10, 19})
        ExpectWalkingAt("walk", frame);

    // Anew where the take was undone, and after the scene went away.
    ASSERT_TRUE(stage.Host().Undo());
    stage.Record(walk);
    EXPECT_EQ(headless::Nodes().size(), 3u);
    stage.Host().NewScene();
    EXPECT_EQ(stage.Record(walk)["capture.1.nodes"], "3");
    ExpectWalkingAt("walk", 5);
}

TEST(Recording, FollowsARealCaptureInEitherControllerAndInAnyUnits) {
    if (!std::filesystem::exists(kRealCapture)) GTEST_SKIP() << "assimp-testmodels is missing";
    for (const char* optimised : {"1", "0"}) {
        for (const double units : {kUnitsPerMetre, 100.0, 1.0}) {
            SCOPED_TRACE(std::string(optimised) + ", units in a metre: " + std::to_string(units));
            Stage stage(headless::WithUnitsPerMetre(units));
            stage.Tell("LUMISET_CAPTURE_SCALE", "");
            stage.Tell("LUMISET_OPTIMISED", optimised);
            stage.Tell("LUMISET_CAPTURE_FRAMES", "0:200");
            stage.Tell("LUMISET_CSV", stage.File("places.csv"));
            auto report = stage.Record(kRealCapture);
            EXPECT_LT(std::stod(report["capture.1.maxPositionErrorMetres"]), 5e-6);
            const std::string table = ReadFile(stage.File("places.csv"));
            EXPECT_EQ(std::count(table.begin(), table.end(), '\n'), 1 + 31 * 200);
            EXPECT_TRUE(table.starts_with("frame,seconds,joint,x,y,z\n0,0,Hips,"));
            EXPECT_NE(table.find("\n199,"), std::string::npos);
        }
    }
}

TEST(Recording, OverwritesTheFirstHalfOfATakeOnItsOwnNodesAlsoInASceneThatWasOpened) {
    Stage stage;
    stage.Record(stage.WriteFile("walk.bvh", Walk(20)));
    // What the user hangs the take below is no part of it.
    Interface& host = *GetCOREInterface();
    INode* const above = host.CreateObjectNode(host.CreateCameraObject(0));
    above->AttachChild(headless::FindNode("walk_Hip"), 1);
    ASSERT_EQ(stage.Host().SaveScene(stage.File("take.scene")).error, "");
    ASSERT_EQ(stage.Host().OpenScene(stage.File("take.scene")).error, "");
    std::string higher = Walk(20);
    for (std::size_t at = 0; (at = higher.find(" 1 0 0 0 ", at)) != std::string::npos;)
        higher.replace(at, 3, " 2 ");
    stage.WriteFile("walk.bvh", higher);
    stage.Tell("LUMISET_CAPTURE_FRAMES", "0:10");
    auto report = stage.Record(stage.File("walk.bvh"));

    EXPECT_EQ(report["capture.1.frames"], "10");
    EXPECT_EQ(report["take.1.captures"], "1");
    EXPECT_EQ(headless::Nodes().size(), 4u);
    EXPECT_EQ(View("walk_Hip").keys.count, 20);
    ExpectPlace("walk_Hip", 9, {0.9, 2, 0}, 1e-6);
    ExpectWalkingAt("walk", 10);
}

TEST(Recording, DeletesTheWholeTakeWithOneOfItsNodesAndKeepsItsBooksThroughUndo) {
    Stage stage;
    const std::string walk = stage.WriteFile("walk.bvh", Walk(6));
    stage.Record(walk);
    ASSERT_EQ(stage.Host().Select({"walk_Knee"}), 1u);
    const std::uint64_t selected = headless::SceneDigest();
    stage.Host().DeleteSelected();
    EXPECT_TRUE(headless::Nodes().empty());
    ASSERT_TRUE(stage.Host().Undo());
    EXPECT_EQ(headless::SceneDigest(), selected);
    // The Core knows the nodes that came back as its own.
    EXPECT_EQ(stage.Record(walk)["capture.1.nodes"], "3");
    EXPECT_EQ(headless::Nodes().size(), 3u);
}

// Acts the first time that the host's time moves, as it does when a recording starts.
class AtTheStart final : public TimeChangeCallback {
  public:
    explicit AtTheStart(std::function<void()> act) : act_(std::move(act)) {
        GetCOREInterface()->RegisterTimeChangeCallback(this);
    }
    ~AtTheStart() override { GetCOREInterface()->UnRegisterTimeChangeCallback(this); }
    void TimeChanged(TimeValue) override {
        if (const std::function<void()> act = std::exchange(act_, nullptr)) act();
    }

  private:
    std::function<void()> act_;
};

// What the user does in the middle: at the first frame a stop leaves nothing, and a node that is
// gone takes everything back.
TEST(Recording, EndsWhereItsNodesGoInTheMiddle) {
    const auto selectAndDelete = [](Stage& stage) {
        stage.Host().Select({"walk_Hip"});
        stage.Host().DeleteSelected();
    };
    const auto lose = [](Stage&) {
        GetCOREInterface()->DeleteNode(headless::FindNode("walk_Knee"), 0, 0);
    };
    struct Case {
        void (*act)(Stage&);
        const char* error;
        int time;  // then
    };
    for (const auto& [act, error, time] :
         {Case{selectAndDelete, "the recording was stopped at frame 0", 0},
          Case{lose, "\"Knee\" cannot be moved by the host", 1000}}) {
        Stage stage;
        const std::uint64_t empty = headless::SceneDigest();
        stage.Host().SetTime(1000);
        stage.Tell("LUMISET_CAPTURE", stage.WriteFile("walk.bvh", Walk(6)));
        {
            const AtTheStart deletion([&stage, does = act] { does(stage); });
            auto report = stage.Press();
            EXPECT_EQ(report["error"], error);
            EXPECT_EQ(report["capture.1.nodes"], "0");
        }
        EXPECT_TRUE(headless::Nodes().empty());
        while (stage.Host().Undo()) {
        }
        EXPECT_EQ(GetCOREInterface()->GetTime() == 1000, time == 1000);
        EXPECT_EQ(headless::SceneDigest(), empty);
        stage.Record(stage.File("walk.bvh"));
        ExpectWalkingAt("walk", 5);
    }
}

TEST(Recording, FindsEveryFaultBeforeItTouchesTheScene) {
    Stage stage;
    const std::string walk = stage.WriteFile("walk.bvh", Walk(6));
    const std::string cut = stage.WriteFile("cut.bvh", Walk(6).substr(0, Walk(6).size() - 12));
    const std::string lens = HandleOf(Put(GetCOREInterface()->CreateCameraObject(0), "Lens"));
    const std::string nothing = HandleOf(Put(headless::NewSplines({}), "Nothing"));
    const std::string sample = "LUMISET_SAMPLE: expected START:END:STEP";
    const std::uint64_t before = headless::SceneDigest();
    for (const std::vector<std::string>& wrong : std::vector<std::vector<std::string>>{
             {"CAPTURE", walk + '\n' + cut, "cut.bvh:24: frame 6 holds"},
             {"PRESS", "1030", "option 1030 is no button that can be pressed"},
             {"SAMPLE", "0:1:0", sample},
             {"SAMPLE", "1:0:1", sample},
             {"SAMPLE", "0:1e9:1", sample},
             {"SAMPLE", "0:1:1", "LUMISET_CSV: expected the path of a file, found nothing"},
             {"MERGE", cut, "cut.bvh: the host brought in nothing"},
             {"CAPTURE", stage.File("absent.bvh"), "absent.bvh"},
             {"CAPTURE_SCALE", "-1", "LUMISET_CAPTURE_SCALE: expected"},
             {"CAPTURE_FRAMES", "3:3", "LUMISET_CAPTURE_FRAMES: expected"},
             {"CAPTURE_FRAMES", "0:7", "walk.bvh: the capture has only 6 frames"},
             {"OPTIMISED", "yes", "LUMISET_OPTIMISED: expected 0 or 1, found 'yes'"},
             {"CSV", stage.File("absent/places.csv"), "places.csv: the file cannot be written"},
             {"GROUND", "4096", "the host has no node 4096"},
             {"GROUND", "-1", "LUMISET_GROUND: expected the number of a node, found '-1'"},
             {"GROUND", lens, "\"Lens\" has no surface to stand on"},
             {"GUIDE", nothing, "\"Nothing\" has no curves to go along"},
             {"FOLLOW_CAMERA", "yes", "LUMISET_FOLLOW_CAMERA: expected 0 or 1, found 'yes'"}}) {
        SCOPED_TRACE(wrong[2]);
        stage.Tell("LUMISET_CAPTURE", walk);
        stage.Tell("LUMISET_CAPTURE_SCALE", "1");
        stage.Tell("LUMISET_" + wrong[0], wrong[1]);
        auto report = stage.Press();
        stage.Tell("LUMISET_" + wrong[0], "");
        EXPECT_EQ(report["status"], "error");
        EXPECT_NE(report["error"].find(wrong[2]), std::string::npos) << report["error"];
        EXPECT_EQ(headless::SceneDigest(), before);
    }
}

}  // namespace
