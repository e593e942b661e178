#include <limits>
#include <tuple>

#include "host/animate.h"
#include "tests/headless/host_world.h"

namespace {

using ControlTest = HostWorld;

TEST_F(ControlTest, KeysAreFoundChosenAndDeletedUndoably) {
    const Times all{0, 10, 20, 30, 40};
    Control* const number = NewFloat();
    const auto set = [&](TimeValue t, float value) {
        number->SetValue(t, &value, 1, CTRL_ABSOLUTE);
    };
    const auto get = [&](TimeValue t) {
        float value = 0;
        Interval valid = FOREVER;
        number->GetValue(t, &value, valid, CTRL_ABSOLUTE);
        return value;
    };
    const auto times = [&] {
        Times found;
        for (int i = 0; i < number->NumKeys(); ++i)
            found.push_back(number->GetKeyTime(i));
        return found;
    };
    set(0, 7);
    AnimateOn();
    for (const TimeValue t : all)
        set(t, static_cast<float>(t));
    AnimateOff();
    for (const float moved : {100.0F, 0.0F}) {
        set(20, 20 + moved);
        for (const auto& [t, value] : {std::pair{-1, 7.0F}, {25, 25.0F}, {99, 40.0F}})
            EXPECT_EQ(get(t), value + moved);
    }
    EXPECT_EQ(number->GetKeyIndex(20), 2);
    EXPECT_EQ(number->GetKeyIndex(21), -1);
    TimeValue next = -1;
    EXPECT_TRUE(number->GetNextKeyTime(20, NEXTKEY_RIGHT, next) && next == 30);
    EXPECT_TRUE(number->GetNextKeyTime(25, NEXTKEY_LEFT, next) && next == 20);
    EXPECT_FALSE(number->GetNextKeyTime(0, NEXTKEY_LEFT, next));
    EXPECT_FALSE(number->GetNextKeyTime(40, NEXTKEY_RIGHT, next));
    for (const int index : {3, 77, -1})
        number->SelectKeyByIndex(index, SELKEYS_SELECT);
    number->DeleteKeyByIndex(5);

    const std::pair<std::function<void()>, Times> deletions[] = {
        {[&] {
             number->DeleteTime({10, 30}, TIME_INCRIGHT);
         },
         {0, 10, 40}},
        {[&] { number->DeleteKeyByIndex(1); }, {0, 20, 30, 40}},
        {[&] { number->DeleteKeyAtTime(40); }, {0, 10, 20, 30}},
        {[&] { number->DeleteKeys(TRACK_DOALL); }, {}},
        {[&] { number->DeleteKeys(TRACK_DOSEL | TRACK_DOALL); }, {0, 10, 20, 40}}};
    for (const auto& [act, left] : deletions) {
        Step(act);
        EXPECT_EQ(times(), left);
        session.Undo();
        EXPECT_EQ(times(), all);
        EXPECT_EQ(get(30), 30.0F);
    }
    AnimateOn();
    Step([&] { set(50, 2); });
    Step([&] { number->DeleteKeyAtTime(0); });
    number->DeleteKeys(TRACK_DOALL);
    set(0, 4);
    for (const auto turn : {&headless::Session::Undo, &headless::Session::Redo}) {
        (session.*turn)();
        (session.*turn)();
        EXPECT_EQ(times(), Times{0}) << "keys were edited past the hold";
    }
    EXPECT_EQ(get(0), 4.0F);

    number->DeleteKeys(TRACK_DOALL);
    set(std::numeric_limits<TimeValue>::min(), 0);
    set(std::numeric_limits<TimeValue>::max(), 2);
    EXPECT_NEAR(get(0), 1, 1e-6) << "a span of time that has overflowed";
    AnimateOff();
    host.FlushUndoBuffer();
    number->DeleteThis();
}

Matrix3 Turned(double degrees, const Point3& at = {}) {
    return TurnedAboutZ(degrees) * MovedBy(at);
}

// Its first axis `factor` times as long.
Matrix3 Longer(Matrix3 matrix, float factor) {
    matrix.SetRow(0, matrix.GetRow(0) * factor);
    return matrix;
}

TEST_F(ControlTest, APacketMovesRotatesAndScalesInItsAxes) {
    Control* const transform = NewTransform();
    SetXFormPacket packet;
    packet.tmParent = Turned(90, {8, 0, 0});
    packet.p = {2, 1, 1};
    packet.q = AboutZ(90);
    const Matrix3 turned = Turned(90, {4, 0, 0});
    const std::tuple<std::uint32_t, Matrix3, Matrix3> cases[] = {
        {XFORM_SET, Turned(0, {6, -1, 0}), Turned(0, {6, -1, 0})},
        {XFORM_MOVE, Turned(90), Turned(0, {5, 1, 1})},
        {XFORM_ROTATE, Turned(0, {5, 0, 1}), Turned(90, {4, 0, 1})},
        {XFORM_SCALE, turned, Longer(Turned(90, {4, 0, 1}), 2)},
        {4, turned, Longer(Turned(90, {4, 0, 1}), 2)}};
    for (const auto& [command, axes, becomes] : cases) {
        packet.tmAxis = axes;
        packet.command = command;
        transform->SetValue(0, &packet, 1, CTRL_RELATIVE);
        Matrix3 world = packet.tmParent;
        Interval valid = FOREVER;
        transform->GetValue(0, &world, valid, CTRL_RELATIVE);
        ExpectNear(world, becomes);
    }
    transform->DeleteThis();
}

TEST_F(ControlTest, AMatrixComesBackFromItsPartsBetweenWhichItGoesTheShorterWay) {
    INode* const node = Add("node");
    Matrix3 mirrored = Turned(30, {1, 2, 3});
    mirrored.SetRow(2, {0, 0, -2});
    Matrix3 flat = Turned(30);
    flat.SetRow(1, {});
    for (const Matrix3& matrix : {mirrored, flat, Matrix3({}, {}, {}, {1, 2, 3})}) {
        node->SetNodeTM(0, matrix);
        ExpectNear(node->GetNodeTM(0), matrix);
    }
    AnimateOn();
    node->SetNodeTM(0, Turned(170));
    node->SetNodeTM(100, Longer(Turned(-100, {10, 0, 0}), 3));
    AnimateOff();
    ExpectNear(node->GetNodeTM(50), Longer(Turned(215, {5, 0, 0}), 2));
    node->SetNodeTM(0, Turned(180, {0, 5, 0}));
    ExpectNear(node->GetNodeTM(100), Longer(Turned(-90, {10, 5, 0}), 3), 1e-4);

    // And below other parents its path in the world stays.
    INode* const parents[] = {Add("turned"), Add("large"), host.GetRootNode()};
    parents[0]->SetNodeTM(0, Turned(20, {5, 0, 1}));
    Matrix3 large = Turned(-70, {0, 30, 0});
    large.Scale({2, 2, 2});
    parents[1]->SetNodeTM(0, large);
    std::vector<Matrix3> path;
    for (TimeValue t = 0; t <= 110; ++t)
        path.push_back(node->GetNodeTM(t));
    for (INode* const parent : parents) {
        parent->AttachChild(node, 1);
        for (const TimeValue t : {0, 25, 50, 100, 110})
            ExpectNear(node->GetNodeTM(t), path[static_cast<std::size_t>(t)], 1e-4);
    }
}

}  // namespace
