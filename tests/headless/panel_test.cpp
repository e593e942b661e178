#include <functional>
#include <string>
#include <utility>

#include "host/gup.h"
#include "host/utility_obj.h"
#include "platform/win32.h"
#include "tests/headless/host_world.h"
#include "tests/support/test_class.h"

namespace {

constexpr int kPage = 40;
constexpr int kGo = 41;

std::string panelEvents;
std::function<void()> onGo;
HWND openPage = nullptr;

INT_PTR CALLBACK PageProcedure(HWND, UINT message, WPARAM wParam, LPARAM) {
    if (message == WM_COMMAND && LOWORD(wParam) == kGo && onGo) onGo();
    return message == WM_INITDIALOG ? 1 : 0;
}

void OpenPage(IObjParam* panel, const std::string& event) {
    panelEvents += event;
    openPage = panel->AddRollupPage(nullptr, MAKEINTRESOURCEA(kPage), PageProcedure, "Page");
}

void ClosePage(IObjParam* panel, const std::string& event) {
    panelEvents += event;
    panel->DeleteRollupPage(openPage);
}

struct Utility final : UtilityObj {
    void BeginEditParams(Interface* ip, IUtil*) override { OpenPage(ip, "begin "); }
    void EndEditParams(Interface* ip, IUtil*) override { ClosePage(ip, "end "); }
    void SelectionSetChanged(Interface* ip, IUtil*) override {
        panelEvents += "selected " + std::to_string(ip->GetSelNodeCount()) + ' ';
    }
    void DeleteThis() override {
        panelEvents += "gone ";
        delete this;
    }
};

// A transform controller with a page of its own.
struct PagedControl final : Control {
    explicit PagedControl(std::string called) : name(std::move(called)) {}

    void BeginEditParams(IObjParam* ip, std::uint32_t, Animatable*) override {
        OpenPage(ip, "edit " + name + ' ');
    }
    void EndEditParams(IObjParam* ip, std::uint32_t, Animatable*) override {
        ClosePage(ip, "leave " + name + ' ');
    }
    SClass_ID SuperClassID() override { return CTRL_MATRIX3_CLASS_ID; }
    Class_ID ClassID() override { return {77, 0}; }
    void DeleteThis() override { delete this; }
    void GetValue(TimeValue, void*, Interval&, GetSetMethod) override {}
    void SetValue(TimeValue, void*, int, GetSetMethod) override {}

    std::string name;
};

class PanelTest : public HostWorld {
  protected:
    PanelTest() {
        for (TestClass* const type : {&first_, &second_})
            session.RegisterClass(type);
    }
    ~PanelTest() override { onGo = {}; }

    static std::string Events() { return std::exchange(panelEvents, {}); }

  private:
    static void* NewUtility() { return new Utility; }

    TestClass first_{"First Util", UTILITY_CLASS_ID, {1, 1}, NewUtility};
    TestClass second_{"Second Util", UTILITY_CLASS_ID, {2, 2}, NewUtility};
};

TEST_F(PanelTest, OneUtilityIsOpenAtATimeAndMayCloseItselfFromItsPage) {
    EXPECT_FALSE(session.OpenUtility("No Util") || session.CloseUtility() ||
                 session.PressButton(kGo));
    EXPECT_TRUE(session.OpenUtility("First Util") && session.OpenUtility("First Util"));
    EXPECT_TRUE(session.OpenUtility("Second Util") && !session.IsUtilityOpen("First Util"));
    host.SelectNode(Add("node"));
    onGo = [&] { session.CloseUtility(); };
    EXPECT_TRUE(!session.PressButton(kPage) && session.PressButton(kGo));
    EXPECT_FALSE(session.PressButton(kGo));
    session.OpenUtility("First Util");
    session.ShutDown();
    EXPECT_EQ(Events(), "begin end gone begin selected 1 end gone begin end gone ");
}

TEST_F(PanelTest, TheMotionPanelFollowsTaskSelectionAndController) {
    INode* const hip = Add("hip");
    INode* const knee = Add("knee");
    hip->SetTMController(new PagedControl("hip"));
    knee->SetTMController(new PagedControl("knee"));
    host.SelectNode(hip);
    EXPECT_EQ(Events(), "");
    host.SetCommandPanelTaskMode(TASK_MODE_MOTION);
    host.SelectNode(knee);
    host.SelectNode(hip, 0);
    host.SelectNode(hip);
    EXPECT_EQ(Events(), "edit hip leave hip edit knee leave knee edit hip ");
    Step([&] { hip->SetTMController(new PagedControl("new")); });
    session.Undo();
    EXPECT_EQ(Events(), "leave hip edit new leave new edit hip ");
    host.SetCommandPanelTaskMode(TASK_MODE_UTILITY);
    EXPECT_EQ(Events(), "leave hip ");
    host.SetCommandPanelTaskMode(TASK_MODE_MOTION);
    onGo = [&] {
        Step([&] { (new PagedControl("next"))->TransferReferences(hip->GetTMController(), true); });
    };
    session.PressButton(kGo);
    EXPECT_EQ(Events(), "edit hip leave hip edit next ") << "it replaces itself from its own page";
    host.DeleteNode(hip);
    host.SetCommandPanelTaskMode(99);
    EXPECT_EQ(Events(), "leave next ");
    EXPECT_EQ(host.GetCommandPanelTaskMode(), TASK_MODE_MOTION);
}

// Runs scripts as a plug-in does.
struct ScriptRunner final : GUP {
    std::uint32_t Start() override { return GUPRESULT_KEEP; }
    void Stop() override {}
    void DeleteThis() override {}
};

TEST_F(PanelTest, AScriptRunsAsAWholeOrNotAtAll) {
    ScriptRunner runner;
    host.SetCommandPanelTaskMode(TASK_MODE_DISPLAY);
    Step([&] { Add("node"); });
    for (const char* script :
         {"", ";;", "UtilityPanel.OpenUtility 'First_Util';max quit", "max undo undo",
          "UtilityPanel.OpenUtility First_Util", "UtilityPanel.OpenUtility 'No_Util'",
          "setCommandPanelTaskMode mode:unheard", "$ = getCommandPanelTaskMode()",
          static_cast<const char*>(nullptr)})
        EXPECT_EQ(runner.ExecuteStringScript(script), 0) << (script ? script : "none");
    EXPECT_EQ(Events(), "");
    EXPECT_NE(runner.ExecuteStringScript(
                  "panel = getCommandPanelTaskMode();UtilityPanel.OpenUtility 'First_Util';"
                  "setCommandPanelTaskMode mode:panel;max undo;"),
              0);
    EXPECT_EQ(Events(), "begin ");
    EXPECT_EQ(host.GetCommandPanelTaskMode(), TASK_MODE_DISPLAY);
    EXPECT_TRUE(headless::Nodes().empty());
    EXPECT_EQ(runner.ExecuteStringScript("max undo"), 0);
}

}  // namespace
