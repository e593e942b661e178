#include <gtest/gtest.h>

#include "adaptor/utility_manager.h"
#include "headless/scene_view.h"
#include "host/animate.h"
#include "host/hold.h"
#include "nodes/node_list.h"
#include "tests/support/world.h"

namespace {

// A Core that leaves all its things behind and is gone from memory.
class Departure : public testing::TestWithParam<bool> {
  protected:
    World world{WorldSettings{.refuses = true}};

    // Attaches the littering Core; the parameter says whether it refuses after that.
    void AttachLitter() {
        puppet::Stage& stage = puppet::TheStage();
        stage.core = GetParam() ? nullptr : &world.Core();
        stage.onAttach = [this] {
            puppet::Stage& here = puppet::TheStage();
            world.Core().otherButton = here.litter(*here.adaptor);
        };
        UtilityManager::Get().AttachCore();
        stage.onAttach = nullptr;
        world.Core().otherButton = nullptr;
    }
};

TEST_P(Departure, LeavesNothingThatCanCallIntoTheFreedLibrary) {
    AttachLitter();
    const bool isAttached = !GetParam();
    EXPECT_EQ(theHold.Holding(), isAttached);
    EXPECT_NE(world.Session().AnimateButtonEnabled(), isAttached);
    EXPECT_EQ(TVL::Log::external, isAttached);
    EXPECT_EQ(AdaptorNodes().nodes.size(), isAttached ? 1U : 0U);
    EXPECT_TRUE(puppet::TheStage().isLoaded);

    UtilityManager::Get().DetachCore();
    EXPECT_FALSE(puppet::TheStage().isLoaded);
    EXPECT_FALSE(theHold.Holding());
    EXPECT_TRUE(world.Session().AnimateButtonEnabled());
    EXPECT_TRUE(world.Session().AcceleratorsEnabled());
    EXPECT_FALSE(TVL::Log::external);
    EXPECT_FALSE(TVL::ErrorCode::external);

    // The work stays, as one step that goes and comes.
    ASSERT_EQ(world.Session().UndoLabels().front(), "outer");
    EXPECT_NE(headless::FindNode("Litter_left"), nullptr);
    ASSERT_TRUE(world.Session().Undo());
    EXPECT_EQ(headless::FindNode("Litter_left"), nullptr);
    ASSERT_TRUE(world.Session().Redo());
    EXPECT_NE(headless::FindNode("Litter_left"), nullptr);

    world.Session().Select({"Litter_left"});
    world.Session().DeleteSelected();
    ASSERT_TRUE(world.Session().Undo());

    // And another Core finds an adaptor as new.
    puppet::TheStage().core = &world.Core();
    EXPECT_EQ(UtilityManager::Get().AttachCore(), 0);
    EXPECT_EQ(AttachedCore(), &world.Core());
    EXPECT_FALSE(world.Adaptor().IsHoldingUndo());
    ASSERT_TRUE(world.Session().Undo());
    ASSERT_TRUE(world.Session().Redo());
}

TEST_P(Departure, IsToldInTheTraceAndNotHeldAgainstTheNextCore) {
    AttachLitter();
    UtilityManager::Get().DetachCore();
    puppet::TheStage().core = &world.Core();
    UtilityManager::Get().AttachCore();
    ASSERT_EQ(AttachedCore(), &world.Core());
    world.ShutDown();
    const std::string trace = world.Trace();
    for (const char* line : {"(WARNING): \tCORE left something behind in the adaptor\n",
                             "\tlog: 1\n", "\terror registry: 1\n", "\tundo chunks: 1\n",
                             "\tnodes: 1\n", "\tsnapshot nodes: ", "\trecording: 1\n",
                             "\tundo groups: 2\n", "\tkeyboard focus: 1\n"}) {
        EXPECT_NE(trace.find(line), std::string::npos) << line << trace;
    }
    constexpr const char* kWarning = "left something behind";
    EXPECT_EQ(trace.find(kWarning), trace.rfind(kWarning)) << trace;
}

// What a Core has counted on once too often is not held against it, nor against the user.
TEST(LeftCounts, GiveBackWhatWasTakenAndNoMore) {
    World world;
    world.Adaptor().RestoreFocus();
    for (const bool once : {true, false}) {
        world.Adaptor().BeginRecording({});
        world.Adaptor().BeginRecordingUnkeyed({});
        world.Adaptor().EndRecording();
        EXPECT_TRUE(Animating());
        if (!once) world.Adaptor().EndRecording();
        UtilityManager::Get().DetachCore();
        EXPECT_FALSE(Animating());
        UtilityManager::Get().AttachCore();
    }
    world.ShutDown();
    EXPECT_NE(world.Trace().find("\trecording: 1\n"), std::string::npos);
    EXPECT_EQ(world.Trace().find("\tkeyboard focus"), std::string::npos);
}

INSTANTIATE_TEST_SUITE_P(AttachedAndRefused, Departure, testing::Bool());

}  // namespace
