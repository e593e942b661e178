#include <gtest/gtest.h>

#include "adaptor/utility_manager.h"
#include "headless/scene_view.h"
#include "host/animate.h"
#include "host/hold.h"
#include "nodes/node_list.h"
#include "tests/support/world.h"

namespace {

// A Core that leaves all its things behind and is gone from memory; it is attached or refuses after
// that.
TEST(Departure, LeavesNothingThatCanCallIntoTheFreedLibrary) {
    for (const bool isAttached : {false, true}) {
        World world{WorldSettings{.refuses = true}};
        headless::Session& host = world.Session();
        UtilityManager& manager = UtilityManager::Get();
        puppet::Stage& stage = puppet::TheStage();
        stage.core = isAttached ? &world.Core() : nullptr;
        stage.onAttach = [&] { world.Core().otherButton = stage.litter(*stage.adaptor); };
        manager.AttachCore();
        stage.onAttach = nullptr;
        world.Core().otherButton = nullptr;
        EXPECT_TRUE(theHold.Holding() == isAttached && TVL::Log::external == isAttached);
        EXPECT_EQ(AdaptorNodes().nodes.size(), isAttached ? 1U : 0U);

        manager.DetachCore();
        EXPECT_FALSE(stage.isLoaded || theHold.Holding());
        EXPECT_TRUE(host.AnimateButtonEnabled() && host.AcceleratorsEnabled());
        EXPECT_FALSE(TVL::Log::external || TVL::ErrorCode::external);

        // The work stays, as one step that goes and comes.
        ASSERT_EQ(host.UndoLabels().front(), "outer");
        ASSERT_TRUE(host.Undo());
        EXPECT_EQ(headless::FindNode("Litter_left"), nullptr);
        ASSERT_TRUE(host.Redo());
        EXPECT_NE(headless::FindNode("Litter_left"), nullptr);
        host.Select({"Litter_left"});
        host.DeleteSelected();
        ASSERT_TRUE(host.Undo());

        // And another Core finds an adaptor as new.
        stage.core = &world.Core();
        EXPECT_EQ(manager.AttachCore(), 0);
        EXPECT_EQ(AttachedCore(), &world.Core());
        EXPECT_FALSE(world.Adaptor().IsHoldingUndo());
        ASSERT_TRUE(host.Undo() && host.Redo());

        world.ShutDown();
        const std::string trace = world.Trace();
        for (const char* line : {"(WARNING): \tCORE left something behind in the adaptor\n",
                                 "\tlog: 1\n", "\terror registry: 1\n", "\tundo chunks: 1\n",
                                 "\tnodes: 1\n", "\tsnapshot nodes: ", "\trecording: 1\n",
                                 "\tundo groups: 2\n", "\tkeyboard focus: 1\n"})
            EXPECT_NE(trace.find(line), std::string::npos) << line << trace;
        EXPECT_EQ(trace.find("left something"), trace.rfind("left something")) << trace;
    }
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

}  // namespace
