#include <tuple>

#include "host/animate.h"
#include "host/time.h"
#include "host/units.h"
#include "tests/headless/host_world.h"
#include "tests/support/folder/temporary_folder.h"

namespace {

struct Clock final : TimeChangeCallback {
    Times times;
    std::function<void()> act;
    void TimeChanged(TimeValue t) override {
        times.push_back(t);
        if (act) act();
    }
};

using EventsTest = HostWorld;

TEST_F(EventsTest, ListenersMayComeAndGoWhileTheyAreTold) {
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

TEST_F(EventsTest, SuspensionsOfTheAnimateModeNestAndForgetWhatHappenedInside) {
    AnimateOn();
    SuspendAnimate();
    EXPECT_FALSE(Animating());
    SuspendAnimate();
    AnimateOn();
    for (const bool isOn : {false, true, true}) {
        ResumeAnimate();
        EXPECT_EQ(Animating(), isOn);
    }
}

// Also the unit and the clock that a scene has brought.
TEST_F(EventsTest, ResetEmptiesSceneAndUndoAndPutsTheRestBack) {
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
    EXPECT_TRUE(headless::Nodes().empty());
    EXPECT_EQ(unitAndRate(), std::tuple(UNITS_METERS, 2.0F, 25));
    EXPECT_EQ(host.GetTime(), 0);
    EXPECT_EQ(host.GetAnimRange(), Interval(0, 16000));
    EXPECT_FALSE(Animating());
}

}  // namespace
