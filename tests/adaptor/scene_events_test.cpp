#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "host/animate.h"
#include "host/hold.h"
#include "host/notify.h"
#include "tests/adaptor/attach_panel.h"
#include "tests/scene_state/state_test.h"
#include "tests/support/trace.h"

namespace {

using Calls = PuppetCore::Calls;

// A Core that has state and one node, and claims what it is given.
class SceneEvents : public StateTest {
  protected:
    SceneEvents() {
        rig.parts = {Master("Rig")};
        world.Core().TakeCalls();
    }

    void ClaimWhenLoading() {
        world.Core().onCall = [this](const std::string& call) {
            if (call == kTags) Claim(rig, "Rig", {"Hip"});
        };
    }
    std::string Path(const std::string& file) const { return (world.Folder() / file).string(); }

    std::string Saved(const std::string& file = "take.scene") {
        EXPECT_EQ(world.Session().SaveScene(Path(file)).error, "");
        return Path(file);
    }
    void Open(const std::string& path) {
        const headless::FileOutcome outcome = world.Session().OpenScene(path);
        EXPECT_EQ(outcome.error, "");
        EXPECT_TRUE(outcome.complaints.empty());
    }
    Calls Taken() { return world.Core().TakeCalls(); }
    static std::string HipTag() { return TagOf(headless::FindNode("Rig_Hip")); }

    // What the Core is given: its own state, and the plug-ins gathered from the tags.
    static constexpr const char* kState = "<state><take>1</take></state>";
    static inline const std::string kTags =
        "set state <TVL><TVL_Plugin><name>Rig</name></TVL_Plugin></TVL>";
    static inline const std::string kHipTag =
        "<TVL_tag><name>Rig</name><objectname>Hip</objectname>" + Master("Rig") + "</TVL_tag>";
};

TEST_F(SceneEvents, EveryWorkOnAFileReachesTheCoreInItsOrder) {
    Helper(rig, "Hip");
    world.Core().state = XMLNode(kState);
    const std::string path = Saved();
    EXPECT_EQ(Taken(), Calls{"get state"});
    EXPECT_EQ(rig.timesAsked, 1);
    EXPECT_EQ(HipTag(), "");
    EXPECT_NE(world.Session().SaveScene(Path("nowhere/scene")).error, "");
    EXPECT_EQ(HipTag(), "");
    Taken();

    ClaimWhenLoading();
    Open(path);
    EXPECT_EQ(Taken(),
              (Calls{"reset", std::string("set state ") + kState, "set state <TVL/>", kTags}));
    ASSERT_EQ(world.Session().MergeScene(path).error, "");
    EXPECT_EQ(Taken(), Calls{kTags});
    EXPECT_TRUE(world.MessageBoxes().empty());

    world.Session().NewScene();
    world.Session().Reset();
    EXPECT_EQ(Taken(), (Calls{"reset", "reset"}));
    int replacing = 0;
    int adding = 1;
    for (void* kind :
         {static_cast<void*>(&adding), static_cast<void*>(&replacing), static_cast<void*>(nullptr)})
        world.Session().Announce(NOTIFY_FILE_PRE_OPEN, kind);
    EXPECT_EQ(Taken(), (Calls{"reset", "reset"}));
}

// To the adaptor the scene that stays behind the announcement is the next one, in which each node
// has the handle and the address that one of the last had.
TEST_F(SceneEvents, ANodeOfTheLastSceneStandsForNoneOfTheNext) {
    TVL::CoreNode* const kept = Helper(rig, "Hip");
    TVL::CoreNode* late = nullptr;
    world.Core().onCall = [&](const std::string& call) {
        if (call != "reset") return;
        late = Helper(rig, "Late");
        EXPECT_EQ(kept->GetName(), "Rig_Hip");
    };
    world.Session().Announce(NOTIFY_FILE_PRE_OPEN);
    headless::FindNode("Rig_Hip")->SetUserPropString("TVL_tag", kHipTag);
    for (TVL::CoreNode* node : {kept, late}) {
        EXPECT_EQ(node->GetName(), "");
        EXPECT_EQ(node->AcquireSnapshot(0), nullptr);
        node->Delete(true);
    }
    EXPECT_EQ(headless::Nodes().size(), 2U);
    world.Core().onCall = nullptr;
    EXPECT_EQ(Claimed("Rig", {"Hip"}), Texts{"Rig_Hip"});
}

TEST_F(SceneEvents, WithoutACoreASceneKeepsTheStateThatIsInIt) {
    Helper(rig, "Hip");
    world.Core().state = XMLNode(kState);
    const std::string path = Saved();
    UtilityManager::Get().DetachCore();
    Taken();

    Open(path);
    const auto opened = headless::SceneDigest();
    EXPECT_EQ(HipTag(), kHipTag);
    ASSERT_EQ(world.Session().UtilityChunks().size(), 1U);
    EXPECT_TRUE(world.Session().UtilityChunks()[0].isRunning);
    EXPECT_FALSE(world.Session().UtilityChunks()[0].isTaken);
    const std::string again = Saved("again.scene");
    EXPECT_EQ(headless::SceneDigest(), opened);
    ASSERT_EQ(world.Session().MergeScene(again).error, "");
    world.Session().Select({"Rig_Hip"});
    EXPECT_EQ(world.Session().DeleteSelected(), 2U);
    world.Session().NewScene();
    world.Session().Reset();
    EXPECT_EQ(Taken(), Calls());

    constexpr const char* kSavedOver = "has never been read: it was opened without a CORE";
    UtilityManager::Get().AttachCore();
    Saved("new.scene");
    EXPECT_EQ(TimesTraced(kSavedOver), 0U);
    UtilityManager::Get().DetachCore();

    // What a Core that came too late for the scene writes stands behind what it never saw.
    Open(again);
    UtilityManager::Get().AttachCore();
    world.Core().state = XMLNode("<state/>");
    world.Core().state.AddChild(XMLNode("take", "2"));
    const std::string late = Saved("late.scene");
    EXPECT_EQ(TimesTraced(kSavedOver), 1U);
    Taken();
    Open(late);
    Calls taken = Taken();
    ASSERT_EQ(taken.size(), 5U);
    EXPECT_EQ(taken[1], std::string("set state ") + kState);
    EXPECT_EQ(taken[2], "set state <state><take>2</take></state>");
    Saved("late.scene");
    EXPECT_EQ(TimesTraced(kSavedOver), 1U);
    Taken();

    ClaimWhenLoading();
    Open(again);
    EXPECT_EQ(Taken(),
              (Calls{"reset", std::string("set state ") + kState, "set state <TVL/>", kTags}));
    EXPECT_TRUE(world.Session().UtilityChunks()[0].isTaken);
}

TEST_F(SceneEvents, TheStateSurvivesDetachSaveOpenAndAttach) {
    const AttachPanel panel;
    adaptor.BeginUndoGroup("take");
    Helper(rig, "Hip");
    adaptor.EndUndoGroup();
    panel.Press();
    EXPECT_FALSE(AttachedCore());
    EXPECT_TRUE(world.Session().UndoLabels().empty());
    EXPECT_EQ(HipTag(), kHipTag);

    const std::string path = Saved();
    Open(path);
    EXPECT_EQ(HipTag(), kHipTag);
    Taken();
    ClaimWhenLoading();
    panel.Press();
    const Calls calls = Taken();
    ASSERT_FALSE(calls.empty());
    EXPECT_EQ(calls.back(), kTags);
    EXPECT_EQ(std::ranges::count(calls, "reset"), 0);
    EXPECT_EQ(adaptor.GetNodes(&rig).size(), 1U);
    EXPECT_EQ(HipTag(), "");
    EXPECT_TRUE(world.MessageBoxes().empty());

    // And again, with the Core's own save and open between.
    Saved();
    Open(path);
    panel.Press();
    panel.Press();
    EXPECT_EQ(Taken().back(), kTags);
}

// Whatever becomes of the hold around it.
TEST_F(SceneEvents, TheStateOutlivesEveryHoldThatADetachOrAnAttachIsIn) {
    const AttachPanel panel;
    ClaimWhenLoading();
    struct Row {
        const char* around;
        std::function<void(const std::function<void()>& press)> act;
    };
    const Row rows[] = {
        {"a nest of its own that is cancelled",
         [&](const auto& press) {
             adaptor.BeginUndoGroup("outer");
             adaptor.BeginUndoGroup("inner");
             adaptor.CancelUndoGroup();
             press();
         }},
        {"a hold of the host's that is cancelled",
         [](const auto& press) {
             theHold.Begin();
             press();
             theHold.Cancel();
         }},
        {"a step that is undone and done again",
         [&](const auto& press) {
             theHold.Begin();
             press();
             theHold.Accept("step");
             EXPECT_TRUE(world.Session().Undo());
             EXPECT_TRUE(world.Session().Redo());
         }},
        {"a deletion that is undone",
         [&](const auto& press) {
             rig.onDeletion = press;
             world.Session().Select({"Rig_Hip"});
             world.Session().DeleteSelected();
             rig.onDeletion = nullptr;
             EXPECT_TRUE(world.Session().Undo());
         }},
    };
    const auto press = [&] { panel.Press(); };
    Helper(rig, "Hip");
    for (const Row& row : rows) {
        SCOPED_TRACE(row.around);
        row.act(press);
        EXPECT_FALSE(AttachedCore());
        EXPECT_EQ(HipTag(), kHipTag);
        Taken();
        panel.Press();
        EXPECT_EQ(Taken().back(), kTags);
        EXPECT_EQ(adaptor.GetNodes(&rig).size(), 1U);
    }

    // And a tag that was taken up stays empty.
    panel.Press();
    rows[1].act(press);
    EXPECT_TRUE(AttachedCore());
    EXPECT_EQ(HipTag(), "");

    // The node that is deleted takes nothing of the others with it.
    Helper(rig, "Knee");
    rig.onDeletion = press;
    world.Session().Select({"Rig_Hip"});
    world.Session().DeleteSelected();
    rig.onDeletion = nullptr;
    EXPECT_EQ(headless::FindNode("Rig_Hip"), nullptr);
    Taken();
    panel.Press();
    EXPECT_EQ(Taken().back(), kTags);
}

TEST_F(SceneEvents, NothingIsTakenUpByACoreThatIsLeaving) {
    const AttachPanel panel;
    Helper(rig, "Hip");
    Taken();
    world.Core().onLeave = [&] {
        panel.Press();
        Saved();
        world.Session().Announce(NOTIFY_FILE_POST_MERGE);
    };
    panel.Press();
    world.Core().onLeave = nullptr;
    EXPECT_FALSE(AttachedCore());
    EXPECT_EQ(puppet::TheStage().attachCount, 1);
    EXPECT_EQ(HipTag(), kHipTag);
    EXPECT_EQ(Taken(), Calls{"get state"});
}

TEST_F(SceneEvents, ACopyMadeDuringASaveKeepsNoTag) {
    TVL::CoreNode* const hip = Helper(rig, "Hip");
    SceneNode("Merged", Tag("Rig", "Pending"));
    TVL::CoreNode* copy = nullptr;
    world.Core().onCall = [&](const std::string& call) {
        if (call == "get state") copy = hip->Clone(false);
    };
    Saved();
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(TagOf(headless::FindNode(copy->GetName())), "");
    EXPECT_EQ(TagOf(headless::FindNode("Merged")), Tag("Rig", "Pending"));
    copy->Destroy();
}

}  // namespace
