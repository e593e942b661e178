#include <string>
#include <vector>

#include "host/gup.h"
#include "host/utility_obj.h"
#include "platform/win32.h"
#include "tests/headless/host_world.h"
#include "tests/support/test_class.h"

namespace {

constexpr int kPage = 40;
constexpr int kGo = 41;

using Diary = std::vector<std::string>;
Diary diary;
std::function<void()> onGo;

INT_PTR CALLBACK PageProcedure(HWND, UINT message, WPARAM wParam, LPARAM) {
    if (message == WM_COMMAND && LOWORD(wParam) == kGo && onGo) onGo();
    return message == WM_INITDIALOG ? 1 : 0;
}

HWND AddPage(IObjParam& panel) {
    return panel.AddRollupPage(nullptr, MAKEINTRESOURCEA(kPage), PageProcedure, "Page");
}

class Utility final : public UtilityObj {
  public:
    void BeginEditParams(Interface* ip, IUtil*) override {
        diary.push_back("begin");
        page_ = AddPage(*ip);
    }
    void EndEditParams(Interface* ip, IUtil*) override {
        diary.push_back("end");
        ip->DeleteRollupPage(page_);
    }
    void SelectionSetChanged(Interface* ip, IUtil*) override {
        diary.push_back("selected " + std::to_string(ip->GetSelNodeCount()));
    }
    void DeleteThis() override {
        diary.push_back("gone");
        delete this;
    }

  private:
    HWND page_ = nullptr;
};

// A transform controller with a page of its own.
class PagedControl final : public Control {
  public:
    explicit PagedControl(std::string name) : name_(std::move(name)) {}

    void BeginEditParams(IObjParam* ip, std::uint32_t, Animatable*) override {
        diary.push_back("edit " + name_);
        page_ = AddPage(*ip);
    }
    void EndEditParams(IObjParam* ip, std::uint32_t, Animatable*) override {
        diary.push_back("leave " + name_);
        ip->DeleteRollupPage(page_);
    }
    SClass_ID SuperClassID() override { return CTRL_MATRIX3_CLASS_ID; }
    Class_ID ClassID() override { return {77, 0}; }
    void DeleteThis() override { delete this; }
    void GetValue(TimeValue, void*, Interval&, GetSetMethod) override {}
    void SetValue(TimeValue, void*, int, GetSetMethod) override {}

    HWND page_ = nullptr;

  private:
    std::string name_;
};

class PanelTest : public HostWorld {
  protected:
    PanelTest() {
        diary.clear();
        onGo = {};
        session.RegisterClass(&first_);
        session.RegisterClass(&second_);
    }

    Diary Entries() { return std::exchange(diary, {}); }

    INode* AddPaged(const char* name) {
        INode* node = Add(name);
        node->SetTMController(new PagedControl(name));
        return node;
    }

  private:
    static void* NewUtility() { return new Utility; }

    TestClass first_{"First Util", UTILITY_CLASS_ID, {1, 1}, NewUtility};
    TestClass second_{"Second Util", UTILITY_CLASS_ID, {2, 2}, NewUtility};
};

TEST_F(PanelTest, OneUtilityIsOpenAtATimeAndMayCloseItselfFromItsPage) {
    EXPECT_FALSE(session.OpenUtility("No Util"));
    EXPECT_FALSE(session.CloseUtility());
    EXPECT_FALSE(session.PressButton(kGo));
    EXPECT_TRUE(session.OpenUtility("First Util"));
    EXPECT_TRUE(session.OpenUtility("First Util"));
    EXPECT_EQ(Entries(), Diary({"begin"}));
    EXPECT_TRUE(session.OpenUtility("Second Util"));
    EXPECT_EQ(Entries(), Diary({"end", "gone", "begin"}));
    EXPECT_FALSE(session.IsUtilityOpen("First Util"));
    host.SelectNode(Add("node"));
    EXPECT_EQ(Entries(), Diary({"selected 1"}));
    onGo = [&] { session.CloseUtility(); };
    EXPECT_FALSE(session.PressButton(kPage));
    EXPECT_TRUE(session.PressButton(kGo));
    EXPECT_FALSE(session.PressButton(kGo));
    session.OpenUtility("First Util");
    session.ShutDown();
    EXPECT_EQ(Entries(), Diary({"end", "gone", "begin", "end", "gone"}));
}

TEST_F(PanelTest, TheMotionPanelFollowsTaskSelectionAndController) {
    INode* hip = AddPaged("hip");
    INode* knee = AddPaged("knee");
    host.SelectNode(hip);
    EXPECT_EQ(Entries(), Diary());
    host.SetCommandPanelTaskMode(TASK_MODE_MOTION);
    EXPECT_EQ(Entries(), Diary({"edit hip"}));
    host.SelectNode(knee);
    EXPECT_EQ(Entries(), Diary({"leave hip", "edit knee"}));
    host.SelectNode(hip, 0);
    host.SelectNode(hip);
    EXPECT_EQ(Entries(), Diary({"leave knee", "edit hip"}));
    Step([&] { hip->SetTMController(new PagedControl("new")); });
    EXPECT_EQ(Entries(), Diary({"leave hip", "edit new"}));
    session.Undo();
    EXPECT_EQ(Entries(), Diary({"leave new", "edit hip"}));
    host.SetCommandPanelTaskMode(TASK_MODE_UTILITY);
    host.SetCommandPanelTaskMode(TASK_MODE_MOTION);
    EXPECT_EQ(Entries(), Diary({"leave hip", "edit hip"}));
    onGo = [&] {
        Step([&] {
            auto* next = new PagedControl("next");
            next->TransferReferences(hip->GetTMController(), true);
        });
    };
    EXPECT_TRUE(session.PressButton(kGo)) << "a controller that replaces itself from its own page";
    EXPECT_EQ(Entries(), Diary({"leave hip", "edit next"}));
    host.DeleteNode(hip);
    EXPECT_EQ(Entries(), Diary({"leave next"}));
    host.SetCommandPanelTaskMode(99);
    EXPECT_EQ(host.GetCommandPanelTaskMode(), TASK_MODE_MOTION);
}

// Runs scripts as a plug-in does.
class ScriptRunner final : public GUP {
  public:
    std::uint32_t Start() override { return GUPRESULT_KEEP; }
    void Stop() override {}
    void DeleteThis() override {}
};

TEST_F(PanelTest, AScriptRunsAsAWholeOrNotAtAll) {
    ScriptRunner runner;
    for (const char* script :
         {"", ";;", "UtilityPanel.OpenUtility 'First_Util';max quit", "max undo undo",
          "UtilityPanel.OpenUtility First_Util", "UtilityPanel.OpenUtility 'No_Util'", "max undo",
          "setCommandPanelTaskMode mode:unheard", "$ = getCommandPanelTaskMode()"})
        EXPECT_EQ(runner.ExecuteStringScript(script), 0) << script;
    EXPECT_EQ(runner.ExecuteStringScript(nullptr), 0);
    EXPECT_FALSE(session.IsUtilityOpen("First Util"));
    host.SetCommandPanelTaskMode(TASK_MODE_DISPLAY);
    EXPECT_NE(runner.ExecuteStringScript(
                  "panel = getCommandPanelTaskMode();UtilityPanel.OpenUtility 'First_Util';"
                  "setCommandPanelTaskMode mode:panel;"),
              0);
    EXPECT_TRUE(session.IsUtilityOpen("First Util"));
    EXPECT_EQ(host.GetCommandPanelTaskMode(), TASK_MODE_DISPLAY);
    Step([&] { Add("node"); });
    EXPECT_NE(runner.ExecuteStringScript("max undo"), 0);
    EXPECT_TRUE(headless::Nodes().empty());
}

}  // namespace
