#include <gtest/gtest.h>

#include "adaptor/utility_manager.h"
#include "headless/scene_view.h"
#include "host/hold.h"
#include "nodes/node_deletion.h"
#include "tests/support/plugin.h"
#include "tests/support/world.h"

namespace {

using Calls = PuppetCore::Calls;

class NodesPreDelete : public testing::Test {
  protected:
    Plugin rig{"P"};
    Plugin silent{"P"};
    int told = 0;
    World world;

    void SetUp() override {
        for (const char* name : {"a", "b", "c"})
            Add(rig, name);
        rig.onDeletion = silent.onDeletion = [this] { ++told; };
        silent.extensions.clear();
        Add(silent, "d");
        world.Core().TakeCalls();
    }
    void Add(Plugin& owner, const char* name) {
        world.Adaptor().CreateLensNode(&owner, name, nullptr, nullptr);
    }
    void DeleteAll() {
        world.Session().Select({"P_a", "P_b", "P_c", "P_d"});
        world.Session().DeleteSelected();
    }
};

TEST_F(NodesPreDelete, TellsEachOwnerOnceAndStopsACoreThatRuns) {
    for (const bool isRunning : {false, true}) {
        world.Core().isRunning = isRunning;
        told = 0;
        DeleteAll();
        EXPECT_EQ(told, 1);
        EXPECT_EQ(world.Core().TakeCalls(), isRunning ? Calls{"stop"} : Calls());
        EXPECT_EQ(headless::FindNode("P_a"), nullptr);
        ASSERT_TRUE(world.Session().Undo());
    }
}

TEST_F(NodesPreDelete, AnOwnerMayTakeNodesOutOfTheHostsTableWhenItHears) {
    silent.extensions = {43};
    rig.onDeletion = silent.onDeletion = [this] {
        ++told;
        INodeTab& table = *DeletionInProgress().deletingNodes;
        table.Delete(0, table.Count());
    };
    DeleteAll();
    EXPECT_EQ(told, 1);
    EXPECT_NE(headless::FindNode("P_a"), nullptr);
}

}  // namespace
