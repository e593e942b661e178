#include <string>

#include "nodes/max_node.h"
#include "tests/scene_state/state_test.h"
#include "tests/support/allocations.h"

namespace {

using Claiming = StateTest;

std::size_t NodesAlive() {
    std::size_t count = 0;
    CMAXNode::liveInstances.ForEachFromLast([&](const CMAXNode&) { ++count; });
    return count;
}

// Which of several is taken, the search by going through everything tells.
TEST_F(Claiming, PassesOverWhatIsGoneOrHasAnotherTagByNow) {
    SceneNode("First", Tag("Rig", "Hip"));
    INode* const last = SceneNode("Last", Tag("Rig", "Hip"));
    INode* const changed = SceneNode("Changed", Tag("Rig", "Foot"));
    const Texts wanted = {"Hip", "Foot"};
    EXPECT_EQ(Claimed("Rig", wanted), (Texts{"First", "Changed"}));
    changed->SetUserPropString("TVL_tag", "");
    EXPECT_EQ(Claimed("Rig", wanted), (Texts{"First", "-"}));

    std::size_t left = 0;
    Texts lastGone;
    world.Core().onCall = [&](const std::string&) {
        const std::vector<TVL::CNode*> nodes = adaptor.ClaimNodes("Rig", NodeInfo(wanted));
        left = NodesAlive();
        EXPECT_EQ(Released(nodes), (Texts{"Last", "-"}));
        GetCOREInterface()->DeleteNode(last);
        lastGone = Claimed("Rig", wanted);
    };
    GatherSceneState();
    world.Core().onCall = nullptr;
    EXPECT_EQ(left, 1U);
    EXPECT_EQ(lastGone, (Texts{"First", "-"}));

    // The deleted node is neither reported nor in the way.
    ASSERT_EQ(world.MessageBoxes().size(), 1U);
    EXPECT_TRUE(world.MessageBoxes()[0].text.ends_with(":\n\nFirst\n"));
    EXPECT_EQ(Claimed("Rig", wanted), (Texts{"-", "-"}));
}

TEST_F(Claiming, FallsBackOnTheStoredNumber) {
    const std::uint32_t handle = SceneNode("Found", "")->GetHandle();
    SceneNode("Tagged", Tag("Rig", "Hip"));
    const std::string number = std::to_string(handle);
    const struct {
        std::string uid;
        std::string found;
    } cases[] = {
        {"<UID platform='x'>" + number + "</UID>", "Found"},
        {"<UID>\n\t" + number + "&#9;</UID>", "Found"},
        {"<UID/>", "-"},
        {"<UID>0</UID>", "-"},
        {"<UID>-1</UID>", "-"},
        {"<UID>" + number + "x</UID>", "-"},
        {"<UID>4294967296</UID>", "-"},
        {"<UID>99999999999999999999999</UID>", "-"},
        {"<uid>" + number + "</uid>", "-"},
    };
    XMLNode info("<nodeinfo><node/><TVL_Plugin/></nodeinfo>");
    Texts expected = {"-"};
    for (const auto& each : cases) {
        info.AddChild(XMLNode("<node name='None'>" + each.uid + "</node>"));
        expected.push_back(each.found);
    }
    info.AddChild(XMLNode("<node name='Hip'><UID>" + number + "</UID></node>"));
    expected.push_back("Tagged");
    EXPECT_EQ(Released(adaptor.ClaimNodes("Rig", info)), expected);
    EXPECT_TRUE(adaptor.ClaimNodes("Rig", NodeInfo({})).empty());
    EXPECT_TRUE(adaptor.ClaimNodes("Rig", XMLNode()).empty());
}

TEST_F(Claiming, LeavesTheTagsIfItFindsNoMemory) {
    bool hasFailed = true;
    bool isFound = false;
    for (std::size_t nth = 1; hasFailed; ++nth) {
        INode* const hip = SceneNode("Hip", Tag("Rig", "Hip"));
        world.Core().onCall = [&](const std::string&) {
            std::vector<TVL::CNode*> nodes(1);
            XMLNode info = NodeInfo({"Hip"});
            {
                const FailingAllocation fault(nth);
                nodes = adaptor.ClaimNodes("Rig", std::move(info));
                hasFailed = fault.HasFailed();
            }
            isFound = Released(nodes) == Texts{"Hip"};
        };
        GatherSceneState();
        EXPECT_NE(TagOf(hip).empty(), hasFailed && !isFound) << nth;
        GetCOREInterface()->DeleteNode(hip, 1, 0);
    }
    EXPECT_TRUE(isFound);
}

}  // namespace
