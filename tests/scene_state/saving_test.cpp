#include <algorithm>
#include <optional>
#include <string>

#include "tests/scene_state/state_test.h"
#include "tests/support/allocations.h"

namespace {

class Saving : public StateTest {
  protected:
    // The nodes that bear a tag, each with its text.
    static Texts Tags() {
        Texts tags;
        for (const headless::NodeView& node : headless::Nodes())
            if (node.userProperties.contains("TVL_tag"))
                tags.push_back(node.name + ' ' + node.userProperties.at("TVL_tag"));
        return tags;
    }
};

TEST_F(Saving, TagsEachNodeWithItsNamesAndTheFirstOneWithTheOwnersState) {
    const std::string odd = "a\nb<&>\"'/\xE5\x7F\xFF\x01 &#65; ";
    const std::string waiting = "Waiting " + Tag("Rig", "Hip", Master("Old"));
    rig.parts = {Master("Rig"), Master("Hand", "Rig", "0")};
    TVL::CoreNode* const gone = Helper(rig, "Gone");
    Helper(rig, "Hip");
    Plugin camera("<Camera>");
    camera.parts = {Master("Camera")};
    TVL::CoreNode* const lens = Helper(camera, "Lens");
    Helper(other, "Prop");
    Helper(rig, odd);
    SceneNode("Waiting", Tag("Rig", "Hip", Master("Old")));
    GetCOREInterface()->DeleteNode(headless::FindNode("Rig_Gone"));
    rig.onAsked = [&] {
        Helper(rig, "Late");
        gone->Destroy();
    };
    StoreSceneState();
    EXPECT_EQ(rig.timesAsked, 1);
    EXPECT_EQ(Tags(), (Texts{"Rig_Hip <TVL_tag><name>Rig</name><objectname>Hip</objectname>" +
                                 rig.parts[0] + rig.parts[1] + "</TVL_tag>",
                             "<Camera>_Lens " + Tag("<Camera>", "Lens", Master("Camera")),
                             "Rig_" + odd + ' ' + Tag("Rig", odd), waiting,
                             "Rig_Late " + Tag("Rig", "Late")}));
    EXPECT_EQ(Tag("Rig", odd).find('\n'), std::string::npos);
    EXPECT_EQ(Claimed("Rig", {odd}), Texts{"Rig_" + odd});
    ClearNodeTags();
    EXPECT_EQ(Tags(), (Texts{"Rig_Hip ", "<Camera>_Lens ", "Other_Prop ", "Rig_" + odd + ' ',
                             waiting, "Rig_Late "}));
    lens->Delete(true);
}

TEST_F(Saving, StoresTheCoresStateAsReadableTextIfThereIsAny) {
    world.Core().state = XMLNode("<TVL version='1'/>");
    EXPECT_TRUE(Saved().empty());
    world.Core().state.AddChild(XMLNode("take", "Walk"));
    const StoredBytes expected =
        Bytes({TextChunk(1032, "<TVL version=\"1\">\n\t<take>Walk</take>\n</TVL>")});
    EXPECT_EQ(Saved(), expected);

    UtilityManager::Get().DetachCore();
    EXPECT_TRUE(Saved().empty());
    EXPECT_TRUE(Loaded(expected).empty());
}

TEST_F(Saving, GivesTheCoreEachStoredStateAndThenTheOlderOnes) {
    const StoredChunk first = TextChunk(1032, "<TVL><a/></TVL>");
    EXPECT_EQ(Loaded(Bytes({first,
                            {7},
                            TextChunk(1032, "<TVL><b/><c x='1>2'/><d/></TVL>"),
                            {7},
                            TextChunk(1032, "")})),
              (Texts{"<TVL><a/></TVL>", "<TVL><b/></TVL>", "", "<TVL/>"}));
    EXPECT_EQ(Loaded({}), Texts{"<TVL/>"});

    // A text that cannot be read ends the loading where it is.
    const StoredBytes cut = Bytes({first, {1032}});
    EXPECT_EQ(Loaded(cut, false), Texts{"<TVL><a/></TVL>"});

    // What the Core has not taken by then is in no chunk that the host would keep.
    world.Core().onCall = [](const std::string&) { throw 1; };
    EXPECT_EQ(Loaded(cut, false), Texts{"<TVL><a/></TVL>"});
    world.Core().onCall = nullptr;
    world.Core().state = XMLNode("<TVL><b/></TVL>");
    const StoredBytes saved = Saved();
    world.Session().NewScene();
    EXPECT_EQ(Loaded(saved), (Texts{"<TVL><a/></TVL>", "<TVL><b/></TVL>", "<TVL/>"}));
    EXPECT_LT(Saved().size(), saved.size());
}

// The Core refuses the first of two states, and at most times there is no memory for what comes
// then. The next save writes both ahead of what the Core has by then.
TEST_F(Saving, LosesNoStateThatTheCoreDidNotTake) {
    const std::string file = (world.Folder() / "a.scene").string();
    const std::string again = (world.Folder() / "again.scene").string();
    const auto save = [&](const char* state, const std::string& path) {
        world.Core().state = XMLNode(state);
        EXPECT_EQ(world.Session().SaveScene(path).error, "");
    };
    std::size_t nth = 0;
    bool hasFailed = true;
    std::optional<FailingAllocation> fault;
    const auto openRefusing = [&] {
        world.Core().onCall = [&](const std::string& call) {
            if (fault) hasFailed = fault->HasFailed();
            fault.reset();
            if (call != "set state <TVL><a/></TVL>") return;
            if (nth > 0) fault.emplace(nth);
            throw 1;
        };
        const headless::FileOutcome opened = world.Session().OpenScene(file);
        EXPECT_TRUE(opened.error.empty() && opened.complaints.size() == 1) << opened.error << nth;
        EXPECT_FALSE(world.Session().UtilityChunks()[0].isTaken) << nth;
        world.Core().onCall = nullptr;
    };
    save("<TVL><a/></TVL>", file);
    openRefusing();
    save("<TVL><b/></TVL>", file);
    while (hasFailed) {
        openRefusing();
        save("<TVL><c/></TVL>", again);
        States();
        EXPECT_TRUE(world.Session().OpenScene(again).complaints.empty());
        Texts states = States();
        std::erase(states, "<TVL/>");
        if (nth > 0) std::ranges::sort(states);
        EXPECT_EQ(states, (Texts{"<TVL><a/></TVL>", "<TVL><b/></TVL>", "<TVL><c/></TVL>"})) << nth;
        ++nth;
    }
    EXPECT_GT(nth, 10U);
}

}  // namespace
