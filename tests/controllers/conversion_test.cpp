#include "controllers/conversion.h"

#include <gtest/gtest.h>

#include "headless/primitives.h"
#include "headless/scene_view.h"
#include "host/animate.h"
#include "host/hold.h"
#include "platform/testing.h"
#include "resources/resource_ids.h"
#include "tests/controllers/control_world.h"

namespace {

constexpr const char* kOwnStep = "Convert to PRS controller";

bool IsConverted(INode* node) {
    return node->GetTMController()->ClassID() == kPositionRotationScaleClassId;
}

class Conversion : public testing::Test {
  protected:
    // A node with one of our controllers on it.
    INode* NewNode(OpenTransform*& control) {
        INode* const node = GetCOREInterface()->CreateObjectNode(headless::NewSphere(1, 8));
        node->SetTMController(control = new OpenTransform);
        return node;
    }

    // One of ours on the field of view of a camera.
    OpenScalar* NewFieldOfView() {
        CameraObject* const camera = GetCOREInterface()->CreateCameraObject(0);
        GetCOREInterface()->CreateObjectNode(camera);
        parameters_ = nullptr;
        for (int i = 0; !parameters_; ++i)
            if (camera->SubAnimName(i) == "Parameters") parameters_ = camera->SubAnim(i);
        for (field_ = 0; parameters_->SubAnimName(field_) != "FOV";)
            ++field_;
        auto* const control = new OpenScalar;
        parameters_->AssignController(control, field_);
        return control;
    }
    Control& FieldOfView() { return *static_cast<Control*>(parameters_->SubAnim(field_)); }

    ControlWorld world_;
    headless::Session& host_ = world_.Host();
    Animatable* parameters_ = nullptr;
    int field_ = 0;
};

// What nobody refers to is left alone.
TEST_F(Conversion, AllAreConvertedTheNewestFirstEachInAStepThatBringsItBackWhole) {
    Alone<OpenTransform> alone;
    OpenTransform* first = nullptr;
    OpenTransform* second = nullptr;
    INode* const nodes[] = {NewNode(first), NewNode(second)};
    NewFieldOfView();
    const Matrix3 poses[] = {MovedBy(3), TurnedAboutZ(80) * MovedBy(5), TurnedAboutZ(-30)};
    for (int i = 0; i < 3; ++i)
        first->AddKey({0, 100 + i * 50, poses[i]});
    const std::uint64_t before = headless::SceneDigest();
    const std::vector<std::string> labels = {"Convert to Scalar controller", kOwnStep, kOwnStep};
    for (int round = 0; round < 2; ++round) {
        ConvertAllControllers();
        EXPECT_FALSE(Animating() || theHold.Holding());
        EXPECT_EQ(FieldOfView().ClassID(), kLinearFloatClassId);
        EXPECT_TRUE(IsConverted(nodes[0]) && IsConverted(nodes[1]));
        EXPECT_EQ(host_.UndoLabels(), labels) << "the undo stream alone keeps what was converted";
    }
    for (int i = 0; i < 3; ++i)
        ExpectNear(nodes[0]->GetNodeTM(100 + i * 50), poses[i], 1e-4F);
    Control& converted = *nodes[0]->GetTMController();
    EXPECT_EQ(converted.SubAnim(0)->GetKeyTime(0), 100) << "at 0 the seed stands alone";

    ASSERT_TRUE(host_.Undo() && host_.Undo());
    EXPECT_EQ(nodes[0]->GetTMController(), first);
    EXPECT_TRUE(IsConverted(nodes[1]));
    ASSERT_TRUE(host_.Undo());
    EXPECT_EQ(headless::SceneDigest(), before);

    // Inside an open hold it is part of that step, and leaves animate mode as it was.
    AnimateOn();
    theHold.Begin();
    ConvertToPRSController(first);
    EXPECT_TRUE(theHold.Holding() && Animating() && IsConverted(nodes[0]));
    theHold.Cancel();
    AnimateOff();
    EXPECT_EQ(nodes[0]->GetTMController(), first);
}

// Recorded, so that the cached key holds the last value while its time is still 0.
TEST_F(Conversion, AScalarKeepsItsValuesAndGetsAKeyAtTickZeroIfItHasNone) {
    for (const TimeValue first : {0, 100}) {
        OpenScalar* const control = NewFieldOfView();
        AnimateOn();
        for (const TimeValue t : {first, 200}) {
            float value = static_cast<float>(100 + t) / 400;
            control->SetValue(t, &value, 1, CTRL_ABSOLUTE);
        }
        AnimateOff();
        ConvertToScalarController(control);
        Control& converted = FieldOfView();
        ASSERT_EQ(converted.ClassID(), kLinearFloatClassId);
        EXPECT_EQ(converted.NumKeys(), first == 0 ? 2 : 3);
        for (const TimeValue t : {0, first})
            EXPECT_EQ(FloatAt(converted, t), static_cast<float>(100 + first) / 400);
        EXPECT_EQ(FloatAt(converted, 200), 0.75F);
    }
    OpenScalar* const keyless = NewFieldOfView();
    float value = 0.75F;
    keyless->SetValue(50, &value, 1, CTRL_ABSOLUTE);
    ConvertToScalarController(keyless);
    EXPECT_EQ(FieldOfView().NumKeys(), 0);
    EXPECT_EQ(FloatAt(FieldOfView(), 50), 0.75F);
}

TEST_F(Conversion, AWalkOverTheLiveOnesBearsTheirDestruction) {
    std::vector<OpenScalar*> controls;
    for (int i = 0; i < 5; ++i)
        controls.push_back(new OpenScalar);
    std::vector<ScalarControl*> visited;
    const auto walk = [&](auto act) {
        visited.clear();
        ScalarControl::liveInstances.ForEachFromLast([&](ScalarControl& control) {
            visited.push_back(&control);
            act(control);
        });
        return visited;
    };
    using Visited = std::vector<ScalarControl*>;
    EXPECT_EQ(walk([&](ScalarControl& control) {
                  if (&control == controls[4]) controls[3]->DeleteThis();
                  if (&control == controls[2]) controls[2]->DeleteThis();
              }),
              (Visited{controls[4], controls[2], controls[1], controls[0]}));
    EXPECT_EQ(walk([](ScalarControl& control) { control.DeleteThis(); }),
              (Visited{controls[4], controls[1], controls[0]}));
    EXPECT_EQ(walk([](ScalarControl&) {}), Visited{});
}

TEST_F(Conversion, TheButtonInTheMotionPanelConvertsTheSelectedNode) {
    OpenTransform* control = nullptr;
    INode* const node = NewNode(control);
    const std::size_t windows = platform::CountWindows();
    host_.Select({node->GetName()});
    host_.SetTaskMode(TASK_MODE_MOTION);
    EXPECT_GT(platform::CountWindows(), windows);
    EXPECT_TRUE(host_.PressButton(ConvertButton));
    EXPECT_TRUE(IsConverted(node));
    // The panel was built anew, and shows the host's controller.
    EXPECT_EQ(GetCOREInterface()->GetCommandPanelTaskMode(), TASK_MODE_MOTION);
    EXPECT_FALSE(host_.PressButton(ConvertButton));
    EXPECT_EQ(platform::CountWindows(), windows);

    control = new OpenTransform;
    control->BeginEditParams(GetCOREInterface(), 0, nullptr);
    control->DeleteThis();
    EXPECT_TRUE(host_.PressButton(ConvertButton)) << "for nobody any more";
}

TEST_F(Conversion, APageKnowsOnlyItsButtonAndConvertsOnce) {
    OpenTransform* control = nullptr;
    INode* const node = NewNode(control);
    const HWND page =
        CreateWindowExA(0, "STATIC", "", 0, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr);
    const auto parameter = reinterpret_cast<LPARAM>(static_cast<TransformControl*>(control));
    EXPECT_EQ(ConvertPanelDlgProc(page, WM_INITDIALOG, 0, parameter), 1);
    EXPECT_EQ(ConvertPanelDlgProc(page, WM_DESTROY, 0, 0), 0);
    EXPECT_EQ(ConvertPanelDlgProc(page, WM_COMMAND, ConvertButton + 1, 0), 1);
    EXPECT_TRUE(host_.UndoLabels().empty() && !IsConverted(node));
    for (int press = 0; press < 2; ++press)
        EXPECT_EQ(ConvertPanelDlgProc(page, WM_COMMAND, ConvertButton, 0), 1);
    EXPECT_TRUE(IsConverted(node) && host_.UndoLabels().size() == 1);
    DestroyWindow(page);
}

}  // namespace
