#include "tests/nodes/node_test.h"

namespace {

using NodeDeletion = NodeTest;

TEST_F(NodeDeletion, IsAtOnceOutsideAGroupAndATakenStepInOneLikeCreation) {
    InGroup("Make", [&] {
        Helper("Hip");
        Camera("Cam");
        adaptor.CreateLensNode(&rig, "Deaf", nullptr, nullptr);
    });
    Helper("Knee");
    Helper("Toe")->Delete(true);
    EXPECT_EQ(Scene(), "Rig_Hip Rig_Cam Rig_Deaf Rig_Knee");
    Node* const hip = Find("Hip");
    InGroup("Remove", [&] {
        hip->Delete(true);
        hip->Delete(true);  // not listed any more
    });
    Names hosts;
    listener.onRestored = [&](TVL::CNode* node) { hosts.push_back(Core(node)->GetName()); };

    // What comes back is listed last, and a deletion that is undone heard of before its scene node
    // is there.
    const auto undo = [&] { return world.Session().Undo(); };
    const auto redo = [&] { return world.Session().Redo(); };
    const struct {
        std::function<bool()> step;
        Names heard, listed;
        const char* scene;
    } steps[] = {
        {nullptr, {"+Hip", "+Cam", "-Hip"}, {"Cam", "Deaf", "Knee"}, "Rig_Cam Rig_Deaf Rig_Knee"},
        {undo, {"+Hip"}, {"Cam", "Deaf", "Knee", "Hip"}, "Rig_Hip Rig_Cam Rig_Deaf Rig_Knee"},
        {undo, {"-Cam", "-Hip"}, {"Knee"}, "Rig_Knee"},
        {redo,
         {"+Hip", "+Cam"},
         {"Knee", "Hip", "Cam", "Deaf"},
         "Rig_Hip Rig_Cam Rig_Deaf Rig_Knee"},
        {redo, {"-Hip"}, {"Knee", "Cam", "Deaf"}, "Rig_Cam Rig_Deaf Rig_Knee"}};
    for (const auto& [step, heard, listed, scene] : steps) {
        EXPECT_TRUE(!step || step());
        EXPECT_EQ(std::exchange(listener.heard, {}), heard);
        EXPECT_EQ(Listed(), listed);
        EXPECT_EQ(Scene(), scene);
    }
    EXPECT_EQ(hosts, (Names{"", "Mesh01", "Rig_Cam"}));  // a helper gets its name later
}

TEST_F(NodeDeletion, OfANewNodeIsForgottenWhenItsGroupIsCancelled) {
    adaptor.BeginUndoGroup("Try");
    Helper("Hip")->Delete(true);
    Helper("Knee");
    adaptor.CancelUndoGroup();
    EXPECT_EQ(Listed(), Names());
    EXPECT_EQ(Scene(), "");
    EXPECT_EQ(listener.heard, (Names{"+Hip", "-Hip", "+Knee", "-Knee", "+Hip", "-Hip"}));
}

TEST_F(NodeDeletion, ByTheUserIsLeftToTheHost) {
    Helper("Knee", Helper("Hip"));
    rig.onDeletion = [&] {
        Find("Hip")->Delete(true);
        ASSERT_NE(Host("Rig_Hip"), nullptr);
        Find("Knee")->Delete(true);
    };
    world.Session().Select({"Rig_Hip", "Rig_Knee"});
    world.Session().DeleteSelected();
    EXPECT_EQ(Listed(), Names());
    EXPECT_EQ(Scene(), "");
    ASSERT_TRUE(world.Session().Undo());
    EXPECT_EQ(Scene(), "Rig_Hip*(Rig_Knee*)");
}

TEST_F(NodeDeletion, ThroughASnapshotNodeNeedsASourceOfTheSameOwner) {
    Node* const stranger = Core(adaptor.CreateHelperNode(&other, "Anchor", nullptr, {}, nullptr));
    Node* const hip = Helper("Hip", stranger);
    Node* const knee = Helper("Knee", hip);
    Node* const fromStranger = Core(stranger->GetChild(0));
    fromStranger->Delete(true);  // of the rig, reached from the other plug-in
    EXPECT_EQ(Scene(), "Other_Anchor(Rig_Hip(Rig_Knee))");
    Core(hip->GetChild(0))->Delete(true);
    EXPECT_EQ(Scene(), "Other_Anchor(Rig_Hip)");
    EXPECT_EQ(knee->GetName(), "");

    // A source that was given back counts with the owner that it had.
    Node* const viaReleased = Core(fromStranger->GetParent());
    fromStranger->Destroy();
    viaReleased->Delete(true);  // of the other plug-in, reached from the rig's
    EXPECT_EQ(Scene(), "Other_Anchor(Rig_Hip)");
    viaReleased->Destroy();

    // Whatever has come to where it was.
    Node* const viaHip = Core(Helper("Toe", hip)->GetParent());
    Node* const again = Core(viaHip->GetChild(0));
    viaHip->Destroy();
    new CMAXNode(&other, "", nullptr, nullptr);
    again->Delete(true);
    EXPECT_EQ(Scene(), "Other_Anchor(Rig_Hip)");

    // Without an owner it always goes ahead.
    hip->Clone(false)->Delete(true);
    hip->Unclaim();
    EXPECT_EQ(Listed(), (Names{"Knee", "Toe"}));
    EXPECT_TRUE(hip->IsSnapshot());
    hip->Delete(true);
    EXPECT_EQ(Scene(), "Other_Anchor");
}

}  // namespace
