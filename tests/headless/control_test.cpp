#include <limits>
#include <vector>

#include "host/animate.h"
#include "tests/headless/host_world.h"

namespace {

Matrix3 Turned(double degrees, const Point3& at = {}) {
    return TurnedAboutZ(degrees) * MovedBy(at);
}

class ControlTest : public HostWorld {
  protected:
    ~ControlTest() override {
        host.FlushUndoBuffer();
        for (Control* control : made_)
            control->DeleteThis();
    }

    Control* NewTransform() { return made_.emplace_back(HostWorld::NewTransform()); }
    Control* NewFloat() { return made_.emplace_back(HostWorld::NewFloat()); }

    static void Set(Control* control, TimeValue t, float value,
                    GetSetMethod method = CTRL_ABSOLUTE) {
        control->SetValue(t, &value, 1, method);
    }
    static float Get(Control* control, TimeValue t) {
        float value = 0;
        Interval valid = FOREVER;
        control->GetValue(t, &value, valid, CTRL_ABSOLUTE);
        return value;
    }
    static void Set(Control* control, TimeValue t, const Matrix3& world,
                    const Matrix3& parent = {}) {
        SetXFormPacket packet;
        packet.tmParent = parent;
        packet.tmAxis = world;
        control->SetValue(t, &packet, 1, CTRL_ABSOLUTE);
    }
    static Matrix3 GetMatrix(Control* control, TimeValue t, const Matrix3& parent = {}) {
        Matrix3 world = parent;
        Interval valid = FOREVER;
        control->GetValue(t, &world, valid, CTRL_RELATIVE);
        return world;
    }
    static void Key(const std::function<void()>& change) {
        AnimateOn();
        change();
        AnimateOff();
    }
    static std::vector<TimeValue> KeyTimes(Animatable* animatable) {
        std::vector<TimeValue> times;
        for (int i = 0; i < animatable->NumKeys(); ++i)
            times.push_back(animatable->GetKeyTime(i));
        return times;
    }

  private:
    std::vector<Control*> made_;
};

using Times = std::vector<TimeValue>;

TEST_F(ControlTest, AFloatGoesStraightBetweenKeysRestsBeforeThemAndStaysBehindThem) {
    Control* control = NewFloat();
    Set(control, 50, 7);
    EXPECT_EQ(control->NumKeys(), 0);
    EXPECT_EQ(Get(control, -100), 7.0f);
    Key([&] {
        Set(control, 100, 20);
        Set(control, 0, 10);
    });
    EXPECT_EQ(KeyTimes(control), (Times{0, 100}));
    EXPECT_EQ(Get(control, -1), 7.0f);
    EXPECT_EQ(Get(control, 0), 10.0f);
    EXPECT_EQ(Get(control, 25), 12.5f);
    EXPECT_EQ(Get(control, 200), 20.0f);

    float sum = 3;
    Interval valid = FOREVER;
    control->GetValue(100, &sum, valid, CTRL_RELATIVE);
    EXPECT_EQ(sum, 23.0f);
    EXPECT_EQ(valid, Interval(100, 100));
    Key([&] { Set(control, 50, 1, CTRL_RELATIVE); });
    EXPECT_EQ(Get(control, 50), 16.0f);

    control->DeleteKeys(TRACK_DOALL);
    Key([&] {
        Set(control, std::numeric_limits<TimeValue>::min(), 0);
        Set(control, std::numeric_limits<TimeValue>::max(), 2);
    });
    EXPECT_NEAR(Get(control, 0), 1, 1e-6) << "a span of time that has overflowed";
}

TEST_F(ControlTest, WithoutAnimateModeAnAnimatedValueMovesAsAWhole) {
    Control* control = NewFloat();
    Control* transform = NewTransform();
    Key([&] {
        Set(control, 0, 10);
        Set(control, 100, 20);
        Set(transform, 0, Turned(0, {1, 0, 0}));
        Set(transform, 100, Turned(40, {3, 0, 0}));
    });
    Set(control, 50, 115);
    EXPECT_EQ(Get(control, 0), 110.0f);
    EXPECT_EQ(Get(control, 100), 120.0f);

    Set(transform, 0, Turned(20, {1, 5, 0}));
    ExpectNear(GetMatrix(transform, 0), Turned(20, {1, 5, 0}));
    ExpectNear(GetMatrix(transform, 100), Turned(60, {3, 5, 0}));
}

TEST_F(ControlTest, KeysAreFoundChosenAndDeletedUndoably) {
    Control* control = NewFloat();
    Key([&] {
        for (TimeValue t = 0; t <= 40; t += 10)
            Set(control, t, static_cast<float>(t));
    });
    EXPECT_EQ(control->GetKeyIndex(20), 2);
    EXPECT_EQ(control->GetKeyIndex(21), -1);
    TimeValue next = 0;
    EXPECT_TRUE(control->GetNextKeyTime(20, NEXTKEY_RIGHT, next));
    EXPECT_EQ(next, 30);
    EXPECT_TRUE(control->GetNextKeyTime(25, NEXTKEY_LEFT, next));
    EXPECT_EQ(next, 20);
    EXPECT_FALSE(control->GetNextKeyTime(0, NEXTKEY_LEFT, next));
    EXPECT_FALSE(control->GetNextKeyTime(40, NEXTKEY_RIGHT, next));
    Tab<TimeValue> inside;
    EXPECT_EQ(control->GetKeyTimes(inside, {10, 30}, 0), 3);

    Step([&] { control->DeleteTime({10, 30}, TIME_INCRIGHT); });
    EXPECT_EQ(KeyTimes(control), (Times{0, 10, 40}));
    Step([&] { control->DeleteKeyByIndex(1); });
    Step([&] { control->DeleteKeys(TRACK_DOALL); });
    control->DeleteKeyByIndex(5);
    EXPECT_EQ(control->NumKeys(), 0);
    for (int i = 0; i < 3; ++i)
        session.Undo();
    EXPECT_EQ(KeyTimes(control), (Times{0, 10, 20, 30, 40}));
    EXPECT_EQ(Get(control, 30), 30.0f);

    TrackHitTab hits;
    const TrackHitRecord hit{3, 0};
    const TrackHitRecord stranger{77, 0};
    hits.Append(1, &hit);
    hits.Append(1, &stranger);
    control->SelectKeys(hits, SELKEYS_SELECT);
    control->DeleteKeys(TRACK_DOSEL | TRACK_DOALL);
    EXPECT_EQ(KeyTimes(control), (Times{0, 10, 20, 40}));
}

TEST_F(ControlTest, UndoPassesOverKeysThatWereEditedPastTheHold) {
    Control* control = NewFloat();
    Key([&] {
        Set(control, 0, 1);
        Step([&] { Set(control, 10, 2); });
        Step([&] { Set(control, 10, 3); });
    });
    Step([&] { control->DeleteKeyAtTime(0); });
    control->DeleteKeys(TRACK_DOALL);
    Key([&] { Set(control, 0, 4); });

    for (int i = 0; i < 3; ++i)
        session.Undo();
    EXPECT_EQ(KeyTimes(control), (Times{0}));
    for (int i = 0; i < 3; ++i)
        session.Redo();
    EXPECT_EQ(KeyTimes(control), (Times{0}));
    EXPECT_EQ(Get(control, 0), 4.0f);
}

TEST_F(ControlTest, APacketMovesRotatesAndScalesInItsAxes) {
    Control* control = NewTransform();
    const Matrix3 parent = Turned(90, {8, 0, 0});
    Set(control, 0, Turned(0, {5, 0, 0}), parent);
    ExpectNear(GetMatrix(control, 0, parent), Turned(0, {5, 0, 0}));

    SetXFormPacket packet;
    packet.tmParent = parent;
    packet.tmAxis = Turned(90);
    packet.command = XFORM_MOVE;
    packet.p = {1, 0, 0};
    control->SetValue(0, &packet, 1, CTRL_RELATIVE);
    ExpectNear(GetMatrix(control, 0, parent), Turned(0, {5, 1, 0}));

    packet.tmAxis = Turned(0, {5, 0, 0});
    packet.command = XFORM_ROTATE;
    packet.q = AboutZ(90);
    control->SetValue(0, &packet, 1, CTRL_RELATIVE);
    ExpectNear(GetMatrix(control, 0, parent), Turned(90, {4, 0, 0}));

    packet.tmAxis = Turned(90, {4, 0, 0});
    packet.command = XFORM_SCALE;
    packet.p = {2, 1, 1};
    control->SetValue(0, &packet, 1, CTRL_RELATIVE);
    Matrix3 longer = Turned(90, {4, 0, 0});
    longer.SetRow(0, longer.GetRow(0) * 2);
    ExpectNear(GetMatrix(control, 0, parent), longer);

    packet.command = 4;
    control->SetValue(0, &packet, 1, CTRL_RELATIVE);
    ExpectNear(GetMatrix(control, 0, parent), longer);
}

TEST_F(ControlTest, AMirroredOrFlatMatrixComesBackFromItsParts) {
    Control* control = NewTransform();
    Matrix3 mirrored = Turned(30, {1, 2, 3});
    mirrored.SetRow(2, {0, 0, -2});
    Matrix3 flat = Turned(30);
    flat.SetRow(1, {});
    const Matrix3 nothing({}, {}, {}, {1, 2, 3});
    for (const Matrix3& matrix : {mirrored, flat, nothing}) {
        Set(control, 0, matrix);
        ExpectNear(GetMatrix(control, 0), matrix);
    }
}

TEST_F(ControlTest, RotationsTakeTheShorterWayAndScalesAndPositionsGoStraight) {
    Control* control = NewTransform();
    Matrix3 longer = Turned(-80, {10, 0, 0});
    longer.SetRow(0, longer.GetRow(0) * 3);
    Key([&] {
        Set(control, 0, Turned(190));
        Set(control, 100, longer);
    });
    Matrix3 half = Turned(235, {5, 0, 0});
    half.SetRow(0, half.GetRow(0) * 2);
    ExpectNear(GetMatrix(control, 50), half);
}

TEST_F(ControlTest, AChangeOfParentsKeepsTheWorldPathAndGoesBackWhenTurnedRound) {
    Control* control = NewTransform();
    Matrix3 big = Turned(0);
    big.Scale({2, 2, 2});
    const Matrix3 oldParent = Turned(20, {5, 0, 1});
    const Matrix3 newParent = big * Turned(-70, {0, 30, 0});
    Set(control, 0, Turned(10, {7, 7, 7}), oldParent);
    Key([&] {
        Set(control, 10, Turned(10, {1, 2, 3}), oldParent);
        Set(control, 20, Turned(50, {4, 5, 6}), oldParent);
    });
    const std::vector<TimeValue> times{0, 10, 20, 30};
    std::vector<Matrix3> path;
    for (const TimeValue t : times)
        path.push_back(GetMatrix(control, t, oldParent));

    EXPECT_EQ(control->ChangeParents(0, oldParent, newParent, path[0]), 1);
    for (std::size_t i = 0; i < times.size(); ++i)
        ExpectNear(GetMatrix(control, times[i], newParent), path[i]);
    control->ChangeParents(0, newParent, oldParent, path[0]);
    for (std::size_t i = 0; i < times.size(); ++i)
        ExpectNear(GetMatrix(control, times[i], oldParent), path[i]);
}

TEST_F(ControlTest, TheKeysOfATransformAreThoseOfItsThreeParts) {
    Control* control = NewTransform();
    Key([&] {
        Set(control, 0, Turned(0));
        Set(control, 10, Turned(10));
    });
    EXPECT_EQ(control->NumKeys(), 0);
    ASSERT_EQ(control->NumSubs(), 3);
    EXPECT_EQ(control->SubAnim(3), nullptr);
    const char* const names[] = {"Position", "Rotation", "Scale"};
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(control->SubAnimName(i), names[i]);
        EXPECT_EQ(control->SubAnim(i)->NumKeys(), 2);
    }
    Step([&] { control->SubAnim(1)->DeleteTime({0, 10}, TIME_INCLEFT | TIME_INCRIGHT); });
    ExpectNear(GetMatrix(control, 10), Turned(0));
    session.Undo();
    ExpectNear(GetMatrix(control, 10), Turned(10));
}

}  // namespace
