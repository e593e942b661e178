#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <functional>
#include <numbers>
#include <utility>
#include <vector>

#include "headless/primitives.h"
#include "host/time.h"
#include "tests/end_to_end/stage.h"

namespace {

void ExpectWalkingAt(int frame) {
    constexpr double kHalfAMicron = 5e-7;
    const double swing = frame * std::numbers::pi / 180;
    const double x = frame / 10.0;
    ExpectPlace("walk_Hip", frame, {x, 1, 0}, kHalfAMicron);
    ExpectPlace("walk_Knee", frame, {x, 1 - 0.5 * std::cos(swing), -0.5 * std::sin(swing)},
                kHalfAMicron);
}

TEST(Recording, BuildsTheSkeletonAndKeysEveryFrameInOneUndoStep) {
    Stage stage;
    headless::Session& host = stage.Host();
    // The user's animate mode stays on, and no key stands where the time stood, between two frames.
    host.PressAnimateButton(true);
    host.SetTime(123);
    const std::uint64_t empty = headless::SceneDigest();
    const std::string walk = stage.WriteFile("walk.bvh", Walk(20));
    auto report = stage.Record(walk);
    EXPECT_EQ(report["capture.1.owner"] + ' ' + report["capture.1.joints"] + ' ' +
                  report["capture.1.frames"] + ' ' + report["capture.1.nodes"],
              "walk 2 20 3");
    EXPECT_EQ(headless::Nodes().size(), 3u);
    EXPECT_EQ(View("walk_Knee").parent, View("walk_Hip").handle);
    for (const char* joint : {"walk_Hip", "walk_Knee"}) {
        EXPECT_EQ(View(joint).keys.count, 20) << joint;
        EXPECT_EQ(View(joint).keys.last, 19 * kTicksPerFrame) << joint;
    }
    EXPECT_EQ(View("walk_Camera").keys.count, 1);
    EXPECT_EQ(host.UndoLabels(), std::vector<std::string>{"Record walk"});
    ASSERT_TRUE(host.Undo());
    EXPECT_EQ(headless::SceneDigest(), empty);
    ASSERT_TRUE(host.Redo());
    for (const int frame : {0, 1, 10, 19})
        ExpectWalkingAt(frame);

    // A look changes nothing, and tells of what is not there.
    ASSERT_EQ(host.Select({"walk_Knee"}), 1u);
    const std::uint64_t selected = headless::SceneDigest();
    stage.Tell("LUMISET_CAPTURE", "");
    stage.Tell("LUMISET_INSPECT", "999\n" + std::to_string(View("walk_Hip").handle));
    report = stage.Press();
    stage.Tell("LUMISET_INSPECT", "");
    EXPECT_EQ(report["look.1.isThere"] + report["look.2.name"], "0walk_Hip");
    EXPECT_FALSE(report.contains("look.1.name"));
    EXPECT_EQ(headless::SceneDigest(), selected);

    // The whole take goes with one of its nodes. The Core knows the nodes that come back as its
    // own.
    host.DeleteSelected();
    EXPECT_TRUE(headless::Nodes().empty());
    ASSERT_TRUE(host.Undo());
    EXPECT_EQ(headless::SceneDigest(), selected);
    EXPECT_EQ(stage.Record(walk)["capture.1.nodes"], "3");
    EXPECT_EQ(headless::Nodes().size(), 3u);

    // Anew where the take was undone, and after the scene went away.
    while (host.Undo()) {
    }
    stage.Record(walk);
    EXPECT_EQ(headless::Nodes().size(), 3u);
    host.NewScene();
    EXPECT_EQ(stage.Record(walk)["capture.1.nodes"], "3");
    ExpectWalkingAt(5);
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
    for (const bool isStopped : {true, false}) {
        Stage stage;
        const std::uint64_t empty = headless::SceneDigest();
        stage.Host().SetTime(1000);
        stage.Tell("LUMISET_CAPTURE", stage.WriteFile("walk.bvh", Walk(6)));
        {
            const AtTheStart deletion([&] {
                if (!isStopped)
                    return GetCOREInterface()->DeleteNode(headless::FindNode("walk_Knee"), 0, 0);
                stage.Host().Select({"walk_Hip"});
                stage.Host().DeleteSelected();
            });
            auto report = stage.Press();
            EXPECT_EQ(report["error"], isStopped ? "the recording was stopped at frame 0"
                                                 : "\"Knee\" cannot be moved by the host");
            EXPECT_EQ(report["capture.1.nodes"], "0");
        }
        EXPECT_TRUE(headless::Nodes().empty());
        while (stage.Host().Undo()) {
        }
        EXPECT_EQ(GetCOREInterface()->GetTime() == 1000, !isStopped);
        EXPECT_EQ(headless::SceneDigest(), empty);
        stage.Record(stage.File("walk.bvh"));
        ExpectWalkingAt(5);
    }
}

TEST(Recording, FindsEveryFaultBeforeItTouchesTheScene) {
    Stage stage;
    const std::string walk = stage.WriteFile("walk.bvh", Walk(6));
    const std::string cut = stage.WriteFile("cut.bvh", Walk(6).substr(0, Walk(6).size() - 12));
    const std::string lens = HandleOf(Put(GetCOREInterface()->CreateCameraObject(0), "Lens"));
    const std::string nothing = HandleOf(Put(headless::NewSplines({}), "Nothing"));
    const std::uint64_t before = headless::SceneDigest();
    for (const auto& [name, value, error] : std::vector<std::array<std::string, 3>>{
             {"CAPTURE", walk + '\n' + cut, "cut.bvh:24: frame 6 holds"},
             {"PRESS", "1030", "option 1030 is no button that can be pressed"},
             {"SAMPLE", "0:1:0", "LUMISET_SAMPLE: expected START:END:STEP"},
             {"SAMPLE", "0:1:1", "LUMISET_CSV: expected the path of a file, found nothing"},
             {"INSPECT", "walk_Hip", "LUMISET_INSPECT: "},
             {"MERGE", cut, "cut.bvh: the host brought in nothing"},
             {"CAPTURE_FRAMES", "3:3", "LUMISET_CAPTURE_FRAMES: expected"},
             {"CAPTURE_FRAMES", "0:7", "walk.bvh: the capture has only 6 frames"},
             {"OPTIMISED", "yes", "LUMISET_OPTIMISED: expected 0 or 1, found 'yes'"},
             {"CSV", stage.File("absent/places.csv"), "places.csv: the file cannot be written"},
             {"GROUND", "4096", "the host has no node 4096"},
             {"GROUND", "-1", "LUMISET_GROUND: expected the number of a node, found '-1'"},
             {"GROUND", lens, "\"Lens\" has no surface to stand on"},
             {"GUIDE", nothing, "\"Nothing\" has no curves to go along"},
             {"FOLLOW_CAMERA", "yes", "LUMISET_FOLLOW_CAMERA: expected 0 or 1, found 'yes'"}}) {
        stage.Tell("LUMISET_CAPTURE", walk);
        stage.Tell("LUMISET_" + name, value);
        auto report = stage.Press();
        stage.Tell("LUMISET_" + name, "");
        EXPECT_EQ(report["status"], "error") << error;
        EXPECT_NE(report["error"].find(error), std::string::npos) << report["error"];
        EXPECT_EQ(headless::SceneDigest(), before) << error;
    }
}

}  // namespace
