#include <algorithm>
#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "host/hold.h"
#include "host/interface.h"
#include "tests/nodes/node_test.h"
#include "tests/support/on_notification.h"

namespace {

struct OnMerged : OnNotification {
    explicit OnMerged(const std::function<void()>& act)
        : OnNotification(NOTIFY_FILE_POST_MERGE, [act](NotifyInfo&) { act(); }) {}
};

using Lines = std::vector<std::string>;

class MergingTest : public NodeTest {
  protected:
    // Two roots "Rig_Hip" and "Rig_Cam", and "Rig_Knee" below the hip.
    std::string SavedRig() {
        Node* const hip = Helper("Hip");
        Helper("Knee", hip);
        Camera("Cam");
        const std::string path = (world.Folder() / "rig.scene").string();
        EXPECT_EQ(world.Session().SaveScene(path).error, "");
        return path;
    }

    // The host's names of nodes that came back, which are released.
    static Lines Released(const std::vector<TVL::CNode*>& nodes) {
        Lines names;
        for (TVL::CNode* node : nodes) {
            EXPECT_TRUE(node->IsSnapshot());
            names.push_back(Core(node)->GetName());
            Core(node)->Destroy();
        }
        return names;
    }
    Lines Merge(const std::string& path) { return Released(adaptor.MergeModels(path)); }

    // What `work` adds to the trace.
    template <class Work>
    static Lines Traced(Work work) {
        const std::size_t before = Trace().size();
        work();
        return TracedLines(before);
    }
};

TEST_F(MergingTest, TheCoreGetsEachMergedNodeOnceTheUserKeepsTheSelectionAndTheTraceHasEachStep) {
    const std::string path = SavedRig();
    const std::string here = std::filesystem::current_path().string();
    for (const bool isSelected : {true, false}) {
        world.Session().NewScene();
        Helper("Box");
        world.Session().Select({isSelected ? "Rig_Box" : "nobody"});
        const Lines before = Selected();
        std::vector<TVL::CNode*> merged;
        const Lines trace = Traced([&] { merged = adaptor.MergeModels(path); });
        EXPECT_EQ(Released(merged), (Lines{"Rig_Hip", "Rig_Knee", "Rig_Cam"}));
        EXPECT_EQ(Selected(), before);
        Lines expected = {"(NOTICE): \tMerging models from file",
                          "(NOTICE): \tMerge file: " + path,
                          "(NOTICE): \tGathering currently selected nodes",
                          "(NOTICE): \tgathered node: Rig_Box",
                          "(NOTICE): \tClearing node selection",
                          "(NOTICE): \tAdding map dir: " + here,
                          "(NOTICE): \tMerging file...",
                          "(NOTICE): \tGathering merged nodes",
                          "(NOTICE): \tAdding node to list: Rig_Hip",
                          "(NOTICE): \tAdding node to list: Rig_Knee",
                          "(NOTICE): \tAdding node to list: Rig_Cam",
                          "(NOTICE): \tResetting selection set to previous values"};
        if (!isSelected) expected.erase(expected.begin() + 3);
        EXPECT_EQ(trace, expected);
    }
    EXPECT_EQ(headless::MapDirectories(), Lines{here});
    EXPECT_TRUE(world.MessageBoxes().empty());
}

TEST_F(MergingTest, AFileThatCannotBeMergedIsToldInTheTraceAndNothingElseChanges) {
    const std::string missing = (world.Folder() / "missing.scene").string();
    const std::string damaged = SavedRig();
    std::filesystem::resize_file(damaged, std::filesystem::file_size(damaged) - 1);
    const std::pair<std::string, std::string> cases[] = {
        {missing, "(WARNING): \t\tMerge failed. The scene could not be merged successfully"},
        {damaged, "(WARNING): \t\tMerge failed, possible corrupt scene file: " + damaged}};
    world.Session().Select({"Rig_Knee"});
    const auto before = headless::SceneDigest();
    for (const auto& [path, line] : cases) {
        Lines merged;
        const Lines trace = Traced([&, &file = path] { merged = Merge(file); });
        EXPECT_EQ(merged, Lines());
        EXPECT_EQ(std::ranges::count(trace, line), 1) << path;
        EXPECT_EQ(headless::SceneDigest(), before);
    }
}

TEST_F(MergingTest, APresentNodeThatBecomesAParentComesToo) {
    const std::string path = SavedRig();
    world.Session().NewScene();
    Helper("Base");
    const OnMerged adopt([] { Host("Rig_Base")->AttachChild(Host("Rig_Hip")); });
    EXPECT_EQ(Merge(path), (Lines{"Rig_Hip", "Rig_Base", "Rig_Knee", "Rig_Cam"}));
}

TEST_F(MergingTest, ASelectedNodeThatGoesDuringTheMergeIsPassedOver) {
    const std::string path = SavedRig();
    world.Session().NewScene();
    Helper("Base");
    Helper("Box");
    world.Session().Select({"Rig_Base", "Rig_Box"});
    const OnMerged drop([] { GetCOREInterface()->DeleteNode(Host("Rig_Box")); });
    EXPECT_EQ(Merge(path).size(), 3U);
    EXPECT_EQ(Selected(), Lines{"Rig_Base"});
}

TEST_F(MergingTest, TheHoldOfAnOpenGroupIsOpenBeforeAndAfterButNotDuringTheMerge) {
    const std::string path = SavedRig();
    world.Session().NewScene();
    bool held = true;
    const OnMerged look([&] { held = theHold.Holding(); });
    InGroup("group", [&] {
        Helper("Before");
        EXPECT_EQ(Merge(path).size(), 3U);
        EXPECT_TRUE(theHold.Holding());
        Helper("After");
    });
    EXPECT_FALSE(held);
    EXPECT_EQ(world.Session().UndoLabels(), (Lines{"group", "tmp"}));

    // The merge is in neither step, and both go and come around it.
    const auto after = headless::SceneDigest();
    while (world.Session().Undo()) {
    }
    EXPECT_EQ(headless::Nodes().size(), 3U);
    while (world.Session().Redo()) {
    }
    EXPECT_EQ(headless::SceneDigest(), after);
}

}  // namespace
