#include <gtest/gtest.h>

#include <array>
#include <string>
#include <utility>

#include "headless/scene_view.h"
#include "headless/session.h"
#include "host/interface.h"
#include "host/node.h"
#include "platform/testing.h"
#include "resources/resource_ids.h"
#include "tests/support/folder/surroundings.h"
#include "tests/support/plugin.h"
#include "tests/support/puppet/stage.h"
#include "tests/support/puppet_core.h"
#include "tvl/adaptor_interface.h"
#include "tvl/ids.h"

// The rollups of the library that a host loads, as real windows with real buttons.
namespace {

// By GetClassNameA or GetWindowTextA.
template <class Ask>
std::string Answer(Ask ask, HWND window) {
    std::array<char, 512> text{};
    ask(window, text.data(), static_cast<int>(text.size()));
    return text.data();
}

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

// A page of this size, and its button, are windows of the system's own classes. What the button's
// place is, the plug-in's tests read in the template.
void ExpectPage(HWND page, int control, const char* caption, RECT size) {
    ASSERT_TRUE(IsWindow(page));
    EXPECT_EQ(Answer(GetClassNameA, page), "#32770");
    EXPECT_TRUE(IsWindowVisible(page));
    RECT inside{};
    GetClientRect(page, &inside);
    MapDialogRect(page, &size);
    EXPECT_TRUE(EqualRect(&inside, &size)) << inside.right << ' ' << inside.bottom;
    const HWND button = GetDlgItem(page, control);
    EXPECT_EQ(Answer(GetClassNameA, button) + ": " + Answer(GetWindowTextA, button), caption);
}

class Rollups : public testing::Test {
  protected:
    Rollups() {
        stage_.core = &core_;
        stage_.onDetach = [this] { core_.Leave(); };
    }
    ~Rollups() override {
        session_.ShutDown();
        stage_ = {};
        EXPECT_EQ(platform::CountWindows(), 0U);
    }

    void Start(const char* core, const char* plugin = PLUGIN_MODULE) {
        const std::string cores = std::string(PUPPET_CORES "/") + core;
        PlaceRegistry(folder_, {cores, ""});
        ASSERT_EQ(session_.LoadPlugin(plugin), "");
        session_.Start();
    }
    void ExpectToOpenTheCoreAtAClick(const char* plugin);

    const TemporaryFolder folder_;
    PuppetCore core_;
    puppet::Stage& stage_ = puppet::TheStage();
    headless::Session session_;
};

void Rollups::ExpectToOpenTheCoreAtAClick(const char* plugin) {
    Start("whole", plugin);
    const HWND page = PageWith(StartButton);
    ExpectPage(page, StartButton, "Button: Start Lumiset", {0, 0, 108, 30});
    core_.TakeCalls();
    SendMessageA(GetDlgItem(page, StartButton), BM_CLICK, 0, 0);
    EXPECT_EQ(core_.TakeCalls(), (PuppetCore::Calls{"show"}));
    EXPECT_EQ(core_.shownIn, GetCOREInterface()->GetMAXHWnd());
    session_.CloseUtility();
    EXPECT_FALSE(IsWindow(page));
}

TEST_F(Rollups, OfTheUtilityOpenTheCore) {
    ExpectToOpenTheCoreAtAClick(PLUGIN_MODULE);
}
TEST_F(Rollups, OfALibraryBuiltWithAKitAlike) {
    ExpectToOpenTheCoreAtAClick(PLUGIN_WITH_KIT);
}

TEST_F(Rollups, OfTheUtilityTellsThatThereIsNoCore) {
    Start("other_version");
    headless::MessageBoxText box;
    session_.OnMessageBox([&](const headless::MessageBoxText& shown) { box = shown; });
    SendMessageA(GetDlgItem(PageWith(StartButton), StartButton), BM_CLICK, 0, 0);
    EXPECT_EQ(box.caption, "Tarvo Lumiset");
    EXPECT_EQ(box.text,
              "Unable to bind Core routines. Tarvo Lumiset is unable to start.\n"
              "Please re-install the software and contact Tarvo Works in case the problem "
              "persists.");
}

TEST_F(Rollups, OfATransformControlConvertsItOnceAtAClick) {
    Start("whole");
    Plugin rig("Rig");
    core_.options[TVL::kOptimisedControllers] = true;
    stage_.adaptor->CreateHelperNode(&rig, "Hip", nullptr, {}, nullptr);
    INode* const node = headless::FindNode("Rig_Hip");
    ASSERT_NE(node, nullptr);
    Control* const before = node->GetTMController();
    session_.Select({"Rig_Hip"});
    session_.SetTaskMode(TASK_MODE_MOTION);
    const HWND page = PageWith(ConvertButton);
    ExpectPage(page, ConvertButton, "Button: Convert to PRS controller", {0, 0, 108, 41});
    SendMessageA(GetDlgItem(page, ConvertButton), BM_CLICK, 0, 0);
    EXPECT_NE(node->GetTMController(), before);
    EXPECT_EQ(node->GetTMController()->ClassID(), (Class_ID{0x2005, 0}));
    EXPECT_EQ(PageWith(ConvertButton), nullptr) << "the host shows the new controller";
    EXPECT_EQ(session_.UndoLabels().front(), "Convert to PRS controller");
}

}  // namespace
