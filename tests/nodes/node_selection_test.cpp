#include "tests/nodes/node_test.h"
#include "tvl/ids.h"

namespace {

class NodeSelection : public NodeTest {
  protected:
    Node* hip = Helper("Hip");
    Node* knee = Helper("Knee");
    using Names = std::vector<std::string>;
};

TEST_F(NodeSelection, ReplacesTheOldOneInAStepOfItsOwnOrOfTheGroup) {
    hip->Select();
    knee->Select();
    EXPECT_EQ(Selected(), (Names{"Rig_Knee"}));
    InGroup("Pick", [&] { hip->Select(); });
    EXPECT_EQ(world.Session().UndoLabels(), (Names{"Pick", "Select", "Select"}));
    ASSERT_TRUE(world.Session().Undo());
    ASSERT_TRUE(world.Session().Undo());
    EXPECT_EQ(Selected(), (Names{"Rig_Hip"}));
}

TEST_F(NodeSelection, AddsUpInABatchWithoutUndoSteps) {
    hip->Select();
    const auto labels = world.Session().UndoLabels();
    EXPECT_EQ(knee->HandleExtension(TVL::kEndSelection, nullptr), 0);
    EXPECT_EQ(knee->HandleExtension(TVL::kBeginSelection, nullptr), 1);
    EXPECT_TRUE(Selected().empty());
    hip->Select();
    EXPECT_EQ(knee->HandleExtension(TVL::kBeginSelection, nullptr), 0);
    knee->Select();
    EXPECT_EQ(Selected(), (Names{"Rig_Hip", "Rig_Knee"}));
    EXPECT_EQ(hip->HandleExtension(TVL::kEndSelection, nullptr), 1);
    EXPECT_EQ(world.Session().UndoLabels(), labels);
}

}  // namespace
