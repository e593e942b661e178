#include "tests/nodes/node_test.h"
#include "tests/support/on_notification.h"

namespace {

class Merging : public NodeTest {
  protected:
    // Holds two roots "Rig_Hip" and "Rig_Cam", and "Rig_Knee" below the hip.
    const std::string path = (world.Folder() / "rig.scene").string();

    void SetUp() override {
        Helper("Knee", Helper("Hip"));
        Camera("Cam");
        EXPECT_EQ(world.Session().SaveScene(path).error, "");
        world.Session().NewScene();
        Helper("Base");
    }

    // The host's names of the nodes that come back, which are released.
    Names Merge(const std::string& file) {
        Names names;
        for (TVL::CNode* node : adaptor.MergeModels(file)) {
            EXPECT_TRUE(node->IsSnapshot());
            names.push_back(Core(node)->GetName());
            Core(node)->Destroy();
        }
        return names;
    }
};

TEST_F(Merging, GivesEachNodeOnceKeepsTheUsersSelectionAndTracesEachStep) {
    const std::string here = std::filesystem::current_path().string();
    Names expected = {"(NOTICE): \tMerging models from file",
                      "(NOTICE): \tMerge file: " + path,
                      "(NOTICE): \tGathering currently selected nodes",
                      "(NOTICE): \tClearing node selection",
                      "(NOTICE): \tAdding map dir: " + here,
                      "(NOTICE): \tMerging file...",
                      "(NOTICE): \tGathering merged nodes",
                      "(NOTICE): \tAdding node to list: Rig_Hip",
                      "(NOTICE): \tAdding node to list: Rig_Knee",
                      "(NOTICE): \tAdding node to list: Rig_Cam",
                      "(NOTICE): \tResetting selection set to previous values"};
    for (const char* scene :
         {"Rig_Base Rig_Hip(Rig_Knee) Rig_Cam", "Rig_Base* Rig_Hip(Rig_Knee) Rig_Cam"}) {
        const std::size_t before = Trace().size();
        EXPECT_EQ(Merge(path), (Names{"Rig_Hip", "Rig_Knee", "Rig_Cam"}));
        Names trace = TracedLines(before);
        trace.resize(expected.size());  // what follows is of the nodes that are released
        EXPECT_EQ(trace, expected);
        EXPECT_EQ(Scene(), scene);
        world.Session().NewScene();
        Helper("Base")->Select();
        expected.insert(expected.begin() + 3, "(NOTICE): \tgathered node: Rig_Base");
    }
    EXPECT_EQ(headless::MapDirectories(), Names{here});

    const std::string missing = (world.Folder() / "missing.scene").string();
    std::filesystem::resize_file(path, std::filesystem::file_size(path) - 1);
    const std::pair<std::string, std::string> failures[] = {
        {missing, "(WARNING): \t\tMerge failed. The scene could not be merged successfully"},
        {path, "(WARNING): \t\tMerge failed, possible corrupt scene file: " + path}};
    const std::uint64_t before = headless::SceneDigest();
    for (const auto& [file, line] : failures) {
        const std::size_t length = Trace().size();
        EXPECT_EQ(Merge(file), Names());
        EXPECT_EQ(std::ranges::count(TracedLines(length), line), 1) << file;
        EXPECT_EQ(headless::SceneDigest(), before);
    }
}

TEST_F(Merging, TakesNodesThatComeAndGoMeanwhileAndHasTheHoldOfAnOpenGroupOnlyAroundIt) {
    Helper("Box");
    world.Session().Select({"Rig_Base", "Rig_Box"});
    const OnNotification merged(NOTIFY_FILE_POST_MERGE, [](NotifyInfo&) {
        EXPECT_FALSE(theHold.Holding());
        Host("Rig_Base")->AttachChild(Host("Rig_Hip"));  // a parent comes too
        DeleteInHost("Rig_Box");
    });
    InGroup("group", [&] {
        Helper("Before");
        EXPECT_EQ(Merge(path), (Names{"Rig_Hip", "Rig_Base", "Rig_Knee", "Rig_Cam"}));
        EXPECT_TRUE(theHold.Holding());
        Helper("After");
    });
    EXPECT_EQ(Scene(), "Rig_Base*(Rig_Hip(Rig_Knee)) Rig_Before Rig_Cam Rig_After");
    EXPECT_EQ(world.Session().UndoLabels(), (Names{"group", "tmp"}));
}

}  // namespace
