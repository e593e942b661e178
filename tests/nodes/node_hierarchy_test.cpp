#include "host/interface.h"
#include "tests/nodes/node_test.h"
#include "tvl/ids.h"

namespace {

class NodeHierarchy : public NodeTest {
  protected:
    // The host name of the node that `found` is a handle on; the handle is given back.
    static std::string NameAndRelease(TVL::CNode* found) {
        if (!found) return "";
        const std::string name = Core(found)->GetName();
        Core(found)->Destroy();
        return name;
    }
};

TEST_F(NodeHierarchy, IsWalkedThroughSnapshotNodes) {
    Node* const hip = Helper("Hip");
    Node* const knee = Helper("Knee", hip);
    EXPECT_EQ(hip->GetParent(), nullptr);
    EXPECT_EQ(hip->GetChildCount(), 1);

    TVL::CNode* const child = hip->GetChild(0);
    ASSERT_NE(child, nullptr);
    EXPECT_TRUE(child->IsSnapshot());
    EXPECT_FALSE(knee->IsSnapshot());
    EXPECT_EQ(child->GetNodeName(), "Knee");  // the real node's
    EXPECT_TRUE(Core(child)->IsSameNode(knee));
    EXPECT_EQ(knee->HandleExtension(TVL::kIsSameNode, child), 1);
    EXPECT_EQ(hip->HandleExtension(TVL::kIsSameNode, child), 0);
    EXPECT_EQ(hip->HandleExtension(TVL::kIsSameNode, nullptr), 0);
    EXPECT_EQ(NameAndRelease(child->GetParent()), "Rig_Hip");
    hip->ReleaseNode(child);
    hip->ReleaseNode(nullptr);

    for (const int index : {-1, 1, 1000})
        EXPECT_EQ(hip->GetChild(index), nullptr);

    INode* const stranger = GetCOREInterface()->CreateObjectNode(CreateNewTriObject());
    stranger->SetName("Box01");
    Host("Rig_Hip")->AttachChild(stranger);
    TVL::CNode* const strange = hip->GetChild(1);
    EXPECT_EQ(strange->GetNodeName(), "Box01");  // the host's
    hip->ReleaseNode(strange);
}

TEST_F(NodeHierarchy, ChangesParentsKeepingTheWorldTransform) {
    Node* const hip = Helper("Hip");
    Node* const knee = Helper("Knee");
    Host("Rig_Hip")->SetNodeTM(0, MovedBy(10));
    Host("Rig_Knee")->SetNodeTM(0, MovedBy(Point3(0, 7, 0)));
    knee->SetParent(hip);
    EXPECT_EQ(NameAndRelease(knee->GetParent()), "Rig_Hip");
    EXPECT_EQ(Host("Rig_Knee")->GetNodeTM(0).GetTrans(), Point3(0, 7, 0));
    EXPECT_EQ(TimesTraced("Setting parent for Knee"), 1U);
    EXPECT_EQ(TimesTraced("new parent: Hip"), 1U);
    EXPECT_EQ(TimesTraced("parent set"), 1U);

    hip->SetParent(knee);  // below itself: stays
    EXPECT_EQ(hip->GetParent(), nullptr);

    knee->SetParent(nullptr);
    EXPECT_EQ(knee->GetParent(), nullptr);
    EXPECT_EQ(Host("Rig_Knee")->GetNodeTM(0).GetTrans(), Point3(0, 7, 0));

    GetCOREInterface()->DeleteNode(Host("Rig_Hip"));
    knee->SetParent(hip);
    EXPECT_EQ(TimesTraced("Invalid parent node"), 1U);
    EXPECT_EQ(knee->GetParent(), nullptr);
}

TEST_F(NodeHierarchy, IsCopiedWithOrWithoutWhatStandsBelow) {
    Node* const hip = Helper("Hip");
    Helper("Knee", hip);
    const auto copied = [&](bool withHierarchy) {
        Node* const copy = hip->Clone(withHierarchy);
        EXPECT_TRUE(copy->IsSnapshot());
        EXPECT_FALSE(copy->IsSameNode(hip));
        const int children = copy->GetChildCount();
        copy->Destroy();
        return children;
    };
    EXPECT_EQ(copied(false), 0);
    EXPECT_EQ(copied(true), 1);

    Node* const anchor = Helper("Anchor");
    auto* const below = reinterpret_cast<Node*>(hip->HandleExtension(TVL::kCloneBelow, anchor));
    ASSERT_NE(below, nullptr);
    EXPECT_EQ(NameAndRelease(below->GetParent()), "Rig_Anchor");
    below->Destroy();
    auto* const nowhere = reinterpret_cast<Node*>(hip->HandleExtension(TVL::kCloneBelow, nullptr));
    EXPECT_EQ(nowhere->GetParent(), nullptr);
    nowhere->Destroy();
}

TEST_F(NodeHierarchy, ShowsHidesAndNamesTheHostNode) {
    Node* const hip = Helper("Hip");
    EXPECT_TRUE(hip->IsVisible());
    hip->Hide();
    EXPECT_FALSE(hip->IsVisible());
    hip->Show();
    EXPECT_TRUE(hip->IsVisible());

    hip->SetName("Pelvis");
    EXPECT_EQ(hip->GetName(), "Pelvis");
    EXPECT_EQ(hip->GetNodeName(), "Hip");
    EXPECT_EQ(Find("Hip"), hip);
}

TEST_F(NodeHierarchy, CutsHostNamesAt1023BytesBetweenCharacters) {
    Node* const hip = Helper("Hip");
    const std::string ascii(2000, 'a');
    hip->SetName(ascii);
    EXPECT_EQ(hip->GetName(), ascii.substr(0, 1023));
    hip->SetName(std::string(1022, 'a') + "\xC3\xA9");  // the character would end at byte 1024
    EXPECT_EQ(hip->GetName(), std::string(1022, 'a'));
    hip->SetName(std::string(1021, 'a') + "\xC3\xA9");
    EXPECT_EQ(hip->GetName(), std::string(1021, 'a') + "\xC3\xA9");
    hip->SetName(std::string(2000, '\x80'));  // no UTF-8 at all
    EXPECT_EQ(hip->GetName().size(), 1023U);
    EXPECT_EQ(Core(adaptor.CreateHelperNode(&rig, ascii, nullptr, {}, nullptr))->GetName().size(),
              1023U);
}

TEST_F(NodeHierarchy, AnnouncesItsExtensionsButForOne) {
    Node* const hip = Helper("Hip");
    EXPECT_EQ(hip->ListExtensions(), (std::vector<int>{10, 11, 17, 37, 31}));
    EXPECT_FALSE(hip->HasExtension(57));
    EXPECT_EQ(hip->HandleExtension(12345, nullptr), 0);
    EXPECT_EQ(TimesTraced("3ds max node: Caught unhandled extension: 12345"), 1U);
}

TEST_F(NodeHierarchy, AnswersNothingOnceTheHostNodeIsGone) {
    Node* const hip = Helper("Hip");
    Node* const same = Core(Helper("Knee", hip)->GetParent());
    GetCOREInterface()->DeleteNode(Host("Rig_Hip"));
    EXPECT_EQ(hip->GetName(), "");
    EXPECT_FALSE(hip->IsVisible());
    EXPECT_EQ(hip->GetParent(), nullptr);
    EXPECT_EQ(hip->GetChildCount(), 0);
    EXPECT_EQ(hip->GetChild(0), nullptr);
    EXPECT_EQ(hip->AcquireSnapshot(0), nullptr);
    EXPECT_EQ(hip->AcquireHelperSnapshot(), nullptr);
    EXPECT_EQ(hip->Clone(true), nullptr);
    EXPECT_EQ(hip->HandleExtension(TVL::kCloneBelow, nullptr), 0);
    EXPECT_FALSE(hip->IsSameNode(same));
    hip->Select();
    hip->SetParent(nullptr);
    hip->DeleteAnimationFrom(0);
    hip->Delete(true);
    same->Destroy();
}

}  // namespace
