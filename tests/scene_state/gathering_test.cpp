#include <string>

#include "tests/scene_state/state_test.h"
#include "tvl/base64_buffer.h"

namespace {

using Gathering = StateTest;

std::string PluginXml(const std::string& name, const std::string& inside = {}) {
    return "<TVL_Plugin><name>" + name + "</name>" + inside + "</TVL_Plugin>";
}

std::string StateXml(const std::string& plugins) {
    return plugins.empty() ? "<TVL/>" : "<TVL>" + plugins + "</TVL>";
}

std::string Packed(const std::string& text) {
    const Base64Buffer bytes(text.data(), static_cast<std::int32_t>(text.size()));
    return "<masternode><TVL_Plugin compressed=\"1\">" + bytes.ToText() +
           "</TVL_Plugin></masternode>";
}

TEST_F(Gathering, NestsUnpacksAndOrdersWhatIsStored) {
    const std::pair<Texts, std::string> cases[] = {
        // The masters, on one node each, and the plug-ins that they make.
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
        // Of one place the order of the scene counts.
        {{Master("B", "R", "1") + Master("A", "R"), Master("D", "R", "1") + Master("C", "R", "0"),
          Master("B", "A") + Master("R", "")},
         PluginXml("R", PluginXml("A") + PluginXml("C") + PluginXml("B") + PluginXml("D"))},
        // Plain text in a packed element is read too, up to a NUL.
        {{Packed(PluginXml("A") + '\0' + "rest"), Master("B", "A"), Packed("<cut><a/><b")},
         PluginXml("A", PluginXml("B")) + ""},
        {{"<masternode><TVL_Plugin compressed=\"1\">Q*==</TVL_Plugin></masternode>" + Master("B"),
          "<masternode><TVL_Plugin compressed=\"1\"><name>K</name><x/></TVL_Plugin></masternode>"},
         PluginXml("B") + "<TVL_Plugin compressed=\"1\"><name>K</name><x/></TVL_Plugin>"},
        // A damaged tag goes as far as it can be read.
        {{Master("A") + "<cut", Master("B")}, PluginXml("A") + PluginXml("B")},
    };
    for (const auto& [masters, plugins] : cases) {
        for (const std::string& master : masters)
            SceneNode("Node", "<TVL_tag><name>x</name>" + master + "</TVL_tag>");
        EXPECT_EQ(Gathered(), Texts{StateXml(plugins)});
        EXPECT_EQ(Gathered(), Texts{"<TVL/>"}) << "a tag that was not emptied";
        world.Session().NewScene();
    }
}

// The box lets events through, and the person detaches the Core in front of it.
TEST_F(Gathering, LeavesTheTagsToTheNextCoreWhenItsOwnLeaves) {
    rig.parts = {Master("Rig")};
    INode* const hip = SceneNode("Hip", Tag("Rig", "Hip", Master("Rig")));
    INode* const lost = SceneNode("Lost", Tag("Rig", "Lost"));
    const auto claim = [this] { Claim(rig, "Rig", {"Hip"}); };
    int boxes = 0;
    world.Session().OnMessageBox([&](const headless::MessageBoxText&) {
        if (boxes++ > 0) return;
        StoreSceneState();
        UtilityManager::Get().DetachCore();
    });
    Gathered(claim);
    EXPECT_EQ(TagOf(hip), Tag("Rig", "Hip", Master("Rig")));
    EXPECT_EQ(TagOf(lost), Tag("Rig", "Lost"));

    UtilityManager::Get().AttachCore();
    EXPECT_EQ(Gathered(claim), Texts{StateXml(PluginXml("Rig"))});
    EXPECT_EQ(boxes, 2);
    EXPECT_EQ(TagOf(hip) + TagOf(lost), "");
}

TEST_F(Gathering, GoesAsDeepAsTheSceneAndTheStoredPlugins) {
    std::string masters;
    std::string nested;
    for (int index = 0; index < 5000; ++index) {
        const std::string name = std::to_string(index);
        masters += Master(name, std::to_string(index + 1));
        nested = PluginXml(name, nested);
    }
    SceneNode("All", "<TVL_tag>" + masters + "</TVL_tag>");
    EXPECT_EQ(Gathered(), Texts{StateXml(nested)});
}

}  // namespace
