#include "controllers/conversion.h"

#include <gtest/gtest.h>

#include "headless/primitives.h"
#include "headless/scene_view.h"
#include "host/animate.h"
#include "host/hold.h"
#include "host/interface.h"
#include "platform/testing.h"
#include "resources/resource_ids.h"
#include "tests/controllers/control_world.h"

namespace {

constexpr const char* kOwnStep = "Convert to PRS controller";

Animatable& Parameters(CameraObject& camera) {
    for (int i = 0; i < camera.NumSubs(); ++i) {
        if (camera.SubAnimName(i) == "Parameters") return *camera.SubAnim(i);
    }
    throw std::runtime_error("a camera without parameters");
}

int FieldOfView(Animatable& parameters) {
    for (int i = 0; i < parameters.NumSubs(); ++i) {
        if (parameters.SubAnimName(i) == "FOV") return i;
    }
    throw std::runtime_error("a camera without a field of view");
}

bool IsPositionRotationScale(INode* node) {
    return node->GetTMController()->ClassID() == kPositionRotationScaleClassId;
}

class Conversion : public testing::Test {
  protected:
    // A node with one of our controllers on it.
    INode* NewNode(OpenTransform*& control) {
        INode* const node = GetCOREInterface()->CreateObjectNode(headless::NewSphere(1, 8));
        control = new OpenTransform;
        node->SetTMController(control);
        return node;
    }

    OpenScalar* NewFieldOfView() {
        camera_ = GetCOREInterface()->CreateCameraObject(0);
        GetCOREInterface()->CreateObjectNode(camera_);
        auto* const control = new OpenScalar;
        Animatable& parameters = Parameters(*camera_);
        parameters.AssignController(control, FieldOfView(parameters));
        return control;
    }

    Control& FieldOfViewNow() {
        Animatable& parameters = Parameters(*camera_);
        return *static_cast<Control*>(parameters.SubAnim(FieldOfView(parameters)));
    }

    ControlWorld world_;
    CameraObject* camera_ = nullptr;
};

TEST_F(Conversion, ATransformKeepsItsKeyTimesAndPosesAndComesBackInOneStep) {
    OpenTransform* control = nullptr;
    INode* const node = NewNode(control);
    const Matrix3 poses[] = {MovedBy(3), TurnedAboutZ(80) * MovedBy(5), TurnedAboutZ(-30)};
    for (int i = 0; i < 3; ++i)
        control->AddKey({0, 100 + i * 50, poses[i]});
    const std::uint64_t before = headless::SceneDigest();

    ConvertToPRSController(control);
    ASSERT_TRUE(IsPositionRotationScale(node));
    EXPECT_EQ(world_.Host().UndoLabels().front(), kOwnStep);
    EXPECT_FALSE(Animating());
    EXPECT_FALSE(theHold.Holding());
    Control& converted = *node->GetTMController();
    for (int i = 0; i < 3; ++i)
        ExpectNear(node->GetNodeTM(100 + i * 50), poses[i], 1e-4f);
    // No key at tick 0, where the seed stands alone.
    TimeValue first = -1;
    for (int i = 0; i < converted.NumSubs(); ++i) {
        if (Animatable* part = converted.SubAnim(i); part && part->NumKeys() > 0)
            first = part->GetKeyTime(0);
    }
    EXPECT_EQ(first, 100);

    ASSERT_TRUE(world_.Host().Undo());
    EXPECT_EQ(node->GetTMController(), control);
    EXPECT_EQ(headless::SceneDigest(), before);
    ASSERT_TRUE(world_.Host().Redo());
    EXPECT_TRUE(IsPositionRotationScale(node));
    ExpectNear(node->GetNodeTM(200), poses[2], 1e-4f);
}

// Recorded, so that the cached key holds the last value while its time is still 0.
TEST_F(Conversion, AScalarKeepsItsRecordedValuesAndGetsAKeyAtTickZeroIfItHasNone) {
    for (const TimeValue first : {0, 100}) {
        OpenScalar* control = NewFieldOfView();
        AnimateOn();
        for (const TimeValue t : {first, 200}) {
            float value = static_cast<float>(100 + t) / 400;
            control->SetValue(t, &value, 1, CTRL_ABSOLUTE);
        }
        AnimateOff();
        ConvertToScalarController(control);
        Control& converted = FieldOfViewNow();
        ASSERT_EQ(converted.ClassID(), kLinearFloatClassId);
        EXPECT_EQ(converted.NumKeys(), first == 0 ? 2 : 3);
        EXPECT_EQ(converted.GetKeyTime(0), 0);
        for (const TimeValue t : {0, first})
            EXPECT_EQ(FloatAt(converted, t), static_cast<float>(100 + first) / 400);
        EXPECT_EQ(FloatAt(converted, 200), 0.75f);
        EXPECT_EQ(world_.Host().UndoLabels().front(), "Convert to Scalar controller");
    }
}

TEST_F(Conversion, WithoutKeysThePresentValueCarriesOverAloneWhereAnimateModeIsOff) {
    OpenScalar* control = NewFieldOfView();
    float value = 0.75f;
    control->SetValue(50, &value, 1, CTRL_ABSOLUTE);
    ConvertToScalarController(control);
    EXPECT_EQ(FieldOfViewNow().NumKeys(), 0);
    EXPECT_EQ(FloatAt(FieldOfViewNow(), 50), 0.75f);
}

TEST_F(Conversion, InsideAnOpenHoldAConversionIsPartOfThatStep) {
    OpenTransform* control = nullptr;
    INode* const node = NewNode(control);
    AnimateOn();
    theHold.Begin();
    ConvertToPRSController(control);
    EXPECT_TRUE(theHold.Holding());
    EXPECT_TRUE(Animating()) << "the mode of before";
    theHold.Cancel();
    AnimateOff();
    EXPECT_EQ(node->GetTMController(), control);
}

TEST_F(Conversion, ConvertingAllASecondTimeLeavesAloneWhatOnlyTheUndoStreamKeeps) {
    OpenTransform* first = nullptr;
    OpenTransform* second = nullptr;
    INode* const nodes[] = {NewNode(first), NewNode(second)};
    NewFieldOfView();
    ConvertAllControllers();
    for (INode* node : nodes)
        EXPECT_TRUE(IsPositionRotationScale(node));
    EXPECT_EQ(FieldOfViewNow().ClassID(), kLinearFloatClassId);
    const std::vector<std::string> labels = world_.Host().UndoLabels();
    ASSERT_GE(labels.size(), 3u);
    EXPECT_EQ(labels.front(), "Convert to Scalar controller");
    EXPECT_EQ(labels[1], kOwnStep);
    EXPECT_EQ(labels[2], kOwnStep);

    ConvertAllControllers();
    EXPECT_EQ(world_.Host().UndoLabels(), labels);
    // What an undo brings back is converted again; the newest went first.
    world_.Host().Undo();
    world_.Host().Undo();
    EXPECT_EQ(nodes[0]->GetTMController(), first);
    EXPECT_TRUE(IsPositionRotationScale(nodes[1]));
    ConvertAllControllers();
    EXPECT_TRUE(IsPositionRotationScale(nodes[0]));
}

TEST_F(Conversion, AControllerOfNobodyIsLeftAlone) {
    Alone<OpenTransform> transform;
    Alone<OpenScalar> scalar;
    ConvertAllControllers();
    ConvertToPRSController(&*transform);
    ConvertToScalarController(&*scalar);
    EXPECT_TRUE(world_.Host().UndoLabels().empty());
}

TEST_F(Conversion, AWalkOverTheLiveOnesBearsTheirDestruction) {
    std::vector<OpenScalar*> controls(5);
    for (OpenScalar*& control : controls)
        control = new OpenScalar;
    std::vector<ScalarControl*> visited;
    ScalarControl::liveInstances.ForEachFromLast([&](ScalarControl& control) {
        visited.push_back(&control);
        if (&control == controls[4]) controls[3]->DeleteThis();
        if (&control == controls[2]) controls[2]->DeleteThis();
    });
    EXPECT_EQ(visited,
              (std::vector<ScalarControl*>{controls[4], controls[2], controls[1], controls[0]}));
    controls[4]->DeleteThis();
    visited.clear();
    ScalarControl::liveInstances.ForEachFromLast([&](ScalarControl& control) {
        visited.push_back(&control);
        control.DeleteThis();
    });
    EXPECT_EQ(visited, (std::vector<ScalarControl*>{controls[1], controls[0]}));
    ScalarControl::liveInstances.ForEachFromLast([](ScalarControl&) { ADD_FAILURE(); });
}

TEST_F(Conversion, ThePageConvertsOnceAndKnowsOnlyItsButton) {
    OpenTransform* control = nullptr;
    INode* const node = NewNode(control);
    const HWND window =
        CreateWindowExA(0, "STATIC", "page", 0, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr);
    EXPECT_EQ(
        ConvertPanelDlgProc(window, WM_INITDIALOG, 0,
                            reinterpret_cast<LPARAM>(static_cast<TransformControl*>(control))),
        1);
    EXPECT_EQ(ConvertPanelDlgProc(window, WM_DESTROY, 0, 0), 0);
    EXPECT_EQ(ConvertPanelDlgProc(window, WM_COMMAND, ConvertButton + 1, 0), 1);
    EXPECT_EQ(node->GetTMController(), control);
    EXPECT_EQ(ConvertPanelDlgProc(window, WM_COMMAND, ConvertButton, 0), 1);
    EXPECT_TRUE(IsPositionRotationScale(node));
    EXPECT_EQ(GetWindowLongPtrA(window, GWLP_USERDATA), 0);
    EXPECT_EQ(ConvertPanelDlgProc(window, WM_COMMAND, ConvertButton, 0), 1);
    EXPECT_EQ(world_.Host().UndoLabels().front(), kOwnStep);
    DestroyWindow(window);
    EXPECT_EQ(ConvertPanelDlgProc(window, WM_COMMAND, ConvertButton, 0), 1);
}

TEST_F(Conversion, TheButtonInTheMotionPanelConvertsTheSelectedNode) {
    OpenTransform* control = nullptr;
    INode* const node = NewNode(control);
    const std::size_t windows = platform::CountWindows();
    world_.Host().Select({node->GetName()});
    world_.Host().SetTaskMode(TASK_MODE_MOTION);
    EXPECT_GT(platform::CountWindows(), windows);
    EXPECT_TRUE(world_.Host().PressButton(ConvertButton));
    EXPECT_TRUE(IsPositionRotationScale(node));
    // The panel was built anew, and shows the host's controller.
    EXPECT_EQ(GetCOREInterface()->GetCommandPanelTaskMode(), TASK_MODE_MOTION);
    EXPECT_FALSE(world_.Host().PressButton(ConvertButton));
    EXPECT_EQ(platform::CountWindows(), windows);
}

TEST_F(Conversion, APageWhoseControllerIsGoneDoesNothing) {
    auto* const control = new OpenTransform;
    control->BeginEditParams(GetCOREInterface(), 0, nullptr);
    control->DeleteThis();
    EXPECT_TRUE(world_.Host().PressButton(ConvertButton));
    EXPECT_TRUE(world_.Host().UndoLabels().empty());
}

}  // namespace
