#include "tests/headless/host_world.h"

namespace {

using NodeTest = HostWorld;

TEST_F(NodeTest, NamesAreNewAndAttachingKeepsTheLocalTransformIfItIsToAndMakesNoCircle) {
    INode* parent = Add("parent");
    INode* child = Add("child");
    Place(parent, {1, 0, 0});
    Place(child, {1, 0, 0});
    parent->AttachChild(child, 0);
    EXPECT_EQ(Where(child), Point3(2, 0, 0));
    INode* below = Add("below", child);
    below->AttachChild(parent);
    EXPECT_EQ(headless::TakeBreachLines(), Lines{"AttachChild: the node would hang below itself"});
    child->SetName("Mesh04");
    EXPECT_STREQ(host.CreateObjectNode(CreateNewTriObject())->GetName(), "Mesh05");
    const std::uint32_t handle = child->GetHandle();
    EXPECT_EQ(host.GetINodeByHandle(handle), child);
    host.DeleteNode(child);
    EXPECT_EQ(host.GetINodeByHandle(handle), nullptr);
    EXPECT_EQ(parent->GetChildNode(0), below);
    EXPECT_FALSE(parent->GetChildNode(1) || parent->GetChildNode(-1));
    EXPECT_EQ(Where(below), Point3(2, 0, 0));
}

TEST_F(NodeTest, StepsAreUndoneThoughTheSceneChangedWithoutARecordInBetween) {
    INode* made = nullptr;
    Step([&] { made = Add("made"); });
    INode* stranger = Add("stranger", made);
    session.Undo();
    EXPECT_TRUE(stranger->GetParentNode()->IsRootNode());
    session.Redo();
    EXPECT_EQ(headless::FindNode("made"), made) << "at its address";
    host.DeleteNode(made);
    EXPECT_TRUE(session.Undo() && session.Redo());
    INode* parent = Add("parent");
    INode* child = Add("child", parent);
    Step([&] { host.DeleteNode(child); });
    host.DeleteNode(parent);
    session.Undo();
    EXPECT_TRUE(child->GetParentNode()->IsRootNode());
    INode* other = Add("other");
    Step([&] { child->AttachChild(other, 0); });
    session.Undo();
    other->AttachChild(child, 0);
    session.Redo();
    EXPECT_TRUE(other->GetParentNode()->IsRootNode()) << "what would hang below itself";
}

TEST_F(NodeTest, TheDigestSeesWhatTellsTwoScenesApart) {
    INode* node = Add("node");
    INode* other = Add("other");
    const std::function<void()> changes[] = {
        [&] { node->SetName("another"); },
        [&] { node->AttachChild(other, 0); },
        [&] { node->Hide(true); },
        [&] { node->SetWireColor(1); },
        [&] { node->SetUserPropString("a", "bc"); },
        [&] { host.SelectNode(node); },
        [&] { Place(node, Point3(1, 0, 0)); },
        [&] { static_cast<TriObject*>(node->GetObjectRef())->GetMesh().setNumVerts(1); }};
    std::set<std::uint64_t> seen{headless::SceneDigest()};
    for (const auto& change : changes) {
        change();
        EXPECT_TRUE(seen.insert(headless::SceneDigest()).second) << &change - changes;
    }
}

TEST_F(NodeTest, OnlyAMatrixControllerIsTakenAndAdaptedOnlyIfUndoCanBringItBack) {
    struct Adapted final : Control {  // holds nothing and cannot be copied
        SClass_ID SuperClassID() override { return CTRL_MATRIX3_CLASS_ID; }
        Class_ID ClassID() override { return {77, 0}; }
        void DeleteThis() override { delete this; }
        void GetValue(TimeValue, void*, Interval&, GetSetMethod) override {}
        void SetValue(TimeValue, void*, int, GetSetMethod) override {}
        int ChangeParents(TimeValue, const Matrix3&, const Matrix3&, const Matrix3&) override {
            return ++changes;
        }
        int changes = 0;
    };
    INode* const parent = Add("parent");
    INode* const node = Add("node");
    Control* scalar = NewFloat();
    EXPECT_FALSE(node->SetTMController(scalar) || node->SetTMController(nullptr));
    scalar->DeleteMe();
    auto* const control = new Adapted;
    EXPECT_TRUE(node->AssignController(control, 0));
    Step([&] { parent->AttachChild(node); });
    session.Undo();
    EXPECT_EQ(control->changes, 0) << "it could not be copied";
    host.FlushUndoBuffer();
    parent->AttachChild(node);
    EXPECT_EQ(control->changes, 1);
}

// Whoever hears of it may end the hold that it is to be part of, and may free what is announced.
TEST_F(NodeTest, TheUsersDeletionCanBeUndoneWhateverBecomesOfTheHoldMeanwhile) {
    const auto accept = [] { theHold.Accept("guest"); };
    const auto cancel = [] { theHold.Cancel(); };
    const auto replace = [] { theHold.Accept("guest"), theHold.Begin(); };
    const auto renew = [this] { session.NewScene(); };
    // Whether a guest holds, who has just made a node, which is selected, too; the last step's
    // label, and how many nodes go, and come back.
    const std::tuple<bool, std::function<void()>, std::string, std::size_t> rows[] = {
        {false, [] {}, "Delete", 1},   {false, accept, "Delete", 1}, {false, cancel, "Delete", 1},
        {false, replace, "Delete", 1}, {true, accept, "Delete", 2},  {true, cancel, "Delete", 1},
        {true, replace, "guest", 2},   {true, renew, "", 0}};
    for (const auto& [isHeld, act, label, undone] : rows) {
        session.Reset();
        Add("picked");
        if (isHeld) theHold.Begin();
        if (isHeld) Add("new");
        session.Select({"picked", "new", "nobody"});
        const auto hear = [this, does = act](const NotifyInfo&) {
            does();
            Add("other");
        };
        const OnNotification onDeletion(NOTIFY_SEL_NODES_PRE_DELETE, hear);
        EXPECT_EQ(session.DeleteSelected(), undone);
        if (theHold.Holding()) theHold.Accept("guest");
        const Lines labels = session.UndoLabels();
        EXPECT_EQ(labels.empty() ? "" : labels.front(), label);
        session.Undo();
        const auto isBack = [](const char* name) { return headless::FindNode(name) ? 1U : 0U; };
        EXPECT_EQ(isBack("picked") + isBack("new"), undone);
    }
}

TEST_F(NodeTest, OneThatHasGoneIsToldFromOneThatIsThereByEveryCall) {
    INode* gone = nullptr;
    Step([&] { gone = Add("gone"); });
    session.Undo();
    INode* here = Add("here");
    INodeTab table;
    table.Append(1, &gone);
    host.DeleteNode(nullptr);
    for (INode* node : {gone, host.GetRootNode()})
        host.DeleteNode(node);
    host.SelectNodeTab(table, 1);
    host.CloneNodes(table, {}, false, NODE_COPY, nullptr, nullptr);
    here->AttachChild(gone);
    gone->AttachChild(here);
    gone->GetNodeTM(0);
    EXPECT_FALSE(table[1]);
    const std::string isGone = ": the node is not in the scene";
    EXPECT_EQ(headless::TakeBreachLines(),
              (Lines{"DeleteNode" + isGone, "DeleteNode" + isGone, "SelectNodeTab" + isGone,
                     "CloneNodes" + isGone, "AttachChild" + isGone, "AttachChild" + isGone,
                     "GetNodeTM" + isGone, "Tab::operator[]: the table has no such entry"}));
    EXPECT_EQ(headless::Nodes().size(), 1U);
    EXPECT_TRUE(here->GetParentNode()->IsRootNode() && here->Selected() == 0);
}

}  // namespace
