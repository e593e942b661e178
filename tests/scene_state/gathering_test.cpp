#include <algorithm>
#include <string>

#include "adaptor/utility_manager.h"
#include "tests/scene_state/state_test.h"
#include "tests/support/allocations.h"
#include "tvl/base64_buffer.h"

namespace {

using Gathering = StateTest;

constexpr const char* kNeverClaimed =
    "Some nodes were found beloning to Tarvo Lumiset, but they were never claimed. \n"
    " The following nodes were left out:\n\n";

std::string PluginXml(const std::string& name, const std::string& inside = {}) {
    return "<TVL_Plugin><name>" + name + "</name>" + inside + "</TVL_Plugin>";
}

std::string Packed(const std::string& text) {
    const Base64Buffer bytes(text.data(), static_cast<std::int32_t>(text.size()));
    return "<masternode><TVL_Plugin compressed=\"1\">" + bytes.ToText() +
           "</TVL_Plugin></masternode>";
}

TEST_F(Gathering, NestsUnpacksAndOrdersWhatIsStored) {
    const struct {
        Texts masters;  // on one node each
        std::string plugins;
    } cases[] = {
        {{}, ""},
        {{Master("A", "R", "2") + Master("B", "R", " +1x"), Master("R", "None", "-7"),
          Master("C", "R", "-99999999999"), Master("D", "A")},
         PluginXml("R", PluginXml("C") + PluginXml("B") + PluginXml("A", PluginXml("D")))},
        // Of one name the first stays, and no name is a name.
        {{Master("A") + Master("B"), Master("A", "B") + Master("") + "<masternode/>"},
         PluginXml("A") + PluginXml("B") + "<TVL_Plugin><name/></TVL_Plugin>"},
        // Of a circle the first stays at the top.
        {{Master("T", "A"), Master("A", "C") + Master("B", "A") + Master("C", "B")},
         PluginXml("A", PluginXml("T") + PluginXml("B", PluginXml("C")))},
        {{Master("A", "A", "3")}, PluginXml("A")},
        // Plain text in a packed element is read too, up to a NUL.
        {{Packed(PluginXml("A") + '\0' + "rest"), Master("B", "A"), Packed("<cut><a/><b")},
         PluginXml("A", PluginXml("B")) + ""},
        {{"<masternode><TVL_Plugin compressed=\"1\">Q*==</TVL_Plugin></masternode>" + Master("B"),
          "<masternode><TVL_Plugin compressed=\"1\"><name>K</name><x/></TVL_Plugin></masternode>"},
         PluginXml("B") + "<TVL_Plugin compressed=\"1\"><name>K</name><x/></TVL_Plugin>"},
        // A damaged tag goes as far as it can be read.
        {{Master("A") + "<cut", Master("B")}, PluginXml("A") + PluginXml("B")},
    };
    for (const auto& each : cases) {
        Texts expected = {each.plugins.empty() ? "<TVL/>" : "<TVL>" + each.plugins + "</TVL>"};
        for (const std::string& masters : each.masters)
            SceneNode("Node", "<TVL_tag><name>x</name>" + masters + "</TVL_tag>");
        EXPECT_EQ(Gathered(), expected);
        EXPECT_EQ(Gathered(), Texts{"<TVL/>"}) << "a tag that was not emptied";
        world.Session().NewScene();
    }
}

TEST_F(Gathering, ReportsTheNodesThatNobodyClaimedAndClearsAllTags) {
    INode* const hip = SceneNode("Hip", Tag("Rig", "Hip", Master("Rig")));
    INode* const lost = SceneNode("Lost", Tag("Rig", "Lost"), hip);
    SceneNode("Emptied", "")->SetUserPropString("TVL_tag", "");
    INode* const nameless = SceneNode("Damaged", "<a b");
    world.Core().onCall = [this](const std::string&) { Claim(rig, "Rig", {"Hip"}); };
    GatherSceneState();
    world.Core().onCall = nullptr;

    ASSERT_EQ(world.MessageBoxes().size(), 1U);
    const headless::MessageBoxText& box = world.MessageBoxes()[0];
    EXPECT_EQ(box.text, std::string(kNeverClaimed) + "Lost\nDamaged\n");
    EXPECT_EQ(box.caption, "Gather error");
    EXPECT_EQ(box.style, 16U);
    for (INode* node : {hip, lost, nameless})
        EXPECT_EQ(TagOf(node), "");
    EXPECT_EQ(adaptor.GetNodes(&rig).size(), 1U);
}

// The Core merges while it loads.
TEST_F(Gathering, GoesOnWithItsOwnNodesAfterAnotherOneInside) {
    INode* const hip = SceneNode("Hip", Tag("Rig", "Hip", Master("Rig")));
    INode* const lost = SceneNode("Lost", Tag("Rig", "Lost"));
    Texts claimed;
    bool isInside = false;
    world.Core().onCall = [&](const std::string&) {
        if (std::exchange(isInside, true)) return;
        SceneNode("Merged", Tag("Other", "Hip", Master("Other")));
        GatherSceneState();
        EXPECT_NE(TagOf(hip), "");
        claimed = Claimed("Rig", {"Hip", "Lost"});
        Claim(rig, "Rig", {"Hip"});
    };
    EXPECT_EQ(Gathered(), (Texts{"<TVL>" + PluginXml("Rig") + "</TVL>",
                                 "<TVL>" + PluginXml("Other") + "</TVL>"}));
    world.Core().onCall = nullptr;
    EXPECT_EQ(claimed, (Texts{"Hip", "Lost"}));
    ASSERT_EQ(world.MessageBoxes().size(), 2U);
    EXPECT_EQ(world.MessageBoxes()[0].text, std::string(kNeverClaimed) + "Merged\n");
    EXPECT_EQ(world.MessageBoxes()[1].text, std::string(kNeverClaimed) + "Lost\n");
    EXPECT_EQ(TagOf(lost), "");
}

// The box lets events through, and the person detaches the Core in front of it.
TEST_F(Gathering, LeavesTheTagsToTheNextCoreWhenItsOwnLeaves) {
    rig.parts = {Master("Rig")};
    INode* const hip = SceneNode("Hip", Tag("Rig", "Hip", Master("Rig")));
    INode* const lost = SceneNode("Lost", Tag("Rig", "Lost"));
    world.Core().onCall = [this](const std::string& call) {
        if (call.starts_with("set state")) Claim(rig, "Rig", {"Hip"});
    };
    world.Session().OnMessageBox([](const headless::MessageBoxText&) {
        StoreSceneState();
        UtilityManager::Get().DetachCore();
    });
    GatherSceneState();
    EXPECT_EQ(TagOf(hip), Tag("Rig", "Hip", Master("Rig")));
    EXPECT_EQ(TagOf(lost), Tag("Rig", "Lost"));

    int boxes = 0;
    world.Session().OnMessageBox([&](const headless::MessageBoxText&) { ++boxes; });
    UtilityManager::Get().AttachCore();
    EXPECT_EQ(Gathered(), Texts{"<TVL>" + PluginXml("Rig") + "</TVL>"});
    EXPECT_EQ(boxes, 1);
    EXPECT_EQ(TagOf(hip) + TagOf(lost), "");
    world.Core().onCall = nullptr;
}

// Each of the streams says that it is 64 MiB of one byte.
TEST_F(Gathering, UnfoldsASmallSceneToAMultipleOfItselfAlone) {
    std::string masters;
    for (const char lone : std::string("x<\n\0", 4)) {
        const std::string stream("\xCA\x31\x53\0\x64\0\0\0\1\0\0\0\0\0\0\4", 16);
        masters += Packed(stream + lone + std::string(4, '\1'));
    }
    SceneNode("Small", "<TVL_tag>" + masters + Master("A") + "</TVL_tag>");
    const AllocationPeak peak;
    EXPECT_EQ(Gathered(), Texts{"<TVL>" + PluginXml("A") + "</TVL>"});
    EXPECT_LT(peak.Bytes(), std::size_t{1} << 20);
}

TEST_F(Gathering, GoesAsDeepAsTheSceneAndTheStoredPlugins) {
    constexpr int kDepth = 5000;
    std::string masters;
    for (int index = 0; index < kDepth; ++index)
        masters += Master(std::to_string(index), std::to_string(index + 1));
    SceneNode("All", "<TVL_tag>" + masters + "</TVL_tag>");
    GatherSceneState();
    const XMLNode state = world.Core().state;
    int depth = 0;
    for (const XMLNode* node = &state; !node->children.empty(); node = node->children.back().get())
        ++depth;
    EXPECT_EQ(depth, kDepth + 2);  // and the name of the last, and its text
}

}  // namespace
