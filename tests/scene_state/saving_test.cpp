#include <algorithm>
#include <optional>
#include <string>

#include "adaptor/utility_manager.h"
#include "headless/memory_chunks.h"
#include "tests/scene_state/state_test.h"
#include "tests/support/allocations.h"

namespace {

using Saving = StateTest;

std::vector<std::byte> SavedChunks() {
    return headless::SavedBytes([](ISave* save) { return UtilityManager::Get().Save(save); });
}

IOResult Load(std::span<const std::byte> bytes) {
    return headless::LoadBytes(bytes, [](ILoad* load) { return UtilityManager::Get().Load(load); });
}

TEST_F(Saving, TagsEachNodeWithItsNamesAndTheFirstOneWithTheOwnersState) {
    rig.parts = {Master("Rig"), Master("Hand", "Rig", "0")};
    TVL::CoreNode* const gone = Helper(rig, "Gone");
    Helper(rig, "Hip");
    Plugin camera("Camera");
    camera.parts = {Master("Camera")};
    TVL::CoreNode* const lens = Helper(camera, "Lens");
    Helper(other, "Prop");
    Helper(rig, "a\nb");
    GetCOREInterface()->DeleteNode(headless::FindNode("Rig_Gone"));
    rig.onAsked = [&] {
        Helper(rig, "Late");
        gone->Destroy();
    };

    INode* const waiting = SceneNode("Waiting", Tag("Rig", "Hip", Master("Old")));
    StoreSceneState();
    EXPECT_EQ(rig.timesAsked, 1);
    EXPECT_EQ(TagOf(headless::FindNode("Rig_Hip")),
              "<TVL_tag><name>Rig</name><objectname>Hip</objectname>" + Master("Rig") +
                  Master("Hand", "Rig", "0") + "</TVL_tag>");
    EXPECT_EQ(TagOf(headless::FindNode("Rig_a\nb")),
              "<TVL_tag><name>Rig</name><objectname>a&#10;b</objectname></TVL_tag>");
    EXPECT_EQ(TagOf(headless::FindNode("Rig_Late")), Tag("Rig", "Late"));
    EXPECT_EQ(TagOf(headless::FindNode("Other_Prop")), "no tag");
    EXPECT_EQ(TagOf(headless::FindNode("Camera_Lens")),
              "<TVL_tag><name>Camera</name><objectname>Lens</objectname>" + Master("Camera") +
                  "</TVL_tag>");

    ClearNodeTags();
    EXPECT_EQ(TagOf(waiting), Tag("Rig", "Hip", Master("Old")));
    EXPECT_EQ(TagOf(headless::FindNode("Rig_Hip")), "");
    EXPECT_EQ(TagOf(headless::FindNode("Other_Prop")), "");
    lens->Delete(true);
}

TEST_F(Saving, BringsNamesOfAnyBytesBack) {
    const Texts names = {"a\nb", "<&>\"'/", "\xE5\x7F\xFF\x01", "", "&#65;", " x ", "Hip"};
    for (const std::string& name : names) {
        Plugin owner("<" + name + ">");
        owner.parts = {Master("Any")};
        TVL::CoreNode* const node = Helper(owner, name);
        const std::string hostName = node->GetName();
        StoreSceneState();
        node->Delete(false);
        Texts found;
        world.Core().onCall = [&](const std::string&) {
            found = Claimed("<" + name + ">", {name});
            Claim(owner, "<" + name + ">", {name});
        };
        GatherSceneState();
        world.Core().onCall = nullptr;
        EXPECT_EQ(found, Texts{hostName});
        ASSERT_EQ(adaptor.GetNodes(&owner).size(), 1U);
        static_cast<TVL::CoreNode*>(adaptor.GetNodes(&owner)[0])->Delete(true);
    }
    EXPECT_TRUE(world.MessageBoxes().empty());

    // Blanks before a tag are no text.
    SceneNode("Blank", Tag("Rig", "  "));
    EXPECT_EQ(Claimed("Rig", {"  ", ""}), (Texts{"-", "Blank"}));
}

TEST_F(Saving, StoresTheCoresStateAsReadableTextIfThereIsAny) {
    world.Core().state = XMLNode("<TVL version='1'/>");
    EXPECT_TRUE(SavedChunks().empty());

    world.Core().state.AddChild(XMLNode("take", "Walk"));
    const std::string text = "<TVL version=\"1\">\n\t<take>Walk</take>\n</TVL>";
    const std::vector<std::byte> expected = headless::SavedBytes([&](ISave* save) {
        save->BeginChunk(1032);
        save->WriteCString(text.c_str());
        return save->EndChunk();
    });
    EXPECT_EQ(SavedChunks(), expected);

    UtilityManager::Get().DetachCore();
    EXPECT_TRUE(SavedChunks().empty());
    EXPECT_EQ(Load(expected), IO_OK);
    EXPECT_TRUE(States().empty());
}

TEST_F(Saving, GivesTheCoreEachStoredStateAndThenTheOlderOnes) {
    const std::vector<std::byte> chunks = headless::SavedBytes([](ISave* save) {
        for (const char* text : {"<TVL><a/></TVL>", "<TVL><b/><c x='1>2'/><d/></TVL>", ""}) {
            save->BeginChunk(1032);
            save->WriteCString(text);
            save->EndChunk();
            save->BeginChunk(7);
            save->EndChunk();
        }
        return IO_OK;
    });
    EXPECT_EQ(Load(chunks), IO_OK);
    EXPECT_EQ(States(), (Texts{"<TVL><a/></TVL>", "<TVL><b/></TVL>", "", "<TVL/>"}));

    EXPECT_EQ(Load({}), IO_OK);
    EXPECT_EQ(States(), Texts{"<TVL/>"});

    // A text that cannot be read ends the loading where it is.
    const std::vector<std::byte> withoutText = headless::SavedBytes([](ISave* save) {
        save->BeginChunk(1032);
        save->WriteCString("<TVL><a/></TVL>");
        save->EndChunk();
        save->BeginChunk(1032);
        return save->EndChunk();
    });
    const auto loadAsFarAsItGoes = [&] {
        headless::LoadBytes(withoutText, [](ILoad* load) {
            EXPECT_NE(UtilityManager::Get().Load(load), IO_OK);
            EXPECT_EQ(load->CurChunkID(), 1032);
            return IO_OK;
        });
        EXPECT_EQ(States(), Texts{"<TVL><a/></TVL>"});
    };
    loadAsFarAsItGoes();

    // What the Core has not taken by then is in no chunk that the host would keep.
    world.Core().onCall = [](const std::string&) { throw 1; };
    loadAsFarAsItGoes();
    world.Core().onCall = nullptr;
    world.Core().state = XMLNode("<TVL><b/></TVL>");
    const std::vector<std::byte> saved = SavedChunks();
    world.Session().NewScene();
    EXPECT_EQ(Load(saved), IO_OK);
    EXPECT_EQ(States(), (Texts{"<TVL><a/></TVL>", "<TVL><b/></TVL>", "<TVL/>"}));
    EXPECT_LT(SavedChunks().size(), saved.size());
}

// The Core refuses the first of two states, and there is no memory for what comes then.
TEST_F(Saving, LosesNoStateForWantOfMemory) {
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
        EXPECT_EQ(world.Session().OpenScene(file).error, "");
        world.Core().onCall = nullptr;
    };
    save("<TVL><a/></TVL>", file);
    openRefusing();
    save("<TVL><b/></TVL>", file);
    while (hasFailed) {
        ++nth;
        openRefusing();
        save("<TVL><c/></TVL>", again);
        States();
        EXPECT_EQ(world.Session().OpenScene(again).error, "");
        const Texts states = States();
        for (const char* state : {"<TVL><a/></TVL>", "<TVL><b/></TVL>", "<TVL><c/></TVL>"})
            EXPECT_EQ(std::ranges::count(states, state), 1) << nth << state;
    }
    EXPECT_GT(nth, 10U);
}

}  // namespace
