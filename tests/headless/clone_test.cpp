#include "tests/headless/host_world.h"

namespace {

class CloneTest : public HostWorld {
  protected:
    // The copies of `node`, in the order in which they were made.
    INodeTab Clone(INode* node, bool withBranches, const Point3& offset = {}) {
        INodeTab nodes;
        nodes.Append(1, &node);
        INodeTab sources;
        INodeTab copies;
        host.CloneNodes(nodes, offset, withBranches, NODE_COPY, &sources, &copies);
        EXPECT_EQ(sources.Count(), copies.Count());
        return copies;
    }
};

TEST_F(CloneTest, ACopyHasControllerObjectAndPropertiesOfItsOwn) {
    INode* node = Add("hip07");
    Place(node, {1, 2, 3});
    node->SetUserPropString("key", "value");
    node->SetWireColor(255);
    const INodeTab copies = Clone(node, false);
    ASSERT_EQ(copies.Count(), 1);
    INode* copy = copies[0];
    EXPECT_STREQ(copy->GetName(), "hip01");
    EXPECT_NE(copy->GetHandle(), node->GetHandle());
    EXPECT_NE(copy->GetTMController(), node->GetTMController());
    EXPECT_NE(copy->GetObjectRef(), node->GetObjectRef());
    EXPECT_EQ(copy->GetWireColor(), 255U);
    HostString value;
    EXPECT_TRUE(copy->GetUserPropString("key", value));
    Place(node, {9, 9, 9});
    EXPECT_EQ(Where(copy), Point3(1, 2, 3));
}

TEST_F(CloneTest, ABranchIsCopiedWithItsLinks) {
    INode* root = Add("root");
    INode* top = Add("top", root);
    INode* below = Add("below", top);
    Place(below, {0, 0, 5});
    const INodeTab copies = Clone(top, true, {1, 0, 0});
    ASSERT_EQ(copies.Count(), 2);
    EXPECT_EQ(copies[0]->GetParentNode(), root);
    EXPECT_EQ(copies[1]->GetParentNode(), copies[0]);
    EXPECT_EQ(Where(copies[1]), Point3(1, 0, 5));
    EXPECT_EQ(Where(below), Point3(0, 0, 5));
    INodeTab none;
    EXPECT_FALSE(host.CloneNodes(none, {}, true, NODE_COPY, nullptr, nullptr));
}

}  // namespace
