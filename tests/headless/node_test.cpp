#include "headless/breaches.h"
#include "tests/headless/host_world.h"

namespace {

using NodeTest = HostWorld;

TEST_F(NodeTest, EveryNewNodeHasAHandleAndANameOfItsOwn) {
    Add("Mesh02");  // a taken name is passed over
    INode* first = host.CreateObjectNode(CreateNewTriObject());
    INode* second = host.CreateObjectNode(CreateNewTriObject());
    EXPECT_STREQ(first->GetName(), "Mesh03");
    EXPECT_STREQ(second->GetName(), "Mesh04");
    EXPECT_NE(first->GetHandle(), second->GetHandle());
    EXPECT_EQ(host.GetINodeByHandle(second->GetHandle()), second);

    const auto gone = second->GetHandle();
    host.DeleteNode(second);
    INode* third = host.CreateObjectNode(CreateNewTriObject());
    EXPECT_NE(third->GetHandle(), gone);
    EXPECT_EQ(host.GetINodeByHandle(gone), nullptr);
    EXPECT_EQ(host.GetINodeByHandle(0), nullptr);
}

TEST_F(NodeTest, AttachingKeepsTheWorldTransformOrTheLocalOne) {
    INode* parent = Add("parent");
    Place(parent, {10, 0, 0});
    INode* kept = Add("kept");
    INode* moved = Add("moved");
    Place(kept, {1, 1, 1});
    Place(moved, {1, 1, 1});
    parent->AttachChild(kept, 1);
    parent->AttachChild(moved, 0);
    EXPECT_EQ(Where(kept), Point3(1, 1, 1));
    EXPECT_EQ(Where(moved), Point3(11, 1, 1));
    EXPECT_EQ(moved->GetObjectTM(0).GetTrans(), Point3(11, 1, 1));
    EXPECT_EQ(parent->NumberOfChildren(), 2);
    EXPECT_EQ(parent->GetChildNode(1), moved);
    EXPECT_EQ(parent->GetChildNode(2), nullptr);
    EXPECT_EQ(parent->GetChildNode(-1), nullptr);

    kept->Detach(0, 1);
    EXPECT_TRUE(kept->GetParentNode()->IsRootNode());
    EXPECT_EQ(Where(kept), Point3(1, 1, 1));
}

TEST_F(NodeTest, ANodeNeverComesToHangBelowItself) {
    INode* top = Add("top");
    INode* below = Add("below", top);
    below->AttachChild(top);
    top->AttachChild(top);
    const std::string breach = "AttachChild: the node would hang below itself";
    EXPECT_EQ(headless::TakeBreachLines(), (std::vector{breach, breach}));
    below->AttachChild(host.GetRootNode());
    EXPECT_EQ(headless::TakeBreaches().size(), 1U);
    EXPECT_TRUE(top->GetParentNode()->IsRootNode());
    EXPECT_EQ(below->GetParentNode(), top);
    EXPECT_EQ(host.GetRootNode()->GetParentNode(), nullptr);
}

TEST_F(NodeTest, ChildrenOfADeletedNodeMoveUpAndStayWhereTheyAre) {
    INode* top = Add("top");
    INode* middle = Add("middle", top);
    INode* below = Add("below", middle);
    Place(top, {1, 0, 0});
    Place(middle, {2, 0, 0});
    Place(below, {3, 0, 0});
    host.DeleteNode(middle);
    EXPECT_EQ(below->GetParentNode(), top);
    EXPECT_EQ(Where(below), Point3(3, 0, 0));
}

TEST_F(NodeTest, UndoingADeletionRevivesAddressHandleAndPlaceAmongTheSiblings) {
    Add("first");
    INode* middle = Add("middle");
    Add("last");
    INode* child = Add("child", middle);
    Place(middle, {4, 0, 0});
    middle->SetUserPropString("TVL_tag", "a tag");
    const auto handle = middle->GetHandle();
    Control* controller = middle->GetTMController();
    const auto before = headless::SceneDigest();

    Step([&] { host.DeleteNode(middle); });
    EXPECT_EQ(host.GetINodeByHandle(handle), nullptr);
    ASSERT_TRUE(session.Undo());
    ASSERT_EQ(host.GetINodeByHandle(handle), middle);
    EXPECT_EQ(host.GetRootNode()->GetChildNode(1), middle);
    EXPECT_EQ(child->GetParentNode(), middle);
    EXPECT_EQ(middle->GetTMController(), controller);
    EXPECT_EQ(headless::SceneDigest(), before);

    ASSERT_TRUE(session.Redo());
    EXPECT_EQ(host.GetINodeByHandle(handle), nullptr);
    EXPECT_TRUE(child->GetParentNode()->IsRootNode());
}

TEST_F(NodeTest, StepsAreUndoneThoughTheSceneChangedWithoutARecordInBetween) {
    INode* made = nullptr;
    Step([&] { made = Add("made"); });
    INode* stranger = Add("stranger", made);
    ASSERT_TRUE(session.Undo());
    EXPECT_TRUE(stranger->GetParentNode()->IsRootNode());
    ASSERT_TRUE(session.Redo());
    EXPECT_EQ(headless::FindNode("made"), made);

    Step([&] { made->Hide(true); });
    host.DeleteNode(made);
    ASSERT_TRUE(session.Undo());
    ASSERT_TRUE(session.Undo());
    EXPECT_EQ(headless::Nodes().size(), 1U);
    EXPECT_TRUE(session.Redo());
}

TEST_F(NodeTest, UserPropertiesAreTextsOfAnyKind) {
    INode* node = Add("node");
    HostString value;
    EXPECT_FALSE(node->UserPropExists("TVL_tag"));
    EXPECT_FALSE(node->GetUserPropString("TVL_tag", value));
    const HostString text("<a b=\"c\">\n\0</a>", 15);
    Step([&] { node->SetUserPropString("TVL_tag", text); });
    ASSERT_TRUE(node->GetUserPropString("TVL_tag", value));
    EXPECT_EQ(value, text);
    session.Undo();
    EXPECT_FALSE(node->UserPropExists("TVL_tag"));
}

TEST_F(NodeTest, TheTransformPartIsTheControllerAndTakesMatrixControllersAlone) {
    INode* node = Add("node");
    ASSERT_EQ(node->NumSubs(), 1);
    EXPECT_EQ(node->SubAnimName(0), "Transform");
    EXPECT_EQ(node->SubAnim(0), node->GetTMController());
    EXPECT_EQ(node->GetTMController()->ClassID(), kPositionRotationScaleClassId);

    Control* scalar = NewFloat();
    EXPECT_FALSE(node->SetTMController(scalar));
    EXPECT_FALSE(node->SetTMController(nullptr));
    scalar->DeleteMe();
    Control* matrix = NewTransform();
    EXPECT_TRUE(node->AssignController(matrix, 0));
    EXPECT_EQ(node->GetTMController(), matrix);
}

TEST_F(NodeTest, ThousandsOfNodesInOneChainAreWalkedWithoutRecursion) {
    constexpr int kDepth = 3000;
    INode* last = Add("top");
    for (int i = 0; i < kDepth; ++i) {
        INode* next = host.CreateObjectNode(CreateNewTriObject());
        last->AttachChild(next, 0);
        last = next;
    }
    Place(headless::FindNode("top"), {0, 0, 7});
    EXPECT_EQ(Where(last), Point3(0, 0, 7));
    EXPECT_EQ(headless::Nodes().size(), kDepth + 1U);
    EXPECT_EQ(headless::Nodes().back().handle, last->GetHandle());
    EXPECT_NE(headless::SceneDigest(), 0U);
}

}  // namespace
