#include "adaptor/panel.h"

#include "platform/testing.h"
#include "tests/adaptor/attach_panel.h"
#include "tests/nodes/node_test.h"

namespace {

TEST(Panel, TheControlDoesWhatItSaysAndAttachesForAnyTextButDetach) {
    World world({.core = ""});
    PuppetCore& core = world.Core();
    const AttachPanel panel;
    panel.Press();
    EXPECT_EQ(panel.Text(), "Attach");
    EXPECT_TRUE(IsWindowVisible(panel.Control()));
    world.Install("whole");
    theHold.Begin();
    GetCOREInterface()->CreateObjectNode(headless::NewSphere(1, 8));
    theHold.Accept("sphere");
    for (const char* text : {"Attach", "detach", "Detach ", ""}) {
        SetWindowTextA(panel.Control(), text);
        panel.Press();
        EXPECT_EQ(panel.Text(), "Detach");
        EXPECT_EQ(puppet::TheStage().attachCount, 1);
    }
    EXPECT_TRUE(world.Session().UndoLabels().empty());
    Names calls = core.TakeCalls();
    calls.resize(4);  // each press gathers the state
    EXPECT_EQ(calls, (Names{"bind 1027", "bind 1030", "option node 1028", "set state <TVL/>"}));
    world.Session().SetTime(4800);
    EXPECT_EQ(core.TakeCalls(), Names{"time 1"});

    // Stop is for good, and no attach after it makes the host tell of the time twice.
    UtilityManager::Get().Stop();
    panel.Press();
    EXPECT_FALSE(AttachedCore());
    EXPECT_EQ(AttachPanel().Text(), "Attach");
    panel.Press();
    core.TakeCalls();
    world.Session().SetTime(0);
    world.Session().NewScene();
    EXPECT_EQ(core.TakeCalls(), Names{"time 0"});
    panel.Press();
}

TEST(Panel, TheUtilityOpensOnePageAndForgetsIt) {
    World world;
    world.Session().CloseUtility();
    EXPECT_EQ(UtilityManager::Get().panelWindow, nullptr);
    const std::size_t windows = platform::CountWindows();
    auto* const utility = new TarvoUtilityObj;
    utility->BeginEditParams(GetCOREInterface(), nullptr);
    const std::size_t withPage = platform::CountWindows();
    utility->BeginEditParams(GetCOREInterface(), nullptr);
    EXPECT_EQ(platform::CountWindows(), withPage);
    const HWND page = UtilityManager::Get().panelWindow;
    EXPECT_TRUE(IsWindow(page));
    for (int times = 0; times < 2; ++times) {
        UtilityManager::Get().panelWindow = page;
        utility->EndEditParams(GetCOREInterface(), nullptr);
        EXPECT_EQ(UtilityManager::Get().panelWindow, nullptr);
        EXPECT_EQ(platform::CountWindows(), windows);
    }
    utility->DeleteThis();
}

}  // namespace
