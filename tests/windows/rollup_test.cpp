#include "headless/scene_view.h"
#include "headless/session.h"
#include "host/interface.h"
#include "platform/testing.h"
#include "resources/resource_ids.h"
#include "tests/support/folder/temporary_folder.h"
#include "tests/support/plugin.h"
#include "tests/support/puppet/stage.h"
#include "tests/support/puppet_core.h"

// The rollups of a library that a host loads, as real windows with real buttons.
namespace {

// The page below the host's main window that has a control of this id.
HWND PageWith(int control) {
    std::pair<int, HWND> sought{control, nullptr};
    EnumChildWindows(
        GetCOREInterface()->GetMAXHWnd(),
        [](HWND window, LPARAM at) -> BOOL {
            auto& [id, found] = *reinterpret_cast<std::pair<int, HWND>*>(at);
            if (GetDlgItem(window, id)) found = window;
            return !found;
        },
        reinterpret_cast<LPARAM>(&sought));
    return sought.second;
}

// The page of a control is of this size. It and its button are windows of the system's own classes.
// What the button's place is, the plug-in's tests read in the template.
HWND ShownPageWith(int control, const std::string& caption, RECT size) {
    const HWND page = PageWith(control);
    const HWND button = GetDlgItem(page, control);
    char texts[3][64] = {};
    GetClassNameA(page, texts[0], 64);
    GetClassNameA(button, texts[1], 64);
    GetWindowTextA(button, texts[2], 64);
    EXPECT_EQ(std::string(texts[0]) + ' ' + texts[1] + ' ' + texts[2], "#32770 Button " + caption);
    EXPECT_TRUE(IsWindowVisible(page));
    RECT inside{};
    GetClientRect(page, &inside);
    MapDialogRect(page, &size);
    EXPECT_TRUE(EqualRect(&inside, &size)) << inside.right << ' ' << inside.bottom;
    return page;
}

void Click(HWND page, int control) {
    SendMessageA(GetDlgItem(page, control), BM_CLICK, 0, 0);
}

// By the library that is delivered, and by one that was built with a kit.
class Rollups : public testing::TestWithParam<const char*> {
  protected:
    Rollups() {
        stage.core = &core;
        stage.onDetach = [this] { core.Leave(); };
        PlaceRegistry(folder, {PUPPET_CORES "/whole", ""});
        EXPECT_EQ(session.LoadPlugin(GetParam()), "");
        session.Start();
    }
    ~Rollups() override {
        session.ShutDown();
        stage = {};
        EXPECT_EQ(platform::CountWindows(), 0U);
    }

    const TemporaryFolder folder;
    PuppetCore core;
    puppet::Stage& stage = puppet::TheStage();
    headless::Session session;
};

TEST_P(Rollups, OpenTheCoreAndConvertATransformControlAtAClick) {
    HWND page = ShownPageWith(TVL::kStartButton, "Start Lumiset", {0, 0, 108, 30});
    core.TakeCalls();
    Click(page, TVL::kStartButton);
    EXPECT_EQ(core.TakeCalls(), (PuppetCore::Calls{"show"}));
    EXPECT_EQ(core.shownIn, GetCOREInterface()->GetMAXHWnd());
    session.CloseUtility();
    EXPECT_FALSE(IsWindow(page));

    Plugin rig("Rig");
    core.options[TVL::kOptimisedControllers] = true;
    stage.adaptor->CreateHelperNode(&rig, "Hip", nullptr, {}, nullptr);
    session.Select({"Rig_Hip"});
    session.SetTaskMode(TASK_MODE_MOTION);
    page = ShownPageWith(ConvertButton, "Convert to PRS controller", {0, 0, 108, 41});
    Click(page, ConvertButton);
    EXPECT_EQ(headless::FindNode("Rig_Hip")->GetTMController()->ClassID(), (Class_ID{0x2005, 0}));
    EXPECT_EQ(PageWith(ConvertButton), nullptr) << "the host shows the new controller";
    EXPECT_EQ(session.UndoLabels().front(), "Convert to PRS controller");
}

INSTANTIATE_TEST_SUITE_P(OfEachLibrary, Rollups, testing::Values(PLUGIN_MODULE, PLUGIN_WITH_KIT));

}  // namespace
