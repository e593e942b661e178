#include "controllers/conversion.h"

#include "headless/primitives.h"
#include "headless/scene_view.h"
#include "resources/resource_ids.h"
#include "tests/controllers/control_world.h"

namespace {

class Conversion : public ControlTest {
  protected:
    // The undo stream names who refers to a controller.
    ~Conversion() override { GetCOREInterface()->FlushUndoBuffer(); }

    // A node with one of our controllers on it.
    static INode* NewNode() {
        INode* const node = GetCOREInterface()->CreateObjectNode(headless::NewSphere(1, 8));
        node->SetTMController(new OpenTransform);
        return node;
    }
    static OpenTransform* ControlOf(INode* node) {
        return static_cast<OpenTransform*>(node->GetTMController());
    }
    static bool IsConverted(INode* node) {
        return node->GetTMController()->ClassID() == kPositionRotationScaleClassId;
    }

    // What refers to a scalar of ours.
    Watcher owner_{[] {}};
    OpenScalar* NewScalar() {
        auto* const control = new OpenScalar;
        owner_.ReplaceReference(0, control);
        return control;
    }
    Control& Owned() { return *static_cast<Control*>(owner_.target); }
};

// What nobody refers to is left alone.
TEST_F(Conversion, AllAreConvertedTheNewestFirstEachInAStepThatBringsItBackWhole) {
    Alone<OpenTransform> alone;
    INode* const nodes[] = {NewNode(), NewNode()};
    OpenTransform* const first = ControlOf(nodes[0]);
    OpenScalar* const scalar = NewScalar();
    const Matrix3 poses[] = {MovedBy(3), TurnedAboutZ(80) * MovedBy(5), TurnedAboutZ(-30)};
    for (int i = 0; i < 3; ++i)
        first->AddKey({0, 100 + i * 50, poses[i]});
    const std::uint64_t before = headless::SceneDigest();
    const char* const ownStep = "Convert to PRS controller";
    const std::vector<std::string> labels = {"Convert to Scalar controller", ownStep, ownStep};
    for (int round = 0; round < 2; ++round) {
        ConvertAllControllers();
        EXPECT_FALSE(Animating() || theHold.Holding());
        EXPECT_EQ(Owned().ClassID(), kLinearFloatClassId);
        EXPECT_TRUE(IsConverted(nodes[0]) && IsConverted(nodes[1]));
        EXPECT_EQ(host_.UndoLabels(), labels) << "the undo stream alone keeps what was converted";
    }
    for (int i = 0; i < 3; ++i)
        ExpectNear(nodes[0]->GetNodeTM(100 + i * 50), poses[i], 1e-4F);
    Control& converted = *nodes[0]->GetTMController();
    EXPECT_EQ(converted.SubAnim(0)->GetKeyTime(0), 100) << "at 0 the seed stands alone";

    ASSERT_TRUE(host_.Undo() && host_.Undo());
    EXPECT_TRUE(&Owned() == scalar && nodes[0]->GetTMController() == first);
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
    const std::tuple<Times, int, float> cases[] = {
        {{0, 200}, 2, 0.25F}, {{100, 200}, 3, 0.5F}, {{}, 0, 0.75F}};
    for (const auto& [keys, count, first] : cases) {
        OpenScalar* const control = NewScalar();
        float value = 0.75F;
        if (keys.empty()) control->SetValue(50, &value, 1, CTRL_ABSOLUTE);
        AnimateOn();
        for (const TimeValue t : keys) {
            value = static_cast<float>(t + 100) / 400;
            control->SetValue(t, &value, 1, CTRL_ABSOLUTE);
        }
        AnimateOff();
        ConvertToScalarController(control);
        EXPECT_EQ(Owned().ClassID(), kLinearFloatClassId);
        EXPECT_EQ(Owned().NumKeys(), count);
        for (const TimeValue t : {0, keys.empty() ? 50 : keys[0]})
            EXPECT_EQ(ValueAt(Owned(), t), first);
        EXPECT_EQ(ValueAt(Owned(), 200), 0.75F);
    }
}

TEST_F(Conversion, AWalkOverTheLiveOnesBearsTheirDestruction) {
    OpenScalar* controls[4];
    for (OpenScalar*& control : controls)
        control = new OpenScalar;
    std::vector<ScalarControl*> visited;
    const auto visit = [&](ScalarControl& control) {
        visited.push_back(&control);
        if (&control == controls[3]) controls[2]->DeleteThis();
        control.DeleteThis();
    };
    for (int round = 0; round < 2; ++round)
        ScalarControl::liveInstances.ForEachFromLast(visit);
    EXPECT_EQ(visited, (std::vector<ScalarControl*>{controls[3], controls[1], controls[0]}));
}

TEST_F(Conversion, TheButtonOfAPageConvertsItsControllerOnce) {
    INode* const node = NewNode();
    host_.Select({node->GetName()});
    host_.SetTaskMode(TASK_MODE_MOTION);
    EXPECT_TRUE(host_.PressButton(ConvertButton));
    EXPECT_TRUE(IsConverted(node));
    // The panel was built anew, and shows the host's controller.
    EXPECT_EQ(GetCOREInterface()->GetCommandPanelTaskMode(), TASK_MODE_MOTION);
    EXPECT_FALSE(host_.PressButton(ConvertButton));

    auto* const control = new OpenTransform;
    control->BeginEditParams(GetCOREInterface(), 0, nullptr);
    control->DeleteThis();
    EXPECT_TRUE(host_.PressButton(ConvertButton)) << "for nobody any more";

    INode* const other = NewNode();
    const HWND page =
        CreateWindowExA(0, "STATIC", "", 0, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr);
    const auto stored = reinterpret_cast<LPARAM>(static_cast<TransformControl*>(ControlOf(other)));
    EXPECT_EQ(ConvertPanelDlgProc(page, WM_INITDIALOG, 0, stored), 1);
    EXPECT_EQ(ConvertPanelDlgProc(page, WM_DESTROY, 0, 0), 0);
    const WPARAM presses[] = {ConvertButton + 1, ConvertButton, ConvertButton};
    for (const WPARAM button : presses) {
        EXPECT_EQ(ConvertPanelDlgProc(page, WM_COMMAND, button, 0), 1);
        EXPECT_EQ(IsConverted(other), button == ConvertButton);
    }
    DestroyWindow(page);
}

}  // namespace
