#include <vector>

#include "host/animate.h"
#include "host/notify.h"
#include "host/time.h"
#include "host/units.h"
#include "tests/headless/host_world.h"

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
    void Leave() { UnRegisterNotification(&Hear, this, NOTIFY_SYSTEM_PRE_NEW); }
};

using EventsTest = HostWorld;

TEST_F(EventsTest, ListenersMayComeAndGoWhileTheyAreTold) {
    Ear first, second, late;
    first.answer = [&] {
        second.Leave();
        late.Listen();
    };
    first.Listen();
    first.Listen();
    second.Listen();
    session.NewScene();
    EXPECT_EQ(first.told, 1);
    EXPECT_EQ(second.told, 0);
    EXPECT_EQ(late.told, 0);
    first.answer = [&] { first.Leave(); };
    session.NewScene();
    session.NewScene();
    EXPECT_EQ(first.told, 2);
    EXPECT_EQ(late.told, 2);
    late.Leave();
    EXPECT_EQ(UnRegisterNotification(&Ear::Hear, &late, NOTIFY_SYSTEM_PRE_NEW), 0);
}

struct Clock final : TimeChangeCallback {
    std::vector<TimeValue> times;
    void TimeChanged(TimeValue t) override { times.push_back(t); }
};

TEST_F(EventsTest, EveryChangeOfTheTimeIsToldAndNoneIsUndone) {
    Clock clock;
    host.RegisterTimeChangeCallback(&clock);
    host.SetTime(160);
    host.SetTime(160);
    Step([&] { host.SetTime(480); });
    session.Undo();
    session.Redo();
    EXPECT_EQ(clock.times, (std::vector<TimeValue>{160, 480}));
    host.UnRegisterTimeChangeCallback(&clock);
    host.SetTime(0);
    EXPECT_EQ(clock.times.size(), 2U);
}

TEST_F(EventsTest, TheRangeIsPartOfTheSceneAndTheTimeIsNot) {
    const auto before = headless::SceneDigest();
    host.SetTime(320);
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
    ResumeAnimate();
    EXPECT_FALSE(Animating());
    ResumeAnimate();
    EXPECT_TRUE(Animating());
    ResumeAnimate();
    EXPECT_TRUE(Animating());
    host.EnableAnimateButton(0);
    session.PressAnimateButton(false);
    EXPECT_TRUE(Animating()) << "a disabled button";
    host.EnableAnimateButton(1);
    session.PressAnimateButton(false);
    EXPECT_FALSE(Animating());
}

TEST_F(EventsTest, ResetEmptiesSceneAndUndoAndPutsTimeAndRangeBack) {
    Step([&] { Add("node"); });
    host.SetTime(160);
    host.SetAnimRange({0, 160});
    AnimateOn();
    session.Reset();
    EXPECT_TRUE(headless::Nodes().empty());
    EXPECT_TRUE(session.UndoLabels().empty());
    EXPECT_EQ(host.GetTime(), 0);
    EXPECT_EQ(host.GetAnimRange(), Interval(0, 16000));
    EXPECT_FALSE(Animating());
}

// The factor between the Core's metres and host units.
double UnitsInAMetre() {
    int type = -1;
    float scale = 0;
    GetMasterUnitInfo(&type, &scale);
    return GetMasterScale(type) / (GetMasterScale(UNITS_METERS) * static_cast<double>(scale));
}

TEST(UnitsTest, AMetreHasAsManyHostUnitsAsTheSettingSays) {
    {
        const headless::Session inches;
        EXPECT_EQ(UnitsInAMetre(), 39.37);
    }
    for (const double units : {1.0, 100.0, 0.5}) {
        const headless::Session session(headless::WithUnitsPerMetre(units));
        EXPECT_NEAR(UnitsInAMetre(), units, units * 1e-6);
    }
}

}  // namespace
