#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <functional>
#include <numbers>
#include <string>
#include <utility>
#include <vector>

#include "headless/scene_view.h"
#include "host/interface.h"
#include "host/time.h"
#include "tests/end_to_end/stage.h"

namespace {

constexpr double kHalfAMicron = 5e-7;

void ExpectWalkingAt(const std::string& take, int frame) {
    const Place hip = PlaceOf(take + "_Hip", frame * kTicksPerFrame, kUnitsPerMetre);
    EXPECT_NEAR(hip.x, frame / 10.0, kHalfAMicron);
    EXPECT_NEAR(hip.y, 1, kHalfAMicron);
    EXPECT_NEAR(hip.z, 0, kHalfAMicron);
    const double swing = frame * std::numbers::pi / 180;
    const Place knee = PlaceOf(take + "_Knee", frame * kTicksPerFrame, kUnitsPerMetre);
    EXPECT_NEAR(knee.x, frame / 10.0, kHalfAMicron);
    EXPECT_NEAR(knee.y, 1 - 0.5 * std::cos(swing), kHalfAMicron);
    EXPECT_NEAR(knee.z, -0.5 * std::sin(swing), kHalfAMicron);
}

void ExpectUndoAndRedoAreExact(headless::Session& host, std::uint64_t before) {
    const std::uint64_t after = headless::SceneDigest();
    ASSERT_TRUE(host.Undo());
    EXPECT_EQ(headless::SceneDigest(), before);
    ASSERT_TRUE(host.Redo());
    EXPECT_EQ(headless::SceneDigest(), after);
}

std::vector<std::string> Lines(const std::string& path) {
    std::ifstream file(path);
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);)
        lines.push_back(line);
    return lines;
}

TEST(Recording, BuildsTheSkeletonAndKeysEveryFrameInOneUndoStep) {
    Stage stage;
    const std::uint64_t empty = headless::SceneDigest();
    auto report = stage.Record(stage.WriteFile("walk.bvh", Walk(20)));

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
    for (const int frame : {0, 1, 10, 19})
        ExpectWalkingAt("walk", frame);
    EXPECT_EQ(stage.Host().UndoLabels(), std::vector<std::string>{"Record walk"});
    ExpectUndoAndRedoAreExact(stage.Host(), empty);
    ExpectWalkingAt("walk", 10);
}

TEST(Recording, FollowsARealCaptureInEitherControllerAndInAnyUnits) {
    if (!std::filesystem::exists(kRealCapture)) GTEST_SKIP() << "assimp-testmodels is missing";
    for (const char* optimised : {"1", "0"}) {
        for (const double units : {kUnitsPerMetre, 100.0, 1.0}) {
            SCOPED_TRACE(std::string(optimised) + ", units in a metre: " + std::to_string(units));
            Stage stage(headless::WithUnitsPerMetre(units));
            const std::uint64_t empty = headless::SceneDigest();
            stage.Tell("LUMISET_CAPTURE_SCALE", "");
            stage.Tell("LUMISET_OPTIMISED", optimised);
            stage.Tell("LUMISET_CAPTURE_FRAMES", "0:200");
            stage.Tell("LUMISET_CSV", stage.File("places.csv"));
            auto report = stage.Record(kRealCapture);
            EXPECT_LT(std::stod(report["capture.1.maxPositionErrorMetres"]), 5e-6);
            const std::vector<std::string> rows = Lines(stage.File("places.csv"));
            ASSERT_EQ(rows.size(), 1 + 31 * 200u);
            EXPECT_EQ(rows[0], "frame,seconds,joint,x,y,z");
            EXPECT_EQ(rows[1].substr(0, 9), "0,0,Hips,");
            EXPECT_EQ(rows.back().substr(0, 4), "199,");
            ExpectUndoAndRedoAreExact(stage.Host(), empty);
        }
    }
}

TEST(Recording, OverwritesTheFirstHalfOfATakeOnItsOwnNodes) {
    Stage stage;
    stage.Record(stage.WriteFile("walk.bvh", Walk(20)));
    // What the user hangs the take below is no part of it.
    Interface& host = *GetCOREInterface();
    INode* const above = host.CreateObjectNode(host.CreateCameraObject(0));
    above->AttachChild(headless::FindNode("walk_Hip"), 1);
    const std::uint64_t firstTake = headless::SceneDigest();
    std::string higher = Walk(20);
    for (std::size_t at = 0; (at = higher.find(" 1 0 0 0 ", at)) != std::string::npos;)
        higher.replace(at, 3, " 2 ");
    stage.WriteFile("walk.bvh", higher);
    stage.Tell("LUMISET_CAPTURE_FRAMES", "0:10");
    auto report = stage.Record(stage.File("walk.bvh"));

    EXPECT_EQ(report["capture.1.frames"], "10");
    EXPECT_EQ(headless::Nodes().size(), 4u);
    EXPECT_EQ(View("walk_Hip").keys.count, 20);
    EXPECT_NEAR(PlaceOf("walk_Hip", 9 * kTicksPerFrame, kUnitsPerMetre).y, 2, kHalfAMicron);
    ExpectWalkingAt("walk", 10);
    ExpectUndoAndRedoAreExact(stage.Host(), firstTake);
}

TEST(Recording, StartsAnewWhereTheTakeWasUndone) {
    Stage stage;
    const std::string walk = stage.WriteFile("walk.bvh", Walk(6));
    stage.Record(walk);
    ASSERT_TRUE(stage.Host().Undo());
    stage.Record(walk);
    EXPECT_EQ(headless::Nodes().size(), 3u);
    ExpectWalkingAt("walk", 5);
}

TEST(Recording, LeavesTheAnimateModeOfTheUserOnAndNoKeyWhereTheTimeStood) {
    Stage stage;
    stage.Host().PressAnimateButton(true);
    stage.Host().SetTime(123);  // between two frames
    stage.Record(stage.WriteFile("walk.bvh", Walk(6)));
    EXPECT_EQ(View("walk_Hip").keys.count, 6);
    ExpectWalkingAt("walk", 3);
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
    ASSERT_TRUE(stage.Host().Redo());
    EXPECT_TRUE(headless::Nodes().empty());
    ASSERT_TRUE(stage.Host().Undo());

    // The Core knows the nodes that came back as its own.
    EXPECT_EQ(stage.Record(walk)["capture.1.nodes"], "3");
    EXPECT_EQ(headless::Nodes().size(), 3u);
}

TEST(Recording, LetsGoOfEveryNodeWithTheScene) {
    Stage stage;
    const std::string walk = stage.WriteFile("walk.bvh", Walk(6));
    stage.Record(walk);
    stage.Host().NewScene();
    EXPECT_TRUE(headless::Nodes().empty());
    EXPECT_EQ(stage.Record(walk)["capture.1.nodes"], "3");
    ExpectWalkingAt("walk", 5);
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

TEST(Recording, StopsWhenTheUserDeletesItsNodesInTheMiddle) {
    Stage stage;
    const std::uint64_t empty = headless::SceneDigest();
    stage.Host().SetTime(1000);
    const AtTheStart deletion([&stage] {
        stage.Host().Select({"walk_Hip"});
        stage.Host().DeleteSelected();
    });
    stage.Tell("LUMISET_CAPTURE", stage.WriteFile("walk.bvh", Walk(6)));
    auto report = stage.Press();
    EXPECT_EQ(report["error"], "the recording was stopped at frame 0");
    EXPECT_EQ(report["capture.1.nodes"], "0");
    EXPECT_TRUE(headless::Nodes().empty());
    while (stage.Host().Undo()) {
    }
    EXPECT_EQ(headless::SceneDigest(), empty);
    stage.Record(stage.File("walk.bvh"));
    ExpectWalkingAt("walk", 5);
}

TEST(Recording, TakesEverythingBackWhenItFails) {
    Stage stage;
    const std::uint64_t empty = headless::SceneDigest();
    stage.Host().SetTime(1000);
    const AtTheStart loss(
        [] { GetCOREInterface()->DeleteNode(headless::FindNode("walk_Knee"), 0, 0); });
    stage.Tell("LUMISET_CAPTURE", stage.WriteFile("walk.bvh", Walk(6)));
    auto report = stage.Press();
    EXPECT_EQ(report["error"], "\"Knee\" cannot be moved by the host");
    EXPECT_EQ(report["capture.1.nodes"], "0");
    EXPECT_EQ(headless::SceneDigest(), empty);
    EXPECT_TRUE(stage.Host().UndoLabels().empty());
    EXPECT_EQ(GetCOREInterface()->GetTime(), 1000);
}

TEST(Recording, FindsEveryFaultBeforeItTouchesTheScene) {
    struct Case {
        const char* variable;
        std::string value;
        const char* error;
    };
    Stage stage;
    const std::string walk = stage.WriteFile("walk.bvh", Walk(6));
    const std::string cut = stage.WriteFile("cut.bvh", Walk(6).substr(0, Walk(6).size() - 12));
    const std::vector<Case> cases = {
        {"LUMISET_CAPTURE", walk + '\n' + cut, "cut.bvh:24: frame 6 holds"},
        {"LUMISET_PRESS", "1030", "option 1030 is no button that can be pressed"},
        {"LUMISET_SAMPLE", "0:1:0", "LUMISET_SAMPLE: expected START:END:STEP"},
        {"LUMISET_SAMPLE", "1:0:1", "LUMISET_SAMPLE: expected START:END:STEP"},
        {"LUMISET_SAMPLE", "0:1e9:1", "LUMISET_SAMPLE: expected START:END:STEP"},
        {"LUMISET_SAMPLE", "0:1:1", "LUMISET_CSV: expected the path of a file, found nothing"},
        {"LUMISET_MERGE", cut, "cut.bvh: the host brought in nothing"},
        {"LUMISET_CAPTURE", stage.File("absent.bvh"), "absent.bvh"},
        {"LUMISET_CAPTURE", cut, "cut.bvh:24: frame 6 holds"},
        {"LUMISET_CAPTURE_SCALE", "-1", "LUMISET_CAPTURE_SCALE: expected"},
        {"LUMISET_CAPTURE_FRAMES", "3:3", "LUMISET_CAPTURE_FRAMES: expected"},
        {"LUMISET_CAPTURE_FRAMES", "0:7", "walk.bvh: the capture has only 6 frames"},
        {"LUMISET_OPTIMISED", "yes", "LUMISET_OPTIMISED: expected 0 or 1, found 'yes'"},
        {"LUMISET_CSV", stage.File("absent/places.csv"), "places.csv: the file cannot be written"},
    };
    const std::uint64_t empty = headless::SceneDigest();
    for (const Case& wrong : cases) {
        SCOPED_TRACE(wrong.error);
        stage.Tell("LUMISET_CAPTURE", walk);
        stage.Tell("LUMISET_CAPTURE_SCALE", "1");
        stage.Tell(wrong.variable, wrong.value);
        auto report = stage.Press();
        stage.Tell(wrong.variable, "");
        EXPECT_EQ(report["status"], "error");
        EXPECT_NE(report["error"].find(wrong.error), std::string::npos) << report["error"];
        EXPECT_EQ(headless::SceneDigest(), empty);
        EXPECT_TRUE(stage.Host().UndoLabels().empty());
    }
}

}  // namespace
