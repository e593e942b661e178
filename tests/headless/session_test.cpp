#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "headless/breaches.h"
#include "host/gup.h"
#include "tests/headless/host_world.h"
#include "tests/support/on_notification.h"
#include "tests/support/test_class.h"

namespace {

using BreachLines = std::vector<std::string>;

// A global utility that tells what becomes of it.
struct Told final : GUP {
    Told(std::uint32_t answer, std::string& teller) : result(answer), told(teller) {}

    std::uint32_t Start() override { return told += "start ", result; }
    void Stop() override { told += "stop "; }
    void DeleteThis() override {
        told += "gone ";
        delete this;
    }

    std::uint32_t result;
    std::string& told;
};

TEST(SessionTest, AUtilityRunsUntilTheShutdownIfItWantsAndBreachesAreToldAlsoAfterIt) {
    std::string told;
    TestClass kept("Kept", GUP_CLASS_ID, {1, 1}, [&] { return new Told(GUPRESULT_KEEP, told); });
    TestClass refusing("Refusing", GUP_CLASS_ID, {1, 2},
                       [&] { return new Told(GUPRESULT_NOKEEP, told); });
    headless::Session session;
    const std::string nowhere = session.LoadPlugin("/nowhere/plugin.so");
    EXPECT_NE(nowhere.find("/nowhere/plugin.so"), std::string::npos);
    const std::string other = session.LoadPlugin(NO_PLUGIN);
    EXPECT_NE(other.find("does not export LibDescription"), std::string::npos);
    session.RegisterClass(&kept);
    session.RegisterClass(&refusing);
    session.Start();
    EXPECT_EQ(session.KeptUtilities(), 1U);
    {
        const OnNotification last(NOTIFY_SYSTEM_SHUTDOWN, [&](NotifyInfo&) { told += "end "; });
        const OnNotification stray(NOTIFY_FILE_POST_OPEN, [](NotifyInfo&) { theHold.Cancel(); });
        const OnNotification outer(NOTIFY_SYSTEM_PRE_NEW,
                                   [&](NotifyInfo&) { session.Announce(NOTIFY_FILE_POST_OPEN); });
        session.NewScene();
        session.ShutDown();
        session.ShutDown();
        GetCOREInterface();
    }
    EXPECT_EQ(told, "start start gone end stop gone ");
    const std::string late = "UnRegisterNotification: the host has shut down";
    EXPECT_EQ(headless::TakeBreachLines(),
              (BreachLines{"Hold::Cancel: no hold is open (notification 10, notification 7)",
                           "GetCOREInterface: the host has shut down", late, late, late}));
}

using DeleteKeyTest = HostWorld;

// Whoever hears of it may end the hold that it is to be part of, and may free what is announced.
TEST_F(DeleteKeyTest, TheUsersDeletionCanBeUndoneWhateverBecomesOfTheHoldMeanwhile) {
    EXPECT_EQ(session.DeleteSelected(), 0U);
    struct Row {
        bool isHeld;  // by a guest who has just made a node, which is selected, too
        std::function<void()> act;
        std::string label;   // of the last step
        std::size_t undone;  // nodes that go, and come back
    };
    const auto accept = [] { theHold.Accept("guest"); };
    const auto cancel = [] { theHold.Cancel(); };
    const auto replace = [] {
        theHold.Accept("guest");
        theHold.Begin();
    };
    const auto renew = [this] { session.NewScene(); };
    const Row rows[] = {{false, [] {}, "Delete", 1},  {false, accept, "Delete", 1},
                        {false, cancel, "Delete", 1}, {false, replace, "Delete", 1},
                        {true, accept, "Delete", 2},  {true, cancel, "Delete", 1},
                        {true, replace, "guest", 2},  {true, renew, "", 0}};
    for (const auto& [isHeld, act, label, undone] : rows) {
        session.Reset();
        for (const char* name : {"picked", "spared"})
            Add(name);
        if (isHeld) {
            theHold.Begin();
            Add("new");
        }
        EXPECT_EQ(session.Select({"picked", "new", "nobody"}), isHeld ? 2U : 1U);
        const auto hear = [this, does = act](const NotifyInfo& info) {
            EXPECT_TRUE(theHold.Holding());
            does();
            INode* const other = Add("other");
            auto& table = *static_cast<INodeTab*>(info.callParam);
            for (int i = 0; i < table.Count(); ++i)
                EXPECT_NE(table[i], other);
        };
        const OnNotification onDeletion(NOTIFY_SEL_NODES_PRE_DELETE, hear);
        EXPECT_EQ(session.DeleteSelected(), undone);
        if (theHold.Holding()) theHold.Accept("guest");
        const std::vector<std::string> labels = session.UndoLabels();
        EXPECT_EQ(labels.empty() ? "" : labels.front(), label);
        session.Undo();
        const auto isBack = [](const char* name) { return headless::FindNode(name) ? 1U : 0U; };
        EXPECT_EQ(isBack("picked") + isBack("new"), undone);
        EXPECT_EQ(isBack("spared"), label.empty() ? 0U : 1U);
    }
}

using DepartedNodeTest = HostWorld;

TEST_F(DepartedNodeTest, IsToldFromOneThatIsThereByEveryCall) {
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
                  BreachLines{name + std::string(": the node is not in the scene")});
    }
    EXPECT_FALSE(table[1]);
    EXPECT_EQ(headless::TakeBreachLines(),
              BreachLines{"Tab::operator[]: the table has no such entry"});
    EXPECT_EQ(host.GetSelNode(0), nullptr);
    EXPECT_EQ(headless::Nodes().size(), 1U);
    EXPECT_TRUE(here->GetParentNode()->IsRootNode());
}

}  // namespace
