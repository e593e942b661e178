#include "host/gup.h"
#include "host/utility_obj.h"
#include "tests/headless/host_world.h"
#include "tests/support/test_class.h"

namespace {

std::string panelEvents;

struct TellingUtility final : UtilityObj {
    void BeginEditParams(Interface*, IUtil*) override { panelEvents += "begin "; }
    void EndEditParams(Interface*, IUtil*) override { panelEvents += "end "; }
    void SelectionSetChanged(Interface* ip, IUtil*) override {
        panelEvents += "selected " + std::to_string(ip->GetSelNodeCount()) + ' ';
    }
    void DeleteThis() override { delete this; }
};

struct TellingControl final : PlainControl {
    explicit TellingControl(std::string called) : name(std::move(called)) {}
    void BeginEditParams(IObjParam*, std::uint32_t, Animatable*) override {
        panelEvents += "edit " + name + ' ';
    }
    void EndEditParams(IObjParam*, std::uint32_t, Animatable*) override {
        panelEvents += "leave " + name + ' ';
    }

    std::string name;
};

class PanelTest : public HostWorld {
  protected:
    PanelTest() {
        for (TestClass& type : classes_)
            session.RegisterClass(&type);
    }

    static void ExpectEvents(const std::string& expected) {
        EXPECT_EQ(std::exchange(panelEvents, {}), expected);
    }

  private:
    TestClass classes_[2] = {
        {"First Util", UTILITY_CLASS_ID, {1, 1}, [] { return new TellingUtility; }},
        {"Second Util", UTILITY_CLASS_ID, {2, 2}, [] { return new TellingUtility; }}};
};

TEST_F(PanelTest, OneUtilityIsOpenAtATimeAndTheMotionPanelFollowsSelectionAndController) {
    EXPECT_FALSE(session.OpenUtility("No Util") || session.CloseUtility());
    EXPECT_TRUE(session.OpenUtility("First Util") && session.OpenUtility("First Util"));
    EXPECT_TRUE(session.OpenUtility("Second Util") && !session.IsUtilityOpen("First Util"));
    INode* const hip = Add("hip");
    INode* const knee = Add("knee");
    hip->SetTMController(new TellingControl("hip"));
    knee->SetTMController(new TellingControl("knee"));
    host.SelectNode(knee);
    EXPECT_TRUE(session.CloseUtility());
    ExpectEvents("begin end begin selected 1 end ");
    host.SetCommandPanelTaskMode(TASK_MODE_MOTION);
    host.SelectNode(hip, 0);
    host.SelectNode(hip);
    Step([&] { hip->SetTMController(new TellingControl("new")); });
    session.Undo();
    host.DeleteNode(hip);
    ExpectEvents("edit knee leave knee edit hip leave hip edit new leave new edit hip leave hip ");
}

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
          "setCommandPanelTaskMode mode:unheard", static_cast<const char*>(nullptr)})
        EXPECT_EQ(runner.ExecuteStringScript(script), 0) << (script ? script : "none");
    ExpectEvents("");
    EXPECT_NE(runner.ExecuteStringScript(
                  "panel = getCommandPanelTaskMode();UtilityPanel.OpenUtility 'First_Util';"
                  "setCommandPanelTaskMode mode:panel;max undo;"),
              0);
    ExpectEvents("begin ");
    EXPECT_EQ(host.GetCommandPanelTaskMode(), TASK_MODE_DISPLAY);
    EXPECT_TRUE(headless::Nodes().empty());
}

}  // namespace
