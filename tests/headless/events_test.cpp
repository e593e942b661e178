#include <vector>

#include "host/animate.h"
#include "host/notify.h"
#include "host/time.h"
#include "host/units.h"
#include "tests/headless/host_world.h"
#include "tests/support/folder/temporary_folder.h"

namespace {

// Counts what it is told, and can answer by registering or unregistering.
struct Ear {
    int told = 0;
    std::function<void()> answer;

    static void Hear(void* param, NotifyInfo*) {
        auto* ear = static_cast<Ear*>(param);
        ++ear->told;
        if (ear->answer) ear->answer();
    }
    void Listen() { RegisterNotification(&Hear, this, NOTIFY_SYSTEM_PRE_NEW); }
    int Leave() { return UnRegisterNotification(&Hear, this, NOTIFY_SYSTEM_PRE_NEW); }
};

using EventsTest = HostWorld;

TEST_F(EventsTest, ListenersMayComeAndGoWhileTheyAreTold) {
    Ear first, second, late;
    first.answer = [&] {
        second.Leave();
        late.Listen();
    };
    for (Ear* ear : {&first, &first, &second})
        ear->Listen();
    session.NewScene();
    EXPECT_EQ(first.told, 1);
    EXPECT_EQ(second.told + late.told, 0);
    first.answer = [&] { first.Leave(); };
    session.NewScene();
    session.NewScene();
    EXPECT_EQ(first.told, 2);
    EXPECT_EQ(late.told, 2);
    EXPECT_EQ(late.Leave(), 1);
    EXPECT_EQ(late.Leave(), 0);
}

double UnitsInAMetre() {
    int type = -1;
    float scale = 0;
    GetMasterUnitInfo(&type, &scale);
    return GetMasterScale(type) / (GetMasterScale(UNITS_METERS) * static_cast<double>(scale));
}

struct Clock final : TimeChangeCallback {
    std::vector<TimeValue> times;
    TimeChangeCallback* unwanted = nullptr;
    void TimeChanged(TimeValue t) override {
        times.push_back(t);
        GetCOREInterface()->UnRegisterTimeChangeCallback(unwanted);
    }
};

TEST_F(EventsTest, TheTimeIsToldAndNoPartOfTheSceneAndTheRangeIs) {
    Clock clock, unwanted;
    clock.unwanted = &unwanted;
    host.RegisterTimeChangeCallback(&clock);
    host.RegisterTimeChangeCallback(&unwanted);
    const auto before = headless::SceneDigest();
    host.SetTime(160);
    host.SetTime(160);
    Step([&] { host.SetTime(480); });
    session.Undo();
    EXPECT_EQ(clock.times, (std::vector<TimeValue>{160, 480}));
    EXPECT_TRUE(unwanted.times.empty());
    host.UnRegisterTimeChangeCallback(&clock);
    host.SetTime(0);
    EXPECT_EQ(clock.times.size(), 2U);
    EXPECT_EQ(headless::SceneDigest(), before);
    Step([&] { host.SetAnimRange({0, 3200}); });
    EXPECT_NE(headless::SceneDigest(), before);
    host.SetAnimRange({10, 5});
    EXPECT_EQ(host.GetAnimRange(), Interval(0, 3200));
    session.Undo();
    EXPECT_EQ(headless::SceneDigest(), before);
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
    for (const bool isEnabled : {false, true}) {
        host.EnableAnimateButton(isEnabled);
        session.PressAnimateButton(false);
        EXPECT_EQ(Animating(), !isEnabled);
    }
}

// Also the unit and the clock that a scene has brought.
TEST_F(EventsTest, ResetEmptiesSceneAndUndoAndPutsTheRestBack) {
    const TemporaryFolder folder;
    Step([&] { Add("node"); });
    EXPECT_EQ(session.SaveScene(folder.File("scene")).error, "");
    session.ShutDown();
    headless::Session metres({.frameRate = 25, .ticksPerFrame = 192, .unitType = UNITS_METERS});
    EXPECT_EQ(metres.OpenScene(folder.File("scene")).error, "");
    EXPECT_EQ(GetFrameRate(), 30);
    EXPECT_NEAR(UnitsInAMetre(), 39.37, 1e-6);
    host.SetTime(160);
    AnimateOn();
    metres.Reset();
    EXPECT_TRUE(headless::Nodes().empty());
    EXPECT_EQ(host.GetTime(), 0);
    EXPECT_EQ(host.GetAnimRange(), Interval(0, 19200));
    EXPECT_EQ(UnitsInAMetre(), 1);
    EXPECT_FALSE(Animating());
}

TEST(UnitsTest, AMetreHasAsManyHostUnitsAsTheSettingSays) {
    for (const double units : {39.37, 1.0, 100.0, 0.5}) {
        const headless::Session session(units == 39.37 ? headless::SessionSettings()
                                                       : headless::WithUnitsPerMetre(units));
        EXPECT_NEAR(UnitsInAMetre(), units, units == 39.37 ? 0 : units * 1e-6);
    }
}

}  // namespace
