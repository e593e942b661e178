#include <csignal>

#include "headless/primitives.h"
#include "headless/scene_view.h"
#include "headless/session.h"
#include "host/interface.h"
#include "platform/interrupt.h"
#include "platform/process.h"
#include "tests/end_to_end/command.h"
#include "tests/support/watcher.h"
#include "tvl/panel.h"

namespace {

using Report = std::map<std::string, std::string>;

constexpr int kTicksPerFrame = 240;  // of the walk, at the host's 4800 ticks in a second

// A running host with the real plug-in and the example Core, found through a registry of their own.
// The Core is told around the host what to record. At the end nothing may be left alive.
class Recording : public testing::Test {
  protected:
    Recording() {
        PlaceRegistry(folder_, {CORE_FOLDER, folder_.Path().string()});
        Tell("REPORT", folder_.File("report"));
        Tell("CAPTURE_SCALE", "1");
        EXPECT_EQ(host.LoadPlugin(PLUGIN_MODULE), "");
        host.Start();
        EXPECT_EQ(host.KeptUtilities(), 1u) << "the Core was not attached";
        EXPECT_TRUE(host.OpenUtility(TVL::kPanelUtility));
    }
    ~Recording() override {
        EXPECT_TRUE(host.AcceleratorsEnabled() && host.AnimateButtonEnabled());
        const std::size_t keptUtilities = host.KeptUtilities();
        host.ShutDown();
        // The plug-in's global utility lives as long as the process.
        EXPECT_EQ(headless::TakeCensus().heapBlocks, aliveBefore_ + keptUtilities);
        for (const auto& [name, value] : Report(told_))
            Tell(name, "");
    }

    // For the presses that follow; an empty value takes it away.
    void Tell(const std::string& name, const std::string& value) {
        told_[name] = value;
        platform::SetVariable(("LUMISET_" + name).c_str(), value);
    }

    // Presses the button that calls the Core, and gives what the Core reports.
    Report Press() {
        EXPECT_TRUE(host.PressButton(TVL::kStartButton));
        std::istringstream lines(ReadFile(folder_.File("report")));
        std::filesystem::remove(folder_.File("report"));
        Report report;
        for (std::string line; std::getline(lines, line);)
            report[line.substr(0, line.find('='))] = line.substr(line.find('=') + 1);
        return report;
    }

    // The same for a capture "walk"; the test fails unless all of it went well.
    Report Record(const std::string& walk) {
        Tell("CAPTURE", folder_.Write("walk.bvh", walk));
        Report report = Press();
        EXPECT_EQ(report["status"], "ok") << report["error"];
        return report;
    }

    TemporaryFolder folder_;
    std::size_t aliveBefore_ = headless::TakeCensus().heapBlocks;
    headless::Session host;
    Report told_;
};

// The node of that host name; the test fails if there is none.
headless::NodeView View(std::string_view hostName) {
    for (const headless::NodeView& node : headless::Nodes())
        if (node.name == hostName) return node;
    ADD_FAILURE() << "no node is called " << hostName;
    return {};
}

// The host has the node there at a frame of the walk; in Core space, metres.
void ExpectPlace(std::string_view hostName, int frame, double x, double y, double z,
                 double tolerance) {
    headless::PositionView at;
    EXPECT_TRUE(headless::NodePosition(View(hostName).handle, frame * kTicksPerFrame, at));
    EXPECT_LT(std::hypot(at.x / kUnitsPerMetre - x, at.z / kUnitsPerMetre - y,
                         -at.y / kUnitsPerMetre - z),
              tolerance)
        << hostName << ", frame " << frame;
}

void ExpectWalkingAt(int frame) {
    constexpr double kHalfAMicron = 5e-7;
    const double swing = frame * std::numbers::pi / 180;
    const double x = frame / 10.0;
    ExpectPlace("walk_Hip", frame, x, 1, 0, kHalfAMicron);
    ExpectPlace("walk_Knee", frame, x, 1 - 0.5 * std::cos(swing), -0.5 * std::sin(swing),
                kHalfAMicron);
}

// What a person draws into the scene; its handle.
std::string Put(Object* object, const char* name, const Matrix3& world = Matrix3()) {
    INode* const node = GetCOREInterface()->CreateObjectNode(object);
    node->SetName(name);
    node->SetNodeTM(0, world);
    return std::to_string(node->GetHandle());
}

TEST_F(Recording, BuildsTheSkeletonAndKeysEveryFrameInOneUndoStep) {
    // The user's animate mode stays on, and no key stands where the time stood, between two frames.
    host.PressAnimateButton(true);
    host.SetTime(123);
    const std::uint64_t empty = headless::SceneDigest();
    EXPECT_EQ(Record(Walk(20))["capture.1.nodes"], "3");
    for (const char* joint : {"walk_Hip", "walk_Knee"}) {
        EXPECT_EQ(View(joint).keys.count, 20) << joint;
        EXPECT_EQ(View(joint).keys.last, 19 * kTicksPerFrame) << joint;
    }
    EXPECT_EQ(host.UndoLabels(), std::vector<std::string>{"Record walk"});
    ASSERT_TRUE(host.Undo());
    EXPECT_EQ(headless::SceneDigest(), empty);
    ASSERT_TRUE(host.Redo());
    for (const int frame : {0, 1, 10, 19})
        ExpectWalkingAt(frame);

    ASSERT_EQ(host.Select({"walk_Knee"}), 1u);
    const std::uint64_t selected = headless::SceneDigest();
    // The whole take goes with one of its nodes. The Core knows those that come back as its own.
    host.DeleteSelected();
    EXPECT_TRUE(headless::Nodes().empty());
    ASSERT_TRUE(host.Undo());
    EXPECT_EQ(headless::SceneDigest(), selected);
    // Onto the nodes that are there, anew where the take was undone, and after the scene went away.
    const auto recordAnew = [this] {
        EXPECT_EQ(Record(Walk(20))["capture.1.nodes"], "3");
        EXPECT_EQ(headless::Nodes().size(), 3u);
        ExpectWalkingAt(5);
    };
    recordAnew();
    while (host.Undo()) {
    }
    recordAnew();
    host.NewScene();
    recordAnew();
}

// Rounding leaves some of them just short of their ticks.
TEST_F(Recording, KeepsFramesThatLieOnTicksThere) {
    for (const std::size_t frames : {10U, 37U, 73U}) {
        host.NewScene();
        Record(With(Walk(frames), "0.05", "0.01"));
        EXPECT_EQ(View("walk_Hip").keys.last, 48 * static_cast<int>(frames - 1));
    }
}

// Field of view and target distance at each of so many frames.
std::vector<float> LensValues(int frames) {
    auto* const lens =
        dynamic_cast<CameraObject*>(headless::FindNode("walk_Camera")->GetObjectRef());
    std::vector<float> values;
    for (int frame = 0; frame < frames; ++frame) {
        Interval valid;
        values.push_back(lens->GetFOV(frame * kTicksPerFrame, valid));
        values.push_back(lens->GetTDist(frame * kTicksPerFrame, valid));
    }
    return values;
}

// A following camera keeps its lens. The lens was read at its first frame before, as a viewport
// does, and is read there again.
TEST_F(Recording, KeepsWhatIsWholeWhereTheUserStopsItAndNothingWhereTheHostDoes) {
    const auto deleteByHand = [this](const char* node) {
        host.Select({node});
        host.DeleteSelected();
    };
    const std::string stopped = "the recording was stopped at frame ";
    constexpr TimeValue kTime = 55;  // whose seconds lead to the tick before
    Tell("FOLLOW_CAMERA", "1");
    Tell("CAPTURE_TO", "59");
    for (const char* optimised : {"1", "0"}) {
        SCOPED_TRACE(optimised);
        host.NewScene();
        Tell("OPTIMISED", optimised);
        Put(headless::NewSphere(1, 8), "bystander");
        Report report = Record(Walk(70));
        EXPECT_LT(std::stod(report["capture.1.maxFieldOfViewErrorDegrees"]), 1e-5);
        EXPECT_LT(std::stod(report["capture.1.maxTargetDistanceErrorMetres"]), 1e-6);
        EXPECT_EQ(View("walk_Camera").keys.count, 60);
        const std::vector<float> lens = LensValues(60);
        EXPECT_NE(lens.front(), lens[std::size_t{2} * 59]) << "the field of view is not animated";
        EXPECT_EQ(host.SaveScene(folder_.File("scene")).error, "");
        std::uint64_t whole = 0;
        // Acts in the middle or at the start of another recording, and gives why that ended, and
        // what a capture behind it that was not begun is told.
        const auto stopBy = [&](const std::function<void()>& act, bool isAtStart = false) {
            EXPECT_EQ(host.OpenScene(folder_.File("scene")).error, "");
            EXPECT_EQ(LensValues(60), lens);
            LensValues(1);
            host.SetTime(kTime);
            whole = headless::SceneDigest();
            int changes = 0;
            Watcher watcher([&] {
                if (++changes == (isAtStart ? 1 : 41)) act();
            });
            if (isAtStart)
                watcher.ReplaceReference(0, headless::FindNode("walk_Hip")->GetTMController());
            else
                watcher.ReplaceReference(0, headless::FindNode("walk_Camera")->GetObjectRef());
            Report told = Press();
            watcher.ReplaceReference(0, nullptr);
            return told["error"] + told["capture.2.error"];
        };
        EXPECT_EQ(stopBy([&] { deleteByHand("bystander"); }), stopped + "21");
        const std::vector<float> kept = LensValues(60);
        for (std::size_t i = 0; i < lens.size(); ++i)
            EXPECT_NEAR(kept[i], lens[i], 1e-4) << "frame " << i / 2;
        EXPECT_EQ(stopBy([&] { deleteByHand("walk_Hip"); }), stopped + "21");
        EXPECT_EQ(headless::Nodes().size(), 1u);
        EXPECT_EQ(
            stopBy([] { GetCOREInterface()->DeleteNode(headless::FindNode("walk_Knee"), 0, 0); }),
            "\"Knee\" cannot be moved by the host");
        EXPECT_EQ(GetCOREInterface()->GetTime(), kTime);
        EXPECT_EQ(headless::SceneDigest(), whole);
        EXPECT_EQ(stopBy([&] { deleteByHand("bystander"); }, true), stopped + "0");

#if !defined(_WIN32)  // where what is raised ends the process: Ctrl-C is no signal there
        // By Ctrl-C after the frame in which it comes, which this process survives.
        Tell("INTERRUPTIBLE", "1");
        const platform::Interrupt interrupt;
        EXPECT_EQ(stopBy([] { std::raise(SIGINT); }),
                  folder_.File("walk.bvh") + ": " + stopped + "21 of 60");
        EXPECT_TRUE(platform::Interrupt::IsWanted()) << "the Core keeps it for itself";
        EXPECT_EQ(View("walk_Camera").keys.count, 60);
        EXPECT_EQ(LensValues(60), kept);
        EXPECT_EQ(host.UndoLabels(), std::vector<std::string>{"Record walk"});
        Tell("INTERRUPTIBLE", "");
#endif

        const std::string other = folder_.Write("other.bvh", Walk(70));
        Tell("CAPTURE", folder_.File("walk.bvh") + '\n' + other);
        EXPECT_EQ(stopBy([&] { deleteByHand("bystander"); }),
                  stopped + "21" + other + ": not recorded, since " + stopped + "21");
    }
}

// The ground is two metres long and slopes up the way that is walked, by one in four. It is turned
// and scaled, so that rays have to find it in its own space.
TEST_F(Recording, LiftsTheWholeFigureWhereFeetWouldSinkIntoTheGround) {
    const double slope = std::atan(0.25);
    const auto cosine = static_cast<float>(std::cos(slope) / 2);
    const auto sine = static_cast<float>(std::sin(slope) / 2);
    const Matrix3 world({cosine, 0, sine}, {0, 0.5F, 0}, {-sine, 0, cosine},
                        {static_cast<float>(kUnitsPerMetre), 0, 0});
    Tell("GROUND",
         Put(headless::NewGround(static_cast<float>(4 * kUnitsPerMetre), 3), "Ground", world));
    const auto point = headless::StraightLines({{5, 5, 5}, {5, 5, 5}});
    Tell("GUIDE", Put(headless::NewSplines({point}), "Point"));
    // A foot for a knee, half a metre below the hip, and its tip as far below that.
    Report report = Record(With(Walk(40), "Knee", "LeftFoot"));
    std::size_t lifted = 0;
    for (int frame = 0; frame < 40; ++frame) {
        // The tip of the foot is the lowest: where the walk has it, and where the ground is there.
        const double x = frame / 10.0;
        const bool isAboveGround = std::abs(x - 1) < std::cos(slope);
        const double tip = 1 - std::cos(frame * std::numbers::pi / 180);
        const double lift = isAboveGround ? std::max(0.0, (x - 1) / 4 - tip) : 0;
        lifted += lift > 1e-5;
        ExpectPlace("walk_Hip", frame, x, 1 + lift, 0, 1e-5);
    }
    EXPECT_GT(lifted, 5u);
    EXPECT_EQ(report["capture.1.liftedFrames"], std::to_string(lifted));
    EXPECT_LT(std::stod(report["capture.1.maxPositionErrorMetres"]), 5e-6);
    auto* const arrows = dynamic_cast<TriObject*>(headless::FindNode("walk_Guide")->GetObjectRef());
    EXPECT_TRUE(arrows && arrows->GetMesh().faces.empty()) << "along a curve without length";
}

TEST_F(Recording, FindsEveryFaultBeforeItTouchesTheScene) {
    const std::string walk = folder_.Write("walk.bvh", Walk(6));
    const std::string cut = folder_.Write("cut.bvh", Walk(6).substr(0, Walk(6).size() - 12));
    const std::string lens = Put(GetCOREInterface()->CreateCameraObject(0), "Lens");
    const std::string nothing = Put(headless::NewSplines({}), "Nothing");
    const std::uint64_t before = headless::SceneDigest();
    for (const auto& [name, value, error] : std::vector<std::array<std::string, 3>>{
             {"CAPTURE", cut, "cut.bvh:24: frame 6 holds"},
             {"INSPECT", "walk_Hip", "LUMISET_INSPECT: "},
             {"SAMPLE", "0:1:-1", "LUMISET_SAMPLE: expected START:END:STEP"},
             {"MERGE", cut, "cut.bvh: the host brought in nothing"},
             {"OPTIMISED", "yes", "LUMISET_OPTIMISED: expected 0 or 1"},
             {"CAPTURE_TO", "6",
              "walk.bvh: the capture ends with frame 5, at 0.25 s, before frame 6"},
             {"CAPTURE_FROM", "0.3s", "frame 5, at 0.25 s, before 0.3 s"},
             {"GROUND", "4096", "the host has no node 4096"},
             {"GROUND", lens, "\"Lens\" has no surface to stand on"},
             {"GUIDE", nothing, "\"Nothing\" has no curves to go along"}}) {
        Tell("CAPTURE", walk);
        Tell(name, value);
        Report report = Press();
        Tell(name, "");
        EXPECT_EQ(report["status"], "error") << error;
        EXPECT_NE(report["error"].find(error), std::string::npos) << report["error"];
        EXPECT_EQ(headless::SceneDigest(), before) << error;
    }
}

}  // namespace
