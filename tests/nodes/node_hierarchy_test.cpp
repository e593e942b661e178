#include "tests/nodes/node_test.h"

namespace {

class NodeHierarchy : public NodeTest {
  protected:
    Node* const hip = Helper("Hip");
    Node* const knee = Helper("Knee", hip);
};

TEST_F(NodeHierarchy, IsWalkedThroughSnapshotNodes) {
    const auto stranger = NodeOn(CreateNewTriObject());
    stranger->SetName("Box01");
    stranger->SetParent(hip);
    EXPECT_EQ(hip->GetChildCount(), 2);
    TVL::CNode* const child = hip->GetChild(0);
    TVL::CNode* const parent = child->GetParent();
    TVL::CNode* const strange = hip->GetChild(1);
    EXPECT_EQ(child->GetNodeName(), "Knee");  // the real node's
    EXPECT_EQ(Core(parent)->GetName(), "Rig_Hip");
    EXPECT_EQ(strange->GetNodeName(), "Box01");  // the host's
    EXPECT_EQ(parent->GetParent(), nullptr);
    EXPECT_TRUE(child->IsSnapshot() && !knee->IsSnapshot());
    EXPECT_EQ(knee->HandleExtension(TVL::kIsSameNode, child), 1);
    EXPECT_EQ(hip->HandleExtension(TVL::kIsSameNode, child), 0);
    EXPECT_EQ(hip->HandleExtension(TVL::kIsSameNode, nullptr), 0);
    for (TVL::CNode* handle : {child, parent, strange, static_cast<TVL::CNode*>(nullptr)})
        hip->ReleaseNode(handle);
    for (const int index : {-1, 2, 1000})
        EXPECT_EQ(hip->GetChild(index), nullptr);
    EXPECT_EQ(hip->ListExtensions(), (std::vector<int>{10, 11, 17, 37, 31}));
    EXPECT_EQ(hip->HandleExtension(12345, nullptr), 0);
    EXPECT_EQ(TimesTraced("3ds max node: Caught unhandled extension: 12345"), 1U);

    hip->Hide();
    EXPECT_FALSE(hip->IsVisible());
    hip->Show();
    EXPECT_TRUE(hip->IsVisible());
    DeleteInHost("Rig_Hip");
    EXPECT_FALSE(hip->IsVisible() || hip->GetChildCount() > 0 || hip->GetChild(0));
    EXPECT_FALSE(hip->AcquireSnapshot(0) || hip->AcquireHelperSnapshot() || hip->Clone(true));
}

TEST_F(NodeHierarchy, ChangesParentsKeepingTheWorldTransform) {
    Node* const foot = Helper("Foot");
    Host("Rig_Hip")->SetNodeTM(0, MovedBy(10));
    Host("Rig_Foot")->SetNodeTM(0, MovedBy(Point3(0, 7, 0)));
    const std::size_t before = Trace().size();
    foot->SetParent(knee);
    Names trace = TracedLines(before);
    ASSERT_EQ(trace.size(), 4U);
    trace[2].resize(trace[2].find(" 0x"));
    EXPECT_EQ(trace, (Names{"(NOTICE): \tSetting parent for Foot", "(NOTICE): \tnew parent: Knee",
                            "(NOTICE): \tsetting parent...:", "(NOTICE): \tparent set"}));
    EXPECT_EQ(Host("Rig_Foot")->GetNodeTM(0).GetTrans(), Point3(0, 7, 0));
    hip->SetParent(foot);  // below itself: stays
    EXPECT_EQ(Scene(), "Rig_Hip(Rig_Knee(Rig_Foot))");
    foot->SetParent(nullptr);
    EXPECT_EQ(Scene(), "Rig_Hip(Rig_Knee) Rig_Foot");
    EXPECT_EQ(Host("Rig_Foot")->GetNodeTM(0).GetTrans(), Point3(0, 7, 0));
    DeleteInHost("Rig_Knee");
    foot->SetParent(knee);
    EXPECT_EQ(TimesTraced("Invalid parent node"), 1U);
}

TEST_F(NodeHierarchy, IsCopiedWithOrWithoutWhatStandsBelowUnderNamesThatAreCut) {
    const auto cloned = [&](TVL::CoreNode* parent) {
        return reinterpret_cast<Node*>(hip->HandleExtension(TVL::kCloneBelow, parent));
    };
    const char* name = "Alone";
    for (Node* copy : {hip->Clone(false), hip->Clone(true), cloned(nullptr), cloned(knee)}) {
        EXPECT_TRUE(copy->IsSnapshot());
        copy->SetName(name);
        copy->Destroy();
        name = "Copy";
    }
    EXPECT_EQ(Scene(),
              "Rig_Hip(Rig_Knee(Copy(Rig_Knee03))) Alone Copy(Rig_Knee01) Copy(Rig_Knee02)");

    // At 1,023 bytes, between characters.
    const std::string ascii(2000, 'a');
    const std::pair<std::string, std::size_t> cases[] = {
        {ascii, 1023},
        {ascii.substr(0, 1022) + "\xC3\xA9", 1022},  // the character would end at byte 1024
        {ascii.substr(0, 1021) + "\xC3\xA9", 1023},
        {std::string(2000, '\x80'), 1023}};  // no UTF-8 at all
    for (const auto& [given, length] : cases) {
        hip->SetName(given);
        EXPECT_EQ(hip->GetName(), given.substr(0, length));
    }
    EXPECT_EQ(Find("Hip"), hip);
    EXPECT_EQ(Helper(ascii)->GetName(), "Rig_" + ascii.substr(0, 1019));
}

TEST_F(NodeHierarchy, IsSelectedOneByOneInStepsOrTogetherInABatchWithoutAny) {
    hip->Select();
    knee->Select();
    EXPECT_EQ(Scene(), "Rig_Hip(Rig_Knee*)");
    InGroup("Pick", [&] { hip->Select(); });
    EXPECT_EQ(Scene(), "Rig_Hip*(Rig_Knee)");
    const Names labels = world.Session().UndoLabels();
    EXPECT_EQ(labels, (Names{"Pick", "Select", "Select"}));

    const auto batch = [&](int extension) { return knee->HandleExtension(extension, nullptr); };
    EXPECT_EQ(batch(TVL::kEndSelection), 0);
    EXPECT_EQ(batch(TVL::kBeginSelection), 1);
    EXPECT_EQ(Scene(), "Rig_Hip(Rig_Knee)");
    hip->Select();
    EXPECT_EQ(batch(TVL::kBeginSelection), 0);
    knee->Select();
    EXPECT_EQ(Scene(), "Rig_Hip*(Rig_Knee*)");
    EXPECT_EQ(batch(TVL::kEndSelection), 1);
    EXPECT_EQ(world.Session().UndoLabels(), labels);
}

}  // namespace
