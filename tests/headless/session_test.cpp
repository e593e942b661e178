#include "host/gup.h"
#include "host/units.h"
#include "host/utility_obj.h"
#include "platform/win32.h"
#include "tests/headless/host_world.h"
#include "tests/support/folder/temporary_folder.h"
#include "tests/support/test_class.h"

namespace {

// A global utility that tells what becomes of it.
struct Told final : GUP {
    explicit Told(std::uint32_t answer) : result(answer) {}

    std::uint32_t Start() override { return told += "start ", result; }
    void Stop() override { told += "stop "; }
    void DeleteThis() override {
        told += "gone ";
        delete this;
    }

    std::uint32_t result;
};

using SessionTest = HostWorld;

TEST_F(SessionTest, AUtilityRunsUntilTheShutdownIfItWantsAndBreachesAreToldAlsoAfterIt) {
    TestClass kept("Kept", GUP_CLASS_ID, {1, 1}, [] { return new Told(GUPRESULT_KEEP); });
    TestClass refusing("Not", GUP_CLASS_ID, {1, 2}, [] { return new Told(GUPRESULT_NOKEEP); });
    for (const auto& [module, reason] : {std::pair{"/nowhere/plugin.so", "/nowhere/plugin.so"},
                                         {NO_PLUGIN, "does not export LibDescription"}})
        EXPECT_NE(session.LoadPlugin(module).find(reason), std::string::npos);
    session.RegisterClass(&kept);
    session.RegisterClass(&refusing);
    session.Start();
    EXPECT_EQ(session.KeptUtilities(), 1U);
    {
        const OnNotification last(NOTIFY_SYSTEM_SHUTDOWN, [](NotifyInfo&) { told += "end "; });
        const OnNotification stray(NOTIFY_SYSTEM_PRE_NEW, [](NotifyInfo&) { theHold.Cancel(); });
        session.NewScene();
        for (int times = 0; times < 2; ++times)
            session.ShutDown();
        GetCOREInterface();
    }
    ExpectTold("start start gone end stop gone ");
    const std::string late = "UnRegisterNotification: the host has shut down";
    EXPECT_EQ(headless::TakeBreachLines(),
              (Lines{"Hold::Cancel: no hold is open (notification 7)",
                     "GetCOREInterface: the host has shut down", late, late}));
}

struct Clock final : TimeChangeCallback {
    Times times;
    std::function<void()> act = [] {};
    void TimeChanged(TimeValue t) override {
        times.push_back(t);
        act();
    }
};

TEST_F(SessionTest, ListenersMayComeAndGoWhileTheyAreTold) {
    Clock first, second, late;
    first.act = [&] {
        host.UnRegisterTimeChangeCallback(&second);
        host.RegisterTimeChangeCallback(&late);
        if (first.times.size() == 2) host.UnRegisterTimeChangeCallback(&first);
    };
    for (Clock* clock : {&first, &first, &second})
        host.RegisterTimeChangeCallback(clock);
    for (const TimeValue t : {160, 160, 320, 480})
        host.SetTime(t);
    host.UnRegisterTimeChangeCallback(&late);
    EXPECT_EQ(first.times, (Times{160, 320}));
    EXPECT_EQ(second.times, Times());
    EXPECT_EQ(late.times, (Times{320, 480}));
}

// Also the unit and the clock that a scene has brought.
TEST_F(SessionTest, ResetEmptiesSceneAndUndoAndPutsTheRestBack) {
    const TemporaryFolder folder;
    const std::string scene = folder.File("scene");
    const auto unitAndRate = [] {
        int type = -1;
        float scale = 0;
        GetMasterUnitInfo(&type, &scale);
        return std::tuple(type, scale, GetFrameRate());
    };
    Step([&] { Add("node"); });
    EXPECT_EQ(session.SaveScene(scene).error, "");
    session.ShutDown();
    headless::Session other({.frameRate = 25, .unitType = UNITS_METERS, .unitScale = 2});
    EXPECT_EQ(other.OpenScene(scene).error, "");
    EXPECT_EQ(unitAndRate(), std::tuple(0, 1.0F, 30));
    host.SetTime(160);
    host.SetAnimRange({10, 5});
    AnimateOn();
    other.Reset();
    EXPECT_TRUE(headless::Nodes().empty() && !Animating());
    EXPECT_EQ(unitAndRate(), std::tuple(UNITS_METERS, 2.0F, 25));
    EXPECT_EQ(host.GetTime(), 0);
    EXPECT_EQ(host.GetAnimRange(), Interval(0, 16000));
}

// A step joins a hold that somebody has open, and needs no record where nothing changes.
TEST_F(SessionTest, MovesAndLinksByHandAreStepsThatUndoTakesBack) {
    INode* const parent = Add("parent");
    INode* const child = Add("child");
    Place(parent, {10, 0, 0});
    Matrix3 turned;
    turned.SetRotate(AboutZ(90));
    child->SetNodeTM(0, turned);
    host.SetTime(160);
    EXPECT_TRUE(session.MoveNode(child->GetHandle(), {1, 2, 3}));
    EXPECT_TRUE(session.LinkNode(child->GetHandle(), parent->GetHandle()));
    EXPECT_TRUE(session.LinkNode(child->GetHandle(), parent->GetHandle()));
    EXPECT_TRUE(child->GetParentNode() == parent && Where(child) == Point3(1, 2, 3));
    EXPECT_NEAR(child->GetNodeTM(160).GetRow(0).y, 1, 1e-6);
    EXPECT_EQ(session.UndoLabels(), (Lines{"Link", "Move"}));
    const std::uint64_t digest = headless::SceneDigest();
    EXPECT_FALSE(session.LinkNode(parent->GetHandle(), child->GetHandle()) ||
                 session.LinkNode(parent->GetHandle(), parent->GetHandle()) ||
                 session.LinkNode(child->GetHandle(), 99) || session.LinkNode(99, 0) ||
                 session.MoveNode(0, {}) || session.MoveNode(child->GetHandle(), {0, kNaN, 0}));
    EXPECT_EQ(headless::SceneDigest(), digest);

    Step([&] { session.LinkNode(child->GetHandle(), 0); }, "somebody's");
    EXPECT_TRUE(child->GetParentNode()->IsRootNode() && Where(child) == Point3(1, 2, 3));
    EXPECT_EQ(session.UndoLabels(), (Lines{"somebody's", "Link", "Move"}));
    while (session.Undo()) {
    }
    EXPECT_TRUE(child->GetParentNode()->IsRootNode() && Where(child) == Point3());
    while (session.Redo()) {
    }
    EXPECT_EQ(Where(child), Point3(1, 2, 3));
    EXPECT_EQ(headless::TakeBreachLines(), Lines());
}

// The command panel ------------------------------------------------------------------------------

struct TellingUtility final : UtilityObj {
    void BeginEditParams(Interface*, IUtil*) override { told += "begin "; }
    void EndEditParams(Interface*, IUtil*) override { told += "end "; }
    void SelectionSetChanged(Interface* ip, IUtil*) override {
        told += "selected " + std::to_string(ip->GetSelNodeCount()) + ' ';
    }
    void DeleteThis() override { delete this; }
};

class PanelTest : public HostWorld {
  protected:
    PanelTest() {
        for (TestClass& type : classes_)
            session.RegisterClass(&type);
    }

  private:
    TestClass classes_[2] = {
        {"First Util", UTILITY_CLASS_ID, {1, 1}, [] { return new TellingUtility; }},
        {"Second Util", UTILITY_CLASS_ID, {2, 2}, [] { return new TellingUtility; }}};
};

TEST_F(PanelTest, OneUtilityIsOpenAtATimeAndHearsOfTheSelection) {
    EXPECT_FALSE(session.OpenUtility("No Util") || session.CloseUtility());
    EXPECT_TRUE(session.OpenUtility("First Util") && session.OpenUtility("First Util"));
    EXPECT_TRUE(session.OpenUtility("Second Util") && !session.IsUtilityOpen("First Util"));
    host.SelectNode(Add("node"));
    EXPECT_TRUE(session.CloseUtility());
    ExpectTold("begin end begin selected 1 end ");
}

// "Go", hidden as it is, a check box, and a text that is no button stand on the page's form.
TEST_F(PanelTest, ButtonsOfPagesAreToldAndPressedByIdOrTextAlsoWhenTheyArePlacedThere) {
    EXPECT_EQ(session.Utilities(), (Lines{"First Util", "Second Util"}));
    EXPECT_FALSE(session.PlaceButton(5, "nowhere") || session.PressButton("&Go"));
    const auto tell = [](HWND, UINT message, WPARAM wParam, LPARAM) -> INT_PTR {
        if (message == WM_COMMAND) told += std::to_string(LOWORD(wParam)) + ' ';
        return 0;
    };
    const HWND first = host.AddRollupPage(nullptr, "#20", tell, "First");
    const HWND second = host.AddRollupPage(nullptr, "#20", tell, "");
    const std::string longText(300, 'x');
    EXPECT_TRUE(session.PlaceButton(1074, "Go") && session.PlaceButton(16, longText));
    for (const headless::PageView& page : session.Pages()) {
        told += page.title + ':';
        for (const auto& [id, text] : page.buttons)
            told += ' ' + std::to_string(id) + text;
    }
    ExpectTold("First: 16&Go 17Check: 16&Go 17Check 1074Go 16" + longText);
    EXPECT_FALSE(session.PressButton("Odd") || session.PressButton("") || session.PressButton(5));
    EXPECT_TRUE(session.PressButton("Go") && session.PressButton(1074) &&
                session.PressButton(longText) && session.PressButton("Check"));
    ExpectTold("1074 1074 16 17 ");
    host.DeleteRollupPage(second);
    EXPECT_FALSE(session.PressButton(1074));
    host.DeleteRollupPage(first);
    EXPECT_TRUE(session.Pages().empty());
}

TEST_F(PanelTest, AScriptRunsAsAWholeOrNotAtAll) {
    Told runner(GUPRESULT_KEEP);
    host.SetCommandPanelTaskMode(TASK_MODE_DISPLAY);
    Step([&] { Add("node"); });
    for (const char* script :
         {"", ";;", "UtilityPanel.OpenUtility 'First_Util';max quit", "max undo undo",
          "UtilityPanel.OpenUtility First_Util", "UtilityPanel.OpenUtility 'No_Util'",
          "setCommandPanelTaskMode mode:unheard", static_cast<const char*>(nullptr)})
        EXPECT_EQ(runner.ExecuteStringScript(script), 0) << (script ? script : "none");
    ExpectTold("");
    EXPECT_NE(runner.ExecuteStringScript(
                  "panel = getCommandPanelTaskMode();UtilityPanel.OpenUtility 'First_Util';"
                  "setCommandPanelTaskMode mode:panel;max undo;"),
              0);
    ExpectTold("begin ");
    EXPECT_EQ(host.GetCommandPanelTaskMode(), TASK_MODE_DISPLAY);
    EXPECT_TRUE(headless::Nodes().empty());
}

}  // namespace
