#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "headless/breaches.h"
#include "host/gup.h"
#include "tests/headless/host_world.h"
#include "tests/support/on_notification.h"
#include "tests/support/test_class.h"

namespace {

using Diary = std::vector<std::string>;
Diary sessionDiary;

// A global utility that tells what becomes of it.
class Told final : public GUP {
  public:
    explicit Told(std::uint32_t result) : result_(result) {}

    std::uint32_t Start() override {
        sessionDiary.push_back("start");
        if (result_ == GUPRESULT_KEEP)
            onShutdown_.emplace(NOTIFY_SYSTEM_SHUTDOWN,
                                [](NotifyInfo&) { sessionDiary.push_back("shutdown"); });
        return result_;
    }
    void Stop() override {
        sessionDiary.push_back("stop");
        onShutdown_.reset();
    }
    void DeleteThis() override {
        sessionDiary.push_back("gone");
        delete this;
    }

  private:
    std::uint32_t result_;
    std::optional<OnNotification> onShutdown_;
};

TEST(SessionTest, AGlobalUtilityRunsUntilTheShutdownUnlessItDoesNotWantToBeKept) {
    sessionDiary.clear();
    TestClass kept("Kept", GUP_CLASS_ID, {1, 1}, [] { return new Told(GUPRESULT_KEEP); });
    TestClass refusing("Refusing", GUP_CLASS_ID, {1, 2}, [] { return new Told(GUPRESULT_NOKEEP); });
    headless::Session session;
    EXPECT_NE(session.LoadPlugin("/nowhere/plugin.so").find("/nowhere/plugin.so"),
              std::string::npos);
    EXPECT_NE(session.LoadPlugin(NO_PLUGIN).find("does not export LibDescription"),
              std::string::npos);
    session.RegisterClass(&kept);
    session.RegisterClass(&refusing);
    session.Start();
    EXPECT_EQ(session.KeptUtilities(), 1U);
    session.ShutDown();
    session.ShutDown();
    EXPECT_EQ(sessionDiary, Diary({"start", "start", "gone", "shutdown", "stop", "gone"}));
}

TEST(SessionTest, ABreachIsToldWithWhatTheHostWasAboutAndAlsoAfterTheShutdown) {
    headless::Session session;
    session.Start();
    {
        const OnNotification stray(NOTIFY_FILE_POST_OPEN, [](NotifyInfo&) { theHold.Cancel(); });
        const OnNotification outer(NOTIFY_SYSTEM_PRE_NEW,
                                   [&](NotifyInfo&) { session.Announce(NOTIFY_FILE_POST_OPEN); });
        session.NewScene();
    }
    session.ShutDown();
    GetCOREInterface();
    UnRegisterNotification(nullptr, nullptr, 0);
    EXPECT_EQ(
        headless::TakeBreachLines(),
        (std::vector<std::string>{"Hold::Cancel: no hold is open (notification 10, notification 7)",
                                  "GetCOREInterface: the host has shut down",
                                  "UnRegisterNotification: the host has shut down"}));
}

using DeleteKeyTest = HostWorld;

// Hears of a deletion, and answers it.
struct Deletions : OnNotification {
    std::function<void(INodeTab&)> answer;
    int announced = 0;

    Deletions()
        : OnNotification(NOTIFY_SEL_NODES_PRE_DELETE, [this](NotifyInfo& info) {
              auto& table = *static_cast<INodeTab*>(info.callParam);
              announced = table.Count();
              EXPECT_TRUE(theHold.Holding());
              if (answer) answer(table);
          }) {}
};

TEST_F(DeleteKeyTest, TheSelectionIsAnnouncedAndWhatIsStillAnnouncedGoesInOneStep) {
    Deletions deletions;
    EXPECT_EQ(session.DeleteSelected(), 0U);
    EXPECT_EQ(deletions.announced, 0);
    INode* hip = Add("hip");
    INode* knee = Add("knee");
    Add("foot");
    Add("toe");
    EXPECT_EQ(session.Select({"hip", "knee", "foot", "nobody"}), 3U);
    deletions.answer = [&](INodeTab& table) {
        EXPECT_EQ(table[1], knee);
        table.Delete(1, 1);
        host.DeleteNode(hip);
    };
    const auto before = headless::SceneDigest();
    EXPECT_EQ(session.DeleteSelected(), 1U);
    EXPECT_EQ(deletions.announced, 3);
    EXPECT_EQ(headless::Nodes().size(), 2U);
    EXPECT_EQ(headless::FindNode("knee"), knee);
    EXPECT_EQ(session.UndoLabels(), std::vector<std::string>{"Delete"});
    session.Undo();
    EXPECT_EQ(headless::SceneDigest(), before);
}

// Whoever hears of it may end the hold that it is to be part of, and may free what is announced.
TEST_F(DeleteKeyTest, TheUsersDeletionCanBeUndoneWhateverBecomesOfTheHoldMeanwhile) {
    struct Row {
        bool isHeld;  // by a guest who has just made a node, which is selected, too
        std::function<void()> answer;
        std::size_t undone;  // nodes that come back
    };
    const auto accept = [] { theHold.Accept("guest"); };
    const auto cancel = [] { theHold.Cancel(); };
    const auto replace = [] {
        theHold.Accept("guest");
        theHold.Begin();
    };
    const auto renew = [this] { session.NewScene(); };
    const Row rows[] = {{false, accept, 1}, {false, cancel, 1}, {false, replace, 1},
                        {true, accept, 2},  {true, cancel, 1},  {true, replace, 2},
                        {true, renew, 0}};
    for (const Row& row : rows) {
        session.Reset();
        Add("kept");
        if (row.isHeld) {
            theHold.Begin();
            Add("new");
        }
        session.Select({"kept", "new"});
        Deletions deletions;
        deletions.answer = [&](INodeTab& table) {
            row.answer();
            INode* const other = Add("other");
            for (int i = 0; i < table.Count(); ++i)
                EXPECT_NE(table[i], other);
        };
        session.DeleteSelected();
        if (theHold.Holding()) theHold.Accept("guest");
        ASSERT_EQ(headless::Nodes().size(), 1U);
        session.Undo();
        std::size_t present = 0;
        for (const headless::NodeView& node : headless::Nodes())
            if (node.name != "other") ++present;
        EXPECT_EQ(present, row.undone) << &row - rows;
    }
}

TEST_F(DeleteKeyTest, HostCallsWithNodesThatAreGoneDoNothing) {
    INode* gone = nullptr;
    Step([&] { gone = Add("gone"); });
    session.Undo();
    INode* here = Add("here");
    INodeTab table;
    table.Append(1, &gone);
    host.DeleteNode(nullptr);
    const std::pair<const char*, std::function<void()>> calls[] = {
        {"DeleteNode", [&] { host.DeleteNode(gone); }},
        {"DeleteNode", [&] { host.DeleteNode(host.GetRootNode()); }},
        {"SelectNode", [&] { host.SelectNode(gone); }},
        {"SelectNodeTab", [&] { host.SelectNodeTab(table, 1); }},
        {"CloneNodes", [&] { host.CloneNodes(table, {}, false, NODE_COPY, nullptr, nullptr); }},
        {"AttachChild", [&] { here->AttachChild(gone); }},
        {"AttachChild", [&] { gone->AttachChild(here); }},
        {"SetName", [&] { gone->SetName("a"); }},
        {"GetNodeTM", [&] { gone->GetNodeTM(0); }},
    };
    for (const auto& [name, call] : calls) {
        call();
        EXPECT_EQ(headless::TakeBreachLines(),
                  Diary{name + std::string(": the node is not in the scene")});
    }
    EXPECT_FALSE(table[1]);
    EXPECT_EQ(headless::TakeBreachLines(), Diary{"Tab::operator[]: the table has no such entry"});
    EXPECT_EQ(host.GetSelNode(0), nullptr);
    EXPECT_EQ(headless::Nodes().size(), 1U);
    EXPECT_TRUE(here->GetParentNode()->IsRootNode());
}

}  // namespace
