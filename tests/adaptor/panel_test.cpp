#include "adaptor/panel.h"

#include <gtest/gtest.h>

#include "headless/primitives.h"
#include "host/hold.h"
#include "platform/testing.h"
#include "tests/adaptor/attach_panel.h"
#include "tests/support/world.h"

namespace {

using Calls = PuppetCore::Calls;

TEST(Panel, TheControlDoesWhatItSaysAndAttachesForAnyTextButDetach) {
    World world;
    {
        const AttachPanel panel;
        EXPECT_EQ(panel.Text(), "Detach");
        EXPECT_TRUE(IsWindowVisible(panel.Control()));
        panel.Press();
        EXPECT_FALSE(AttachedCore());
        EXPECT_EQ(panel.Text(), "Attach");
    }
    const AttachPanel panel;
    EXPECT_EQ(panel.Text(), "Attach");
    world.Core().TakeCalls();
    theHold.Begin();
    GetCOREInterface()->CreateObjectNode(headless::NewSphere(1, 8));
    theHold.Accept("sphere");
    panel.Press();
    EXPECT_TRUE(world.Session().UndoLabels().empty());
    EXPECT_EQ(world.Core().TakeCalls(),
              (Calls{"bind 1027", "bind 1030", "option node 1028", "set state <TVL/>"}));
    for (const char* text : {"detach", "Detach ", ""}) {
        EXPECT_EQ(panel.Text(), "Detach");
        SetWindowTextA(panel.Control(), text);
        panel.Press();
        EXPECT_EQ(AttachedCore(), &world.Core());
        EXPECT_EQ(puppet::TheStage().attachCount, 2);
    }
}

TEST(Panel, ACoreInstalledLaterCanBeAttachedAndHearsTheHost) {
    World world(WorldSettings{.core = kNoPuppet});
    const AttachPanel panel;
    panel.Press();
    EXPECT_EQ(panel.Text(), "Attach");
    world.Install(kWholePuppet);
    panel.Press();
    EXPECT_EQ(panel.Text(), "Detach");
    world.Core().TakeCalls();
    world.Session().SetTime(4800);
    EXPECT_EQ(world.Core().TakeCalls(), (Calls{"time 1"}));

    // Stop is for good, and no attach after it makes the host tell of the time twice.
    UtilityManager::Get().Stop();
    for (int press = 0; press < 2; ++press)
        panel.Press();
    world.Core().TakeCalls();
    world.Session().SetTime(0);
    world.Session().NewScene();
    EXPECT_EQ(world.Core().TakeCalls(), (Calls{"time 0"}));
    panel.Press();
}

TEST(Panel, TheUtilityOpensOnePageAndForgetsIt) {
    World world;
    world.Session().CloseUtility();
    EXPECT_EQ(UtilityManager::Get().panelWindow, nullptr);
    const std::size_t windows = platform::CountWindows();

    auto* const utility = new TarvoUtilityObj;
    std::size_t withPage = 0;
    for (int times = 0; times < 2; ++times) {
        utility->BeginEditParams(GetCOREInterface(), nullptr);
        EXPECT_TRUE(times == 0 || platform::CountWindows() == withPage);
        withPage = platform::CountWindows();
    }
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
