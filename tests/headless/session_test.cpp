#include <optional>
#include <string>
#include <vector>

#include "headless/host_world.h"
#include "host/gup.h"
#include "support/on_notification.h"
#include "support/test_class.h"

namespace {

using Diary = std::vector<std::string>;
Diary diary;

// A global utility that tells what becomes of it.
class Told final : public GUP {
  public:
    explicit Told(std::uint32_t result) : result_(result) {}

    std::uint32_t Start() override {
        diary.push_back("start");
        if (result_ == GUPRESULT_KEEP)
            onShutdown_.emplace(NOTIFY_SYSTEM_SHUTDOWN,
                                [](NotifyInfo&) { diary.push_back("shutdown"); });
        return result_;
    }
    void Stop() override {
        diary.push_back("stop");
        onShutdown_.reset();
    }
    void DeleteThis() override {
        diary.push_back("gone");
        delete this;
    }

  private:
    std::uint32_t result_;
    std::optional<OnNotification> onShutdown_;
};

TEST(SessionTest, AGlobalUtilityRunsUntilTheShutdownUnlessItDoesNotWantToBeKept) {
    diary.clear();
    TestClass kept("Kept", GUP_CLASS_ID, {1, 1}, [] { return new Told(GUPRESULT_KEEP); });
    TestClass refusing("Refusing", GUP_CLASS_ID, {1, 2}, [] { return new Told(GUPRESULT_NOKEEP); });
    headless::Session session;
    session.RegisterClass(&kept);
    session.RegisterClass(&refusing);
    session.Start();
    EXPECT_EQ(session.KeptUtilities(), 1U);
    EXPECT_EQ(diary, Diary({"start", "start", "gone"}));
    session.ShutDown();
    session.ShutDown();
    EXPECT_EQ(diary, Diary({"start", "start", "gone", "shutdown", "stop", "gone"}));
}

TEST(SessionTest, AModuleThatIsNoPluginIsRefusedWithAReason) {
    headless::Session session;
    const std::string missing = session.LoadPlugin("/nowhere/plugin.so");
    EXPECT_NE(missing.find("/nowhere/plugin.so"), std::string::npos) << missing;
    const std::string noPlugin = session.LoadPlugin(NO_PLUGIN);
    EXPECT_NE(noPlugin.find("does not export LibDescription"), std::string::npos) << noPlugin;
}

using DeleteKeyTest = HostWorld;

// Hears of a deletion, and answers it.
struct Deletions : OnNotification {
    std::function<void(INodeTab&)> answer;
    int told = 0;
    int announced = 0;

    Deletions()
        : OnNotification(NOTIFY_SEL_NODES_PRE_DELETE, [this](NotifyInfo& info) {
              auto& table = *static_cast<INodeTab*>(info.callParam);
              ++told;
              announced = table.Count();
              EXPECT_TRUE(theHold.Holding());
              if (answer) answer(table);
          }) {}
};

TEST_F(DeleteKeyTest, TheSelectionIsAnnouncedAndGoesInOneStep) {
    Deletions deletions;
    EXPECT_EQ(session.DeleteSelected(), 0U);
    EXPECT_EQ(deletions.told, 0);
    Add("hip");
    Add("knee");
    Add("foot");
    EXPECT_EQ(session.Select({"hip", "foot", "nobody"}), 2U);
    const auto before = headless::SceneDigest();
    EXPECT_EQ(session.DeleteSelected(), 2U);
    EXPECT_EQ(deletions.announced, 2);
    EXPECT_EQ(headless::Nodes().size(), 1U);
    EXPECT_EQ(session.UndoLabels(), std::vector<std::string>{"Delete"});
    session.Undo();
    EXPECT_EQ(headless::SceneDigest(), before);
    EXPECT_EQ(session.RedoLabels(), std::vector<std::string>{"Delete"});
}

TEST_F(DeleteKeyTest, WhoIsToldMayTakeNodesOutOfTheTableOrDeleteThem) {
    Deletions deletions;
    INode* hip = Add("hip");
    INode* knee = Add("knee");
    Add("foot");
    session.Select({"hip", "knee", "foot"});
    deletions.answer = [&](INodeTab& table) {
        for (int i = table.Count(); i-- > 0;) {
            if (table[i] == knee) table.Delete(i, 1);
        }
        host.DeleteNode(hip);
    };
    const auto before = headless::SceneDigest();
    EXPECT_EQ(session.DeleteSelected(), 1U);
    ASSERT_EQ(headless::Nodes().size(), 1U);
    EXPECT_EQ(headless::Nodes().front().name, "knee");
    session.Undo();
    EXPECT_EQ(headless::SceneDigest(), before);
}

TEST_F(DeleteKeyTest, HostCallsWithNodesThatAreGoneDoNothing) {
    INode* gone = nullptr;
    Step([&] { gone = Add("gone"); });
    session.Undo();
    INode* here = Add("here");
    host.DeleteNode(gone);
    host.DeleteNode(nullptr);
    host.DeleteNode(host.GetRootNode());
    host.SelectNode(gone);
    here->AttachChild(gone);
    gone->AttachChild(here);
    EXPECT_EQ(host.GetSelNodeCount(), 0);
    EXPECT_EQ(host.GetSelNode(0), nullptr);
    EXPECT_EQ(headless::Nodes().size(), 1U);
    EXPECT_TRUE(here->GetParentNode()->IsRootNode());
}

}  // namespace
