#include <limits>
#include <vector>

#include "host/animate.h"
#include "tests/headless/host_world.h"

namespace {

using Times = std::vector<TimeValue>;

Matrix3 Turned(double degrees, const Point3& at = {}) {
    return TurnedAboutZ(degrees) * MovedBy(at);
}

// Its first axis `factor` times as long.
Matrix3 Longer(Matrix3 matrix, float factor) {
    matrix.SetRow(0, matrix.GetRow(0) * factor);
    return matrix;
}

class ControlTest : public HostWorld {
  protected:
    ~ControlTest() override {
        host.FlushUndoBuffer();
        number->DeleteThis();
        transform->DeleteThis();
    }

    void Set(TimeValue t, float value, GetSetMethod method = CTRL_ABSOLUTE) {
        number->SetValue(t, &value, 1, method);
    }
    float Get(TimeValue t) {
        float value = 0;
        Interval valid = FOREVER;
        number->GetValue(t, &value, valid, CTRL_ABSOLUTE);
        return value;
    }
    void Set(TimeValue t, const Matrix3& world, const Matrix3& parent = {}) {
        SetXFormPacket packet;
        packet.tmParent = parent;
        packet.tmAxis = world;
        transform->SetValue(t, &packet, 1, CTRL_ABSOLUTE);
    }
    Matrix3 World(TimeValue t, Matrix3 parent = {}) {
        Interval valid = FOREVER;
        transform->GetValue(t, &parent, valid, CTRL_RELATIVE);
        return parent;
    }
    static void Key(const std::function<void()>& change) {
        AnimateOn();
        change();
        AnimateOff();
    }
    Times KeyTimes() {
        Times times;
        for (int i = 0; i < number->NumKeys(); ++i)
            times.push_back(number->GetKeyTime(i));
        return times;
    }

    Control* const number = NewFloat();
    Control* const transform = NewTransform();
};

TEST_F(ControlTest,
       AFloatGoesStraightBetweenKeysRestsBeforeThemAndMovesAsAWholeWithoutAnimateMode) {
    Set(50, 7);
    EXPECT_EQ(number->NumKeys(), 0);
    Key([&] {
        Set(100, 20);
        Set(0, 10);
    });
    EXPECT_EQ(KeyTimes(), (Times{0, 100}));
    const std::pair<TimeValue, float> values[] = {{-1, 7}, {0, 10}, {25, 12.5F}, {200, 20}};
    for (const auto& [t, value] : values)
        EXPECT_EQ(Get(t), value);
    float sum = 3;
    Interval valid = FOREVER;
    number->GetValue(100, &sum, valid, CTRL_RELATIVE);
    EXPECT_EQ(sum, 23.0F);
    EXPECT_EQ(valid, Interval(100, 100));
    Set(50, 115);
    for (const auto& [t, value] : values)
        EXPECT_EQ(Get(t), value + 100);
    Key([&] { Set(50, 1, CTRL_RELATIVE); });
    EXPECT_EQ(Get(50), 116.0F);

    number->DeleteKeys(TRACK_DOALL);
    Key([&] {
        Set(std::numeric_limits<TimeValue>::min(), 0);
        Set(std::numeric_limits<TimeValue>::max(), 2);
    });
    EXPECT_NEAR(Get(0), 1, 1e-6) << "a span of time that has overflowed";
}

TEST_F(ControlTest, KeysAreFoundChosenAndDeletedUndoably) {
    Key([&] {
        for (TimeValue t = 0; t <= 40; t += 10)
            Set(t, static_cast<float>(t));
    });
    EXPECT_EQ(number->GetKeyIndex(20), 2);
    EXPECT_EQ(number->GetKeyIndex(21), -1);
    struct Case {
        TimeValue from;
        std::uint32_t flags;
        TimeValue next;  // -1: none
    };
    for (const Case& c : {Case{20, NEXTKEY_RIGHT, 30},
                          {25, NEXTKEY_LEFT, 20},
                          {0, NEXTKEY_LEFT, -1},
                          {40, NEXTKEY_RIGHT, -1}}) {
        TimeValue next = -1;
        EXPECT_EQ(number->GetNextKeyTime(c.from, c.flags, next), c.next >= 0);
        EXPECT_EQ(next, c.next);
    }
    Tab<TimeValue> inside;
    EXPECT_EQ(number->GetKeyTimes(inside, {10, 30}, 0), 3);

    Step([&] { number->DeleteTime({10, 30}, TIME_INCRIGHT); });
    EXPECT_EQ(KeyTimes(), (Times{0, 10, 40}));
    Step([&] { number->DeleteKeyByIndex(1); });
    Step([&] { number->DeleteKeys(TRACK_DOALL); });
    number->DeleteKeyByIndex(5);
    EXPECT_EQ(number->NumKeys(), 0);
    for (int i = 0; i < 3; ++i)
        session.Undo();
    EXPECT_EQ(KeyTimes(), (Times{0, 10, 20, 30, 40}));
    EXPECT_EQ(Get(30), 30.0F);

    TrackHitTab hits;
    const TrackHitRecord named[] = {{3, 0}, {77, 0}};
    hits.Append(2, named);
    number->SelectKeys(hits, SELKEYS_SELECT);
    number->DeleteKeys(TRACK_DOSEL | TRACK_DOALL);
    EXPECT_EQ(KeyTimes(), (Times{0, 10, 20, 40}));

    Key([&] { Step([&] { Set(50, 2); }); });
    Step([&] { number->DeleteKeyAtTime(0); });
    number->DeleteKeys(TRACK_DOALL);
    Key([&] { Set(0, 4); });
    for (const auto turn : {&headless::Session::Undo, &headless::Session::Redo}) {
        (session.*turn)();
        (session.*turn)();
        EXPECT_EQ(KeyTimes(), (Times{0})) << "keys were edited past the hold";
    }
    EXPECT_EQ(Get(0), 4.0F);
}

TEST_F(ControlTest, APacketMovesRotatesAndScalesInItsAxes) {
    const Matrix3 parent = Turned(90, {8, 0, 0});
    Set(0, Turned(0, {5, 0, 0}), parent);
    ExpectNear(World(0, parent), Turned(0, {5, 0, 0}));
    struct Case {
        std::uint32_t command;
        Matrix3 axes;
        Point3 p;
        Matrix3 world;
    };
    const Matrix3 turned = Turned(90, {4, 0, 0});
    for (const Case& c : {Case{XFORM_MOVE, Turned(90), {1, 0, 0}, Turned(0, {5, 1, 0})},
                          {XFORM_ROTATE, Turned(0, {5, 0, 0}), {}, turned},
                          {XFORM_SCALE, turned, {2, 1, 1}, Longer(turned, 2)},
                          {4, turned, {2, 1, 1}, Longer(turned, 2)}}) {
        SetXFormPacket packet;
        packet.tmParent = parent;
        packet.tmAxis = c.axes;
        packet.command = c.command;
        packet.p = c.p;
        packet.q = AboutZ(90);
        transform->SetValue(0, &packet, 1, CTRL_RELATIVE);
        ExpectNear(World(0, parent), c.world);
    }
}

TEST_F(ControlTest, AMatrixComesBackFromItsPartsBetweenWhichItGoesTheShorterWay) {
    Matrix3 mirrored = Turned(30, {1, 2, 3});
    mirrored.SetRow(2, {0, 0, -2});
    Matrix3 flat = Turned(30);
    flat.SetRow(1, {});
    for (const Matrix3& matrix : {mirrored, flat, Matrix3({}, {}, {}, {1, 2, 3})}) {
        Set(0, matrix);
        ExpectNear(World(0), matrix);
    }
    Key([&] {
        Set(0, Turned(170));
        Set(100, Longer(Turned(-100, {10, 0, 0}), 3));
    });
    ExpectNear(World(50), Longer(Turned(215, {5, 0, 0}), 2));
    Set(0, Turned(180, {0, 5, 0}));
    ExpectNear(World(100), Longer(Turned(-90, {10, 5, 0}), 3), 1e-4);

    const char* const names[] = {"Position", "Rotation", "Scale", ""};
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(transform->SubAnimName(i), names[i]);
    EXPECT_EQ(transform->NumKeys(), 0);
    EXPECT_EQ(transform->SubAnim(3), nullptr);
    Step([&] { transform->SubAnim(1)->DeleteTime({0, 100}, TIME_INCLEFT | TIME_INCRIGHT); });
    EXPECT_EQ(transform->SubAnim(1)->NumKeys(), 0);
    EXPECT_EQ(transform->SubAnim(0)->NumKeys(), 2);
    session.Undo();
    ExpectNear(World(0), Turned(180, {0, 5, 0}), 1e-4);
}

TEST_F(ControlTest, AChangeOfParentsKeepsTheWorldPathAndGoesBackWhenTurnedRound) {
    Matrix3 big;
    big.Scale({2, 2, 2});
    const Matrix3 parents[] = {Turned(20, {5, 0, 1}), big * Turned(-70, {0, 30, 0})};
    Set(0, Turned(10, {7, 7, 7}), parents[0]);
    Key([&] {
        Set(10, Turned(10, {1, 2, 3}), parents[0]);
        Set(20, Turned(50, {4, 5, 6}), parents[0]);
    });
    std::vector<Matrix3> path;
    for (TimeValue t = 0; t <= 30; t += 10)
        path.push_back(World(t, parents[0]));
    for (const int to : {1, 0}) {
        EXPECT_EQ(transform->ChangeParents(0, parents[1 - to], parents[to], path[0]), 1);
        for (std::size_t i = 0; i < path.size(); ++i)
            ExpectNear(World(static_cast<TimeValue>(i) * 10, parents[to]), path[i]);
    }
}

}  // namespace
