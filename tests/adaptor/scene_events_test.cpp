#include "host/hold.h"
#include "host/notify.h"
#include "nodes/node_deletion.h"
#include "scene_state/state_chunk.h"
#include "tests/adaptor/attach_panel.h"
#include "tests/scene_state/state_test.h"
#include "tests/support/trace.h"

namespace {

// A Core that has state and nodes, and claims what it is given.
class SceneEvents : public StateTest {
  protected:
    SceneEvents() {
        rig.parts = {Master("Rig")};
        Helper(rig, "Hip");
        world.Core().state = XMLNode(kState);
        world.Core().onCall = [this](const std::string& call) {
            if (call == kTags) Claim(rig, "Rig", {"Hip"});
        };
        Taken();
    }

    std::string SavedAs(const std::string& file) {
        const std::string path = (world.Folder() / file).string();
        EXPECT_EQ(world.Session().SaveScene(path).error, "");
        return path;
    }
    void Open(const std::string& path) {
        const headless::FileOutcome outcome = world.Session().OpenScene(path);
        EXPECT_TRUE(outcome.error.empty() && outcome.complaints.empty()) << outcome.error;
    }
    Texts Taken() { return world.Core().TakeCalls(); }
    static std::string HipTag() { return TagOf(headless::FindNode("Rig_Hip")); }
    void Delete(const std::vector<std::string>& names) {
        world.Session().Select(names);
        world.Session().DeleteSelected();
    }

    // What the Core is given: its own state, and the plug-ins gathered from the tags.
    static constexpr const char* kState = "<state><take>1</take></state>";
    static inline const std::string kGiven = std::string("set state ") + kState;
    static inline const std::string kTags =
        "set state <TVL><TVL_Plugin><name>Rig</name></TVL_Plugin></TVL>";
    static inline const std::string kHipTag = Tag("Rig", "Hip", Master("Rig"));
};

TEST_F(SceneEvents, EveryWorkOnAFileReachesTheCoreInItsOrder) {
    const std::string path = SavedAs("take.scene");
    EXPECT_EQ(Taken(), Texts{"get state"});
    EXPECT_EQ(rig.timesAsked, 1);
    EXPECT_EQ(HipTag(), "");
    EXPECT_NE(world.Session().SaveScene((world.Folder() / "nowhere/scene").string()).error, "");
    EXPECT_EQ(HipTag(), "");
    Taken();

    Open(path);
    EXPECT_EQ(Taken(), (Texts{"reset", kGiven, "set state <TVL/>", kTags}));
    ASSERT_EQ(world.Session().MergeScene(path).error, "");
    EXPECT_EQ(Taken(), Texts{kTags});
    EXPECT_TRUE(world.MessageBoxes().empty());

    world.Session().NewScene();
    world.Session().Reset();
    int replacing = 0;
    int adding = 1;
    for (int* kind : {&replacing, &adding, static_cast<int*>(nullptr)})
        world.Session().Announce(NOTIFY_FILE_PRE_OPEN, kind);
    EXPECT_EQ(Taken(), Texts(4, "reset"));
}

// An owner that hears of it may take nodes out of the host's table.
TEST_F(SceneEvents, EachOwnerOfNodesToBeDeletedIsToldOnceAndACoreThatRunsIsStopped) {
    int told = 0;
    rig.onDeletion = other.onDeletion = [&] { ++told; };
    Helper(rig, "Knee");
    Helper(other, "Prop");
    for (const bool isRunning : {false, true}) {
        world.Core().isRunning = isRunning;
        other.extensions.resize(isRunning ? 2 : 0);
        Delete({"Rig_Hip", "Rig_Knee", "Other_Prop"});
        EXPECT_EQ(std::exchange(told, 0), isRunning ? 2 : 1);
        EXPECT_EQ(Taken(), isRunning ? Texts{"stop"} : Texts());
        EXPECT_EQ(headless::FindNode("Rig_Hip"), nullptr);
        ASSERT_TRUE(world.Session().Undo());
        other.extensions = {43, 56};
    }
    rig.onDeletion = other.onDeletion = [&] {
        ++told;
        INodeTab& table = *DeletionInProgress().deletingNodes;
        table.Delete(0, table.Count());
    };
    Delete({"Rig_Hip", "Rig_Knee", "Other_Prop"});
    EXPECT_EQ(told, 1);
    EXPECT_NE(headless::FindNode("Rig_Hip"), nullptr);
}

// To the adaptor the scene that stays behind the announcement is the next one, in which each node
// has the handle and the address that one of the last had.
TEST_F(SceneEvents, ANodeOfTheLastSceneStandsForNoneOfTheNext) {
    auto* const kept = static_cast<TVL::CoreNode*>(adaptor.GetNodes(&rig)[0]);
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
    const std::string path = SavedAs("take.scene");
    UtilityManager::Get().DetachCore();
    Taken();

    Open(path);
    const auto opened = headless::SceneDigest();
    EXPECT_EQ(HipTag(), kHipTag);
    const std::vector<headless::UtilityChunksView> chunks = world.Session().UtilityChunks();
    ASSERT_TRUE(chunks.size() == 1 && chunks[0].isRunning && !chunks[0].isTaken);
    const std::string again = SavedAs("again.scene");
    EXPECT_EQ(headless::SceneDigest(), opened);
    ASSERT_EQ(world.Session().MergeScene(again).error, "");
    Delete({"Rig_Hip"});
    world.Session().NewScene();
    world.Session().Reset();
    EXPECT_EQ(Taken(), Texts());

    // What a Core that came too late for the scene writes stands behind what it never saw.
    Open(again);
    UtilityManager::Get().AttachCore();
    HandToCore(XMLNode());  // as a merge does, which is no reading of the state either
    world.Core().state = XMLNode("<state><take>2</take></state>");
    const std::string late = SavedAs("late.scene");
    Taken();
    Open(late);
    EXPECT_EQ(Taken(), (Texts{"reset", kGiven, "set state <state><take>2</take></state>",
                              "set state <TVL/>", kTags}));
    SavedAs("late.scene");
    EXPECT_EQ(TimesTraced("has never been read: it was opened without a CORE"), 1U);
    Open(again);
    EXPECT_TRUE(world.Session().UtilityChunks()[0].isTaken);
}

// Whatever becomes of the hold around the press that detaches.
TEST_F(SceneEvents, TheStateOutlivesADetachInEveryHold) {
    const AttachPanel panel;
    const auto press = [&] { panel.Press(); };
    const auto pressInHold = [&] {
        theHold.Begin();
        press();
    };
    const auto pressInStep = [&] {
        pressInHold();
        theHold.Accept("step");
        EXPECT_TRUE(world.Session().Undo() && world.Session().Redo());
    };
    const std::pair<const char*, std::function<void()>> rows[] = {
        {"a hold of the host's that is cancelled",
         [&] {
             pressInHold();
             theHold.Cancel();
         }},
        {"a step that is undone and done again", pressInStep},
        {"a deletion that is undone",
         [&] {
             rig.onDeletion = press;
             Delete({"Rig_Hip"});
             rig.onDeletion = nullptr;
             EXPECT_TRUE(world.Session().Undo());
         }},
    };
    for (const auto& [around, detach] : rows) {
        SCOPED_TRACE(around);
        detach();
        EXPECT_FALSE(AttachedCore());
        EXPECT_EQ(HipTag(), kHipTag);
        Taken();
        press();
        const Texts calls = Taken();
        EXPECT_TRUE(calls.back() == kTags && std::ranges::count(calls, "reset") == 0);
        EXPECT_EQ(adaptor.GetNodes(&rig).size(), 1U);
        EXPECT_EQ(HipTag(), "");
    }
    EXPECT_TRUE(world.MessageBoxes().empty());

    // And a tag that was taken up stays empty.
    press();
    pressInStep();
    EXPECT_TRUE(AttachedCore());
    EXPECT_EQ(HipTag(), "");
}

TEST_F(SceneEvents, NothingIsTakenUpByACoreThatIsLeaving) {
    const AttachPanel panel;
    world.Core().onLeave = [&] {
        panel.Press();
        SavedAs("take.scene");
        world.Session().Announce(NOTIFY_FILE_POST_MERGE);
    };
    panel.Press();
    world.Core().onLeave = nullptr;
    EXPECT_FALSE(AttachedCore());
    EXPECT_EQ(puppet::TheStage().attachCount, 1);
    EXPECT_EQ(HipTag(), kHipTag);
    EXPECT_EQ(Taken(), Texts{"get state"});
}

TEST_F(SceneEvents, ACopyMadeDuringASaveKeepsNoTagAndANodeThatACancelBringsBackCanBeClaimed) {
    INode* const merged = SceneNode("Merged", Tag("Rig", "Merged"));
    std::string copied;
    world.Core().onCall = [&](const std::string& call) {
        if (call == "get state") {
            auto* const hip = static_cast<TVL::CoreNode*>(adaptor.GetNodes(&rig)[0]);
            copied = Released({hip->Clone(false)})[0];
        } else {
            adaptor.BeginUndoGroup("try");
            GetCOREInterface()->DeleteNode(merged);
            EXPECT_EQ(Claimed("Rig", {"Merged"}), Texts{"-"});
            adaptor.CancelUndoGroup();
            EXPECT_EQ(Claimed("Rig", {"Merged"}), Texts{"Merged"});
        }
    };
    SavedAs("take.scene");
    EXPECT_EQ(TagOf(headless::FindNode(copied)), "");
    EXPECT_EQ(TagOf(merged), Tag("Rig", "Merged"));
    HandToCore(XMLNode());
    EXPECT_EQ(Taken().size(), 2U);
}

}  // namespace
