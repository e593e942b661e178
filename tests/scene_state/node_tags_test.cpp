#include <random>

#include "host/hold.h"
#include "scene_state/state_chunk.h"
#include "tests/scene_state/state_test.h"
#include "tests/support/allocations.h"
#include "tvl/base64_buffer.h"

namespace {

using TaggedNode = std::pair<std::string, std::string>;  // host name and tag
using TaggedNodes = std::vector<TaggedNode>;

std::string PluginXml(const std::string& name, const std::string& inside = {}) {
    return "<TVL_Plugin><name>" + name + "</name>" + inside + "</TVL_Plugin>";
}

std::string PackedMaster(const std::string& text) {
    return "<masternode><TVL_Plugin compressed=\"1\">" + text + "</TVL_Plugin></masternode>";
}

std::string Packed(const std::string& text) {
    return PackedMaster(Base64Buffer(text.data(), static_cast<std::int32_t>(text.size())).ToText());
}

class NodeTags : public StateTest {
  protected:
    static TaggedNodes InScene() {
        TaggedNodes nodes;
        for (const headless::NodeView& node : headless::Nodes()) {
            const auto tag = node.userProperties.find("TVL_tag");
            if (tag != node.userProperties.end() && !tag->second.empty())
                nodes.emplace_back(node.name, tag->second);
        }
        return nodes;
    }

    // With each state that it is given the Core does `act`. Gives the states.
    Texts Gathered(const std::function<void()>& act = nullptr) {
        Texts states;
        world.Core().onCall = [&](const std::string& call) {
            if (!call.starts_with("set state ")) return;
            states.push_back(call.substr(10));
            if (act) act();
        };
        GatherSceneState();
        world.Core().onCall = nullptr;
        return states;
    }

    // The searches are by hash; here they are by going through everything, as they are defined: of
    // the gathered nodes the last counts, of those in the scene the first, which the last of equal
    // names gets.
    static Texts ClaimedByGoingThrough(const TaggedNodes& gathered, const TaggedNodes& inScene,
                                       const std::string& plugin, const Texts& names) {
        Texts claims;
        for (auto name = names.begin(); name != names.end(); ++name) {
            const std::string tag = Tag(plugin, *name);
            std::string& claim = claims.emplace_back("-");
            const auto first = std::ranges::find(inScene, tag, &TaggedNode::second);
            const bool isLast = std::find(name + 1, names.end(), *name) == names.end();
            if (isLast && first != inScene.end()) claim = first->first;
            for (const auto& [node, text] : gathered)
                if (text == tag) claim = node;
        }
        return claims;
    }
};

TEST_F(NodeTags, AreFoundAsByGoingThroughEverythingAndTheRestIsReported) {
    constexpr const char* kPlugins[] = {"Rig", "<a\nb>"};
    constexpr const char* kNames[] = {"", "Hip", "a\nb", "<&>\"'/", "\xE5\x7F", "&#65;", " x "};
    std::mt19937 random(20251124);
    const auto draw = [&](std::size_t count) { return random() % count; };
    const auto oneOf = [&](const auto& list) { return list[draw(std::size(list))]; };
    const auto anyNode = [&] { return headless::FindNode(oneOf(headless::Nodes()).name); };
    // A node goes, is the last of the scene, or has no tag by now.
    const auto disturb = [&] {
        if (headless::Nodes().empty()) return;
        INode* const node = anyNode();
        const std::size_t kind = draw(3);
        if (kind == 0) GetCOREInterface()->DeleteNode(node);
        if (kind == 1) GetCOREInterface()->GetRootNode()->AttachChild(node);
        if (kind == 2) node->SetUserPropString("TVL_tag", "");
    };
    std::string expectedBoxes;
    const auto expectBox = [&](const std::string& names) {
        expectedBoxes +=
            "Gather error16Some nodes were found beloning to Tarvo Lumiset, but they were never "
            "claimed. \n The following nodes were left out:\n\n" +
            names;
    };
    for (int scene = 0; scene < 100; ++scene) {
        SCOPED_TRACE(scene);
        for (std::size_t count = draw(25), index = 0; index < count; ++index) {
            const std::string tag = Tag(oneOf(kPlugins), oneOf(kNames));
            INode* const parent =
                index > 0 && draw(2) ? anyNode() : GetCOREInterface()->GetRootNode();
            parent->AttachChild(
                SceneNode(std::to_string(index), oneOf(Texts{"", "<a b", tag, tag, tag})));
        }
        TaggedNodes gathered;
        const std::string plugin = oneOf(kPlugins);
        const Texts names = {oneOf(kNames), oneOf(kNames), oneOf(kNames), oneOf(kNames)};
        const auto expectClaims = [&] {
            std::erase_if(gathered, [](auto& node) { return !headless::FindNode(node.first); });
            EXPECT_EQ(Claimed(plugin, names),
                      ClaimedByGoingThrough(gathered, InScene(), plugin, names));
        };
        const auto expectClaimsAmongChanges = [&] {
            expectClaims();
            for (int times = 0; times < 4; ++times)
                disturb();
            expectClaims();
        };
        world.Core().onCall = [&](const std::string&) { expectClaimsAmongChanges(); };
        HandToCore(XMLNode());
        expectClaims();

        // Inside the gathering another one, as when the Core merges while it loads.
        gathered = InScene();
        bool isInside = false;
        EXPECT_EQ(Gathered([&] {
                      if (std::exchange(isInside, true)) return;
                      expectClaimsAmongChanges();
                      SceneNode("Merged", Tag("Rig", "Hip"));
                      GatherSceneState();
                      expectBox("Merged\n");
                      expectClaims();
                      const Texts own = Claimed(plugin, {names[0]}, &rig);
                      std::erase_if(gathered, [&](auto& node) { return node.first == own[0]; });
                  }),
                  (Texts{"<TVL/>", "<TVL/>"}));
        std::string left;
        for (const TaggedNode& node : gathered)
            left += node.first + '\n';
        if (!left.empty()) expectBox(left);
        EXPECT_TRUE(InScene().empty());
        Released(adaptor.GetNodes(&rig));
        world.Session().NewScene();
    }
    std::string boxes;
    for (const headless::MessageBoxText& box : world.MessageBoxes())
        boxes += box.caption + std::to_string(box.style) + box.text;
    EXPECT_EQ(boxes, expectedBoxes);
}

TEST_F(NodeTags, AreMadeUpForByTheStoredNumber) {
    const std::string number = std::to_string(SceneNode("Found", "")->GetHandle());
    SceneNode("Tagged", Tag("Rig", "Hip"));
    XMLNode info("<nodeinfo><node/><TVL_Plugin/></nodeinfo>");
    for (const std::string& uid :
         Texts{"<UID platform='x'>" + number + "</UID>", "<UID>\n\t" + number + "&#9;</UID>",
               "<UID/>", "<UID>0</UID>", "<UID>-1</UID>", "<UID>" + number + "x</UID>",
               "<UID>4294967296</UID>", "<uid>" + number + "</uid>"})
        info.AddChild(XMLNode("<node name='None'>" + uid + "</node>"));
    info.AddChild(XMLNode("<node name='Hip'><UID>" + number + "</UID></node>"));
    EXPECT_EQ(Released(adaptor.ClaimNodes("Rig", info)),
              (Texts{"-", "Found", "Found", "-", "-", "-", "-", "-", "-", "Tagged"}));
}

TEST_F(NodeTags, NestUnpackAndOrderTheStoredPlugins) {
    std::string masters;
    std::string nested;
    for (int index = 0; index < 5000; ++index) {
        const std::string name = std::to_string(index);
        masters += Master(name, std::to_string(index + 1));
        nested = PluginXml(name, nested);
    }
    const std::pair<Texts, std::string> cases[] = {
        // The masters, on one node each, and the plug-ins that they make.
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
        {{PackedMaster("Q*==") + Master("B"), PackedMaster("<name>K</name><x/>")},
         PluginXml("B") + "<TVL_Plugin compressed=\"1\"><name>K</name><x/></TVL_Plugin>"},
        // A damaged tag goes as far as it can be read.
        {{Master("A") + "<cut", Master("B")}, PluginXml("A") + PluginXml("B")},
        {{masters}, nested}};
    for (const auto& [onNodes, plugins] : cases) {
        for (const std::string& master : onNodes)
            SceneNode("Node", "<TVL_tag><name>x</name>" + master + "</TVL_tag>");
        EXPECT_EQ(Gathered(), Texts{"<TVL>" + plugins + "</TVL>"});
        EXPECT_EQ(Gathered(), Texts{"<TVL/>"}) << "a tag that was not emptied";
        world.Session().NewScene();
    }
}

// At first the Core throws. Then the box lets events through, and the person detaches the Core in
// front of it.
TEST_F(NodeTags, StayForACoreThatGetsToLoad) {
    rig.parts = {Master("Rig")};
    SceneNode("Hip", Tag("Rig", "Hip", Master("Rig")));
    SceneNode("Lost", Tag("Rig", "Lost"));
    const TaggedNodes before = InScene();
    const auto claim = [this] { Claim(rig, "Rig", {"Hip"}); };
    Gathered([] { throw 1; });
    EXPECT_EQ(InScene(), before);
    int boxes = 0;
    world.Session().OnMessageBox([&](const headless::MessageBoxText&) {
        if (boxes++ > 0) return;
        StoreSceneState();
        UtilityManager::Get().DetachCore();
    });
    Gathered(claim);
    EXPECT_EQ(InScene(), before);
    UtilityManager::Get().AttachCore();
    EXPECT_EQ(Gathered(claim), Texts{"<TVL>" + PluginXml("Rig") + "</TVL>"});
    EXPECT_EQ(boxes, 2);
    EXPECT_TRUE(InScene().empty());
}

// Each allocation of its claim fails in turn.
TEST_F(NodeTags, StayForACoreThatHadNoMemoryToClaimThem) {
    const XMLNode info("<nodeinfo><node name='Hip'/></nodeinfo>");
    const std::string plugin = "Rig";
    Texts found;
    bool hasFailed = true;
    for (std::size_t nth = 1; hasFailed; ++nth) {
        SceneNode("Hip", Tag("Rig", "Hip"));
        Gathered([&] {
            std::optional<FailingAllocation> fault(nth);
            const std::vector<TVL::CNode*> nodes = adaptor.ClaimNodes(plugin, info);
            hasFailed = fault->HasFailed();
            fault.reset();
            found = Released(nodes);
        });
        EXPECT_EQ(InScene().empty(), found == Texts{"Hip"}) << nth;
        world.Session().NewScene();
    }
    EXPECT_EQ(found, Texts{"Hip"});
}

// Each allocation of a gathering fails in turn, and each of a clearing: what one failure leaves on
// a node is left on no other, and the next gathering finds all that the Core was not given.
TEST_F(NodeTags, GoThoughOneOfThemStaysForWantOfMemory) {
    bool hasFailed = true;
    for (std::size_t nth = 1; hasFailed; ++nth) {
        SceneNode("Hip", Tag("Rig", "Hip", Master("Rig") + Master("Hand", "Rig", "0")));
        SceneNode("Knee", Tag("Rig", "Knee"));
        SceneNode("Arm", Tag("Other", "Arm", Master("Other")));
        const TaggedNodes before = InScene();
        std::string given;
        world.Core().onCall = [&](const std::string& call) {
            if (!call.starts_with("set state ")) return;
            given += call;
            Claim(rig, "Rig", {"Hip", "Knee"});
            Claim(other, "Other", {"Arm"});
        };
        const auto gather = [] { TVL::TraceIfThrown("a gathering", [] { GatherSceneState(); }); };
        const auto claimed = [&] {
            return adaptor.GetNodes(&rig).size() + adaptor.GetNodes(&other).size();
        };
        {
            const FailingAllocation fault(nth);
            gather();
            hasFailed = fault.HasFailed();
        }
        const bool isGiven = !given.empty();
        EXPECT_TRUE(isGiven ? InScene().size() <= 4 - claimed() : InScene() == before) << nth;
        gather();
        EXPECT_NE(given.find("Hand"), std::string::npos) << nth;
        EXPECT_EQ(claimed(), 3U) << nth;
        EXPECT_TRUE(InScene().empty()) << nth;
        world.Core().onCall = nullptr;
        Released(adaptor.GetNodes(&rig));
        Released(adaptor.GetNodes(&other));
        world.Session().NewScene();
    }
    rig.parts = {Master("Rig")};
    hasFailed = true;
    for (std::size_t nth = 1; hasFailed; ++nth) {
        TVL::CoreNode* const hip = Helper(rig, "Hip");
        StoreSceneState();
        const std::string tag = TagOf(headless::FindNode("Rig_Hip"));
        SceneNode("Copy", tag);
        {
            const FailingAllocation fault(nth);
            ClearNodeTags();
            hasFailed = fault.HasFailed();
        }
        EXPECT_LE(InScene().size(), 1U) << nth;
        hip->Delete(true);
        world.Session().NewScene();
    }
}

TEST_F(NodeTags, AreOnEachNodeWithItsNamesAndTheOwnersStateOnItsFirst) {
    const std::string odd = "a\nb<&>\"'/\xE5\x7F\xFF\x01 &#65; ";
    rig.parts = {Master("Rig"), Master("Hand", "Rig", "0")};
    Plugin passedBy("Gate");
    passedBy.parts = {Master("Gate")};
    TVL::CoreNode* const back = Helper(passedBy, "Back");
    TVL::CoreNode* const gone = Helper(rig, "Gone");
    Helper(rig, "Hip");
    Plugin camera("<Camera>");
    camera.parts = {Master("Camera")};
    TVL::CoreNode* const lens = Helper(camera, "Lens");
    Helper(other, "Prop");
    Helper(rig, odd);
    const TaggedNode waiting("Waiting", Tag("Rig", "Hip", Master("Old")));
    SceneNode(waiting.first, waiting.second);
    GetCOREInterface()->DeleteNode(headless::FindNode("Rig_Gone"));
    theHold.Begin();
    GetCOREInterface()->DeleteNode(headless::FindNode("Gate_Back"));
    theHold.Accept("delete");
    rig.onAsked = [&] {
        world.Session().Undo();
        Helper(rig, "Late");
        gone->Destroy();
    };
    StoreSceneState();
    EXPECT_EQ(rig.timesAsked, 1);
    EXPECT_EQ(InScene(),
              (TaggedNodes{{"Gate_Back", Tag("Gate", "Back", Master("Gate"))},
                           {"Rig_Hip", "<TVL_tag><name>Rig</name><objectname>Hip</objectname>" +
                                           rig.parts[0] + rig.parts[1] + "</TVL_tag>"},
                           {"<Camera>_Lens", Tag("<Camera>", "Lens", Master("Camera"))},
                           {"Rig_" + odd, Tag("Rig", odd)},
                           waiting,
                           {"Rig_Late", Tag("Rig", "Late")}}));
    EXPECT_EQ(Tag("Rig", odd).find('\n'), std::string::npos);
    EXPECT_EQ(Claimed("Rig", {odd}), Texts{"Rig_" + odd});
    ClearNodeTags();
    EXPECT_EQ(InScene(), TaggedNodes{waiting});
    lens->Delete(true);
    back->Delete(true);
}

}  // namespace
