#include <gtest/gtest.h>

#include <functional>

#include "adaptor/utility_manager.h"
#include "headless/scene_view.h"
#include "host/interface.h"
#include "support/world.h"

namespace {

using Calls = PuppetCore::Calls;

class Owner final : public TVL::CoreElement {
  public:
    Owner() { plugin = &record_; }
    std::vector<int> ListExtensions() override {
        return answers ? std::vector<int>{43} : std::vector<int>{};
    }
    std::intptr_t HandleExtension(int id, void* argument) override {
        EXPECT_EQ(id, 43);
        EXPECT_EQ(argument, nullptr);
        ++told;
        if (onTold) onTold();
        return 0;
    }

    bool answers = true;
    int told = 0;
    std::function<void()> onTold;

  private:
    TVL::PluginRecord record_{"P"};
};

class NodesPreDelete : public testing::Test {
  protected:
    Owner rig;
    Owner silent;
    World world;

    void SetUp() override {
        for (const char* name : {"a", "b", "c"})
            Add(rig, name);
        silent.answers = false;
        Add(silent, "d");
        world.Core().TakeCalls();
    }
    void Add(Owner& owner, const char* name) {
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
        rig.told = 0;
        DeleteAll();
        EXPECT_EQ(rig.told, 1);
        EXPECT_EQ(silent.told, 0);
        EXPECT_EQ(world.Core().TakeCalls(), isRunning ? Calls{"stop"} : Calls());
        EXPECT_EQ(headless::FindNode("P_a"), nullptr);
        ASSERT_TRUE(world.Session().Undo());
    }
}

TEST_F(NodesPreDelete, AnOwnerMayDeleteItsNodesWhenItHears) {
    rig.onTold = [this] {
        for (TVL::CNode* node : world.Adaptor().GetNodes(&rig)) {
            static_cast<TVL::CoreNode*>(node)->Delete(true);
        }
    };
    DeleteAll();
    EXPECT_EQ(rig.told, 1);
    EXPECT_TRUE(world.Adaptor().GetNodes(&rig).empty());
    EXPECT_EQ(headless::FindNode("P_a"), nullptr);
    ASSERT_TRUE(world.Session().Undo());
    EXPECT_NE(headless::FindNode("P_a"), nullptr);
}

TEST_F(NodesPreDelete, TheCoreMayLeaveWhenItHears) {
    rig.onTold = [] { UtilityManager::Get().DetachCore(); };
    DeleteAll();
    EXPECT_EQ(rig.told, 1);
    EXPECT_FALSE(AttachedCore());
    ASSERT_TRUE(world.Session().Undo());
    EXPECT_NE(headless::FindNode("P_a"), nullptr);
}

}  // namespace
