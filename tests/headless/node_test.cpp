#include "headless/breaches.h"
#include "tests/headless/host_world.h"

namespace {

using NodeTest = HostWorld;

TEST_F(NodeTest, AttachingKeepsTheLocalTransformIfItIsToAndMakesNoCircle) {
    INode* parent = Add("parent");
    INode* child = Add("child");
    for (INode* node : {parent, child})
        Place(node, {1, 0, 0});
    parent->AttachChild(child, 0);
    EXPECT_EQ(Where(child), Point3(2, 0, 0));
    INode* below = Add("below", child);
    for (INode* node : {parent, child, below})
        below->AttachChild(node);
    const std::string breach = "AttachChild: the node would hang below itself";
    EXPECT_EQ(headless::TakeBreachLines(), (std::vector{breach, breach, breach}));
    host.DeleteNode(child);
    EXPECT_EQ(parent->GetChildNode(0), below);
    EXPECT_EQ(parent->GetChildNode(1), nullptr);
    EXPECT_EQ(parent->GetChildNode(-1), nullptr);
    EXPECT_EQ(Where(below), Point3(2, 0, 0));
}

TEST_F(NodeTest, StepsAreUndoneThoughTheSceneChangedWithoutARecordInBetween) {
    INode* made = nullptr;
    Step([&] { made = Add("made"); });
    INode* stranger = Add("stranger", made);
    ASSERT_TRUE(session.Undo());
    EXPECT_TRUE(stranger->GetParentNode()->IsRootNode());
    ASSERT_TRUE(session.Redo());
    EXPECT_EQ(headless::FindNode("made"), made) << "at its address";
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

TEST_F(NodeTest, OnlyAMatrixControllerBecomesTheTransform) {
    INode* node = Add("node");
    Control* scalar = NewFloat();
    EXPECT_FALSE(node->SetTMController(scalar));
    EXPECT_FALSE(node->SetTMController(nullptr));
    scalar->DeleteMe();
    Control* matrix = NewTransform();
    EXPECT_TRUE(node->AssignController(matrix, 0));
    EXPECT_EQ(node->GetTMController(), matrix);
}

TEST_F(NodeTest, ThousandsOfNodesInOneChainAreWalkedWithoutRecursion) {
    INode* last = Add("top");
    Place(last, {0, 0, 7});
    for (int i = 0; i < 3000; ++i)
        last = Add("", last);
    EXPECT_EQ(Where(last), Point3(0, 0, 7));
    EXPECT_EQ(headless::Nodes().back().handle, last->GetHandle());
}

TEST_F(NodeTest, ABranchIsCopiedWithItsLinksAndWithThingsOfItsOwn) {
    INode* root = Add("hip01");
    INode* top = Add("hip07", root);
    Place(Add("below", top), {0, 0, 5});
    top->SetUserPropString("key", "value");
    top->SetWireColor(255);
    INodeTab nodes, sources, copies;
    EXPECT_FALSE(host.CloneNodes(nodes, {}, true, NODE_COPY, nullptr, nullptr));
    nodes.Append(1, &top);
    host.CloneNodes(nodes, {1, 0, 0}, true, NODE_COPY, &sources, &copies);
    ASSERT_EQ(sources.Count(), 2);
    ASSERT_EQ(copies.Count(), 2);
    INode* copy = copies[0];
    EXPECT_STREQ(copy->GetName(), "hip02");
    EXPECT_NE(copy->GetTMController(), top->GetTMController());
    EXPECT_NE(copy->GetObjectRef(), top->GetObjectRef());
    EXPECT_EQ(copy->GetWireColor(), 255U);
    EXPECT_TRUE(copy->UserPropExists("key"));
    EXPECT_EQ(copy->GetParentNode(), root);
    EXPECT_EQ(copies[1]->GetParentNode(), copy);
    EXPECT_EQ(Where(copies[1]), Point3(1, 0, 5));
}

}  // namespace
