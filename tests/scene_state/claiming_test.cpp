#include <algorithm>
#include <random>
#include <string>

#include "scene_state/state_chunk.h"
#include "tests/scene_state/state_test.h"
#include "tests/support/allocations.h"

namespace {

constexpr const char* kPlugins[] = {"Rig", "<a\nb>"};
constexpr const char* kNames[] = {"", "Hip", "a\nb", "<&>\"'/", "\xE5\x7F\xFF\x01", "&#65;", " x "};

using TaggedNodes = std::vector<std::pair<std::string, XMLNode>>;  // host name and tag

class Claiming : public StateTest {
  protected:
    std::size_t Draw(std::size_t count) { return random_() % count; }
    template <class List>
    auto OneOf(const List& list) {
        return list[Draw(std::size(list))];
    }
    INode* AnyNode() { return headless::FindNode(OneOf(headless::Nodes()).name); }

    void MakeScene(std::size_t count) {
        for (std::size_t index = 0; index < count; ++index) {
            const std::string tag = Tag(OneOf(kPlugins), OneOf(kNames));
            INode* const parent = index > 0 && Draw(2) ? AnyNode() : nullptr;
            SceneNode(std::to_string(index), OneOf(Texts{"", "<a b", tag, tag, tag}), parent);
        }
    }

    // A node goes, is the last of the scene, or has no tag by now.
    void Disturb() {
        if (headless::Nodes().empty()) return;
        INode* const node = AnyNode();
        const std::size_t kind = Draw(3);
        if (kind == 0) GetCOREInterface()->DeleteNode(node);
        if (kind == 1) GetCOREInterface()->GetRootNode()->AttachChild(node);
        if (kind == 2) node->SetUserPropString("TVL_tag", "");
    }

    static TaggedNodes InScene() {
        TaggedNodes nodes;
        for (const headless::NodeView& node : headless::Nodes()) {
            const auto tag = node.userProperties.find("TVL_tag");
            if (tag != node.userProperties.end() && !tag->second.empty())
                nodes.emplace_back(node.name, XMLNode(tag->second));
        }
        return nodes;
    }

  private:
    std::mt19937 random_{20251124};
};

// The searches are by hash; here they are by going through everything, as they are defined: of the
// gathered nodes the last counts, of those in the scene the first, which the last of equal names
// gets.
Texts ClaimedByGoingThrough(const TaggedNodes& gathered, const TaggedNodes& inScene,
                            const std::string& plugin, const Texts& names) {
    Texts claims;
    for (auto name = names.begin(); name != names.end(); ++name) {
        const auto bears = [&](const auto& node) {
            const XMLNode& tag = node.second;
            return tag.Child("name").Text() == plugin && tag.Child("objectname").Text() == *name;
        };
        std::string& claim = claims.emplace_back("-");
        const auto first = std::ranges::find_if(inScene, bears);
        const bool isLast = std::find(name + 1, names.end(), *name) == names.end();
        if (isLast && first != inScene.end()) claim = first->first;
        for (const auto& node : gathered)
            if (bears(node)) claim = node.first;
    }
    return claims;
}

TEST_F(Claiming, FindsWhatGoingThroughEverythingFindsAndReportsTheRest) {
    Texts expectedBoxes;
    for (int scene = 0; scene < 100; ++scene) {
        SCOPED_TRACE(scene);
        MakeScene(Draw(25));
        TaggedNodes gathered;
        const std::string plugin = OneOf(kPlugins);
        const Texts names = {OneOf(kNames), OneOf(kNames), OneOf(kNames), OneOf(kNames)};
        const auto expectClaims = [&] {
            std::erase_if(gathered, [](auto& node) { return !headless::FindNode(node.first); });
            EXPECT_EQ(Claimed(plugin, names),
                      ClaimedByGoingThrough(gathered, InScene(), plugin, names));
        };
        const auto expectClaimsAmongChanges = [&] {
            expectClaims();
            for (int times = 0; times < 4; ++times)
                Disturb();
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
                      expectedBoxes.push_back("Merged\n");
                      expectClaims();
                      const Texts own = ClaimedByGoingThrough(gathered, {}, plugin, {names[0]});
                      Claim(rig, plugin, {names[0]});
                      std::erase_if(gathered, [&](auto& node) { return node.first == own[0]; });
                  }),
                  (Texts{"<TVL/>", "<TVL/>"}));
        if (!gathered.empty()) expectedBoxes.emplace_back();
        for (const auto& node : gathered)
            expectedBoxes.back() += node.first + '\n';
        EXPECT_TRUE(InScene().empty());
        Released(adaptor.GetNodes(&rig));
        world.Session().NewScene();
    }
    Texts boxes;
    for (const headless::MessageBoxText& box : world.MessageBoxes())
        boxes.push_back(box.caption + std::to_string(box.style) + box.text);
    for (std::string& box : expectedBoxes)
        box =
            "Gather error16Some nodes were found beloning to Tarvo Lumiset, but they were never "
            "claimed. \n The following nodes were left out:\n\n" +
            box;
    EXPECT_EQ(boxes, expectedBoxes);
}

TEST_F(Claiming, FallsBackOnTheStoredNumber) {
    const std::string number = std::to_string(SceneNode("Found", "")->GetHandle());
    SceneNode("Tagged", Tag("Rig", "Hip"));
    XMLNode info("<nodeinfo><node/><TVL_Plugin/></nodeinfo>");
    for (const std::string& uid :
         {"<UID platform='x'>" + number + "</UID>", "<UID>\n\t" + number + "&#9;</UID>",
          std::string("<UID/>"), std::string("<UID>0</UID>"), std::string("<UID>-1</UID>"),
          "<UID>" + number + "x</UID>", std::string("<UID>4294967296</UID>"),
          std::string("<UID>99999999999999999999999</UID>"), "<uid>" + number + "</uid>"})
        info.AddChild(XMLNode("<node name='None'>" + uid + "</node>"));
    info.AddChild(XMLNode("<node name='Hip'><UID>" + number + "</UID></node>"));
    EXPECT_EQ(Released(adaptor.ClaimNodes("Rig", info)),
              (Texts{"-", "Found", "Found", "-", "-", "-", "-", "-", "-", "-", "Tagged"}));
    EXPECT_TRUE(adaptor.ClaimNodes("Rig", XMLNode()).empty());
}

// At first the Core throws, then each allocation of a claim fails in turn.
TEST_F(Claiming, LeavesTheTagsOfACoreThatDoesNotGetToLoad) {
    bool hasFailed = true;
    bool isFound = false;
    for (std::size_t nth = 0; hasFailed; ++nth) {
        INode* const hip = SceneNode("Hip", Tag("Rig", "Hip"));
        Gathered([&] {
            if (nth == 0) throw 1;
            std::vector<TVL::CNode*> nodes(1);
            XMLNode info = NodeInfo({"Hip"});
            {
                const FailingAllocation fault(nth);
                nodes = adaptor.ClaimNodes("Rig", std::move(info));
                hasFailed = fault.HasFailed();
            }
            isFound = Released(nodes) == Texts{"Hip"};
        });
        EXPECT_NE(TagOf(hip).empty(), hasFailed && !isFound) << nth;
        GetCOREInterface()->DeleteNode(hip, 1, 0);
    }
    EXPECT_TRUE(isFound);
}

}  // namespace
