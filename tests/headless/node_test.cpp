#include "headless/breaches.h"
#include "tests/headless/host_world.h"

namespace {

class NodeTest : public HostWorld {
  protected:
    // The copies of `node`, in the order in which they were made.
    INodeTab Clone(INode* node, bool withBranches, const Point3& offset = {}) {
        INodeTab nodes, sources, copies;
        nodes.Append(1, &node);
        host.CloneNodes(nodes, offset, withBranches, NODE_COPY, &sources, &copies);
        EXPECT_EQ(sources.Count(), copies.Count());
        return copies;
    }
};

TEST_F(NodeTest, EveryNewNodeHasAHandleAndANameOfItsOwn) {
    Add("Mesh02");  // a taken name is passed over
    INode* first = host.CreateObjectNode(CreateNewTriObject());
    INode* second = host.CreateObjectNode(CreateNewTriObject());
    EXPECT_STREQ(first->GetName(), "Mesh03");
    EXPECT_STREQ(second->GetName(), "Mesh04");
    const auto gone = second->GetHandle();
    EXPECT_NE(first->GetHandle(), gone);
    EXPECT_EQ(host.GetINodeByHandle(gone), second);
    host.DeleteNode(second);
    EXPECT_NE(host.CreateObjectNode(CreateNewTriObject())->GetHandle(), gone);
    EXPECT_EQ(host.GetINodeByHandle(gone), nullptr);
    EXPECT_EQ(host.GetINodeByHandle(0), nullptr);
}

TEST_F(NodeTest, AttachingKeepsTheWorldTransformOrTheLocalOneAndMakesNoCircle) {
    INode* parent = Add("parent");
    Place(parent, {10, 0, 0});
    INode* kept = Add("kept");
    INode* moved = Add("moved");
    for (INode* node : {kept, moved})
        Place(node, {1, 1, 1});
    parent->AttachChild(kept, 1);
    parent->AttachChild(moved, 0);
    EXPECT_EQ(Where(kept), Point3(1, 1, 1));
    EXPECT_EQ(Where(moved), Point3(11, 1, 1));
    EXPECT_EQ(parent->GetChildNode(1), moved);
    EXPECT_EQ(parent->GetChildNode(2), nullptr);
    EXPECT_EQ(parent->GetChildNode(-1), nullptr);
    kept->AttachChild(parent);
    kept->AttachChild(kept);
    const std::string breach = "AttachChild: the node would hang below itself";
    EXPECT_EQ(headless::TakeBreachLines(), (std::vector{breach, breach}));
    EXPECT_EQ(kept->GetParentNode(), parent);
    EXPECT_TRUE(parent->GetParentNode()->IsRootNode());

    INode* below = Add("below", kept);
    Place(below, {3, 0, 0});
    host.DeleteNode(kept);
    EXPECT_EQ(below->GetParentNode(), parent);
    EXPECT_EQ(Where(below), Point3(3, 0, 0));
    below->Detach(0, 1);
    EXPECT_TRUE(below->GetParentNode()->IsRootNode());
    EXPECT_EQ(Where(below), Point3(3, 0, 0));
}

TEST_F(NodeTest, UndoingADeletionRevivesAddressHandleAndPlaceAmongTheSiblings) {
    Add("first");
    INode* middle = Add("middle");
    Add("last");
    INode* child = Add("child", middle);
    const HostString text("<a b=\"c\">\n\0</a>", 15);
    middle->SetUserPropString("TVL_tag", text);
    const auto handle = middle->GetHandle();
    Control* controller = middle->GetTMController();
    Step([&] { host.DeleteNode(middle); });
    ASSERT_TRUE(session.Undo());
    ASSERT_EQ(host.GetINodeByHandle(handle), middle);
    EXPECT_EQ(host.GetRootNode()->GetChildNode(1), middle);
    EXPECT_EQ(child->GetParentNode(), middle);
    EXPECT_EQ(middle->GetTMController(), controller);
    HostString value;
    EXPECT_TRUE(middle->GetUserPropString("TVL_tag", value));
    EXPECT_EQ(value, text);
    EXPECT_FALSE(middle->UserPropExists("TVL"));
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

    INode* parent = Add("parent");
    INode* child = Add("child", parent);
    Step([&] { host.DeleteNode(child); });
    host.DeleteNode(parent);
    ASSERT_TRUE(session.Undo());
    EXPECT_TRUE(child->GetParentNode()->IsRootNode());
    INode* other = Add("other");
    Step([&] { child->AttachChild(other, 0); });
    session.Undo();
    other->AttachChild(child, 0);
    session.Redo();
    EXPECT_TRUE(other->GetParentNode()->IsRootNode()) << "what would hang below itself";
}

TEST_F(NodeTest, TheTransformPartIsTheControllerAndTakesMatrixControllersAlone) {
    INode* node = Add("node");
    EXPECT_EQ(node->SubAnimName(0), "Transform");
    EXPECT_EQ(node->SubAnim(0), node->GetTMController());
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
    Place(last, {0, 0, 7});
    for (int i = 0; i < kDepth; ++i)
        last = Add("", last);
    EXPECT_EQ(Where(last), Point3(0, 0, 7));
    EXPECT_EQ(headless::Nodes().size(), kDepth + 1U);
    EXPECT_EQ(headless::Nodes().back().handle, last->GetHandle());
}

TEST_F(NodeTest, ABranchIsCopiedWithItsLinksAndWithThingsOfItsOwn) {
    INode* root = Add("root");
    INode* top = Add("hip07", root);
    INode* below = Add("below", top);
    Place(below, {0, 0, 5});
    top->SetUserPropString("key", "value");
    top->SetWireColor(255);
    const INodeTab copies = Clone(top, true, {1, 0, 0});
    ASSERT_EQ(copies.Count(), 2);
    INode* copy = copies[0];
    EXPECT_STREQ(copy->GetName(), "hip01");
    EXPECT_NE(copy->GetHandle(), top->GetHandle());
    EXPECT_NE(copy->GetTMController(), top->GetTMController());
    EXPECT_NE(copy->GetObjectRef(), top->GetObjectRef());
    EXPECT_EQ(copy->GetWireColor(), 255U);
    EXPECT_TRUE(copy->UserPropExists("key"));
    EXPECT_EQ(copy->GetParentNode(), root);
    EXPECT_EQ(copies[1]->GetParentNode(), copy);
    EXPECT_EQ(Where(copies[1]), Point3(1, 0, 5));
    EXPECT_EQ(Clone(top, false).Count(), 1);
    INodeTab none;
    EXPECT_FALSE(host.CloneNodes(none, {}, true, NODE_COPY, nullptr, nullptr));
}

}  // namespace
