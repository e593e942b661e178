#include <gtest/gtest.h>

#include <string>

#include "headless/scene_file_view.h"
#include "headless/scene_view.h"
#include "tests/end_to_end/stage.h"

// Undo, redo, save and open in one running host.

namespace {

void Save(Stage& stage, const std::string& name) {
    EXPECT_EQ(stage.Host().SaveScene(stage.File(name)).error, "");
}

void Open(Stage& stage, const std::string& name) {
    const headless::FileOutcome outcome = stage.Host().OpenScene(stage.File(name));
    EXPECT_EQ(outcome.error, "");
    EXPECT_TRUE(outcome.complaints.empty());
}

void ExpectSame(const Stage& stage, const std::string& first, const std::string& second) {
    for (const headless::SceneDifference& difference : headless::CompareSceneFiles(
             stage.File(first), stage.File(second), headless::CachedKeys::kLeftOut)) {
        ADD_FAILURE() << first << " and " << second << ", " << difference.place << ": "
                      << difference.what;
    }
}

TEST(Scene, SavedAtAnyPointOfUndoAndRedoIsTheSceneOfThatPoint) {
    Stage stage;
    Save(stage, "before");
    stage.Record(stage.WriteFile("first.bvh", Walk(5)));
    Save(stage, "one");
    stage.Record(stage.WriteFile("second.bvh", Walk(8)));
    Save(stage, "two");
    ASSERT_TRUE(stage.Host().Undo());
    Save(stage, "one again");
    ExpectSame(stage, "one", "one again");
    ASSERT_TRUE(stage.Host().Undo());
    Save(stage, "undone");
    ExpectSame(stage, "before", "undone");
    ASSERT_TRUE(stage.Host().Redo());
    ASSERT_TRUE(stage.Host().Redo());
    Save(stage, "redone");
    ExpectSame(stage, "two", "redone");
}

TEST(Scene, OpenedIsRecordedOnOntoTheNodesThatAreThere) {
    Stage stage;
    const std::string walk = stage.WriteFile("walk.bvh", Walk(6));
    stage.Record(walk);
    Save(stage, "short");
    stage.Host().NewScene();
    Open(stage, "short");
    EXPECT_TRUE(stage.Host().UndoLabels().empty());
    const std::uint64_t opened = headless::SceneDigest();
    stage.WriteFile("walk.bvh", Walk(20));
    EXPECT_EQ(stage.Record(walk)["capture.1.nodes"], "3");
    EXPECT_EQ(headless::Nodes().size(), 3u);
    EXPECT_EQ(View("walk_Hip").keys.count, 20);
    Save(stage, "long");
    ASSERT_TRUE(stage.Host().Undo());
    EXPECT_EQ(headless::SceneDigest(), opened);
    Open(stage, "long");
    stage.Tell("LUMISET_CAPTURE", "");
    auto report = stage.Press();
    EXPECT_EQ(report["takes"], "1");
    EXPECT_EQ(report["take.1.nodes"], "3");
    EXPECT_EQ(report["take.1.missing"], "0");
    EXPECT_EQ(report["take.1.captures"], "1");
}

}  // namespace
