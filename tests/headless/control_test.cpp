#include "tests/headless/host_world.h"

namespace {

using ControlTest = HostWorld;

TEST_F(ControlTest, KeysAreMovedFoundAndDeletedUndoably) {
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
    set(20, 120);
    EXPECT_EQ(std::tuple(get(-1), get(25), get(99)), std::tuple(107.0F, 125.0F, 140.0F));
    for (const int index : {3, 77, -1})
        number->SelectKeyByIndex(index, SELKEYS_SELECT);
    number->DeleteKeyByIndex(5);
    Step([&] { number->DeleteTime({10, 30}, TIME_INCRIGHT); });
    EXPECT_EQ(times(), (Times{0, 10, 40}));
    session.Undo();
    Step([&] { number->DeleteKeys(TRACK_DOSEL | TRACK_DOALL); });
    EXPECT_EQ(times(), (Times{0, 10, 20, 40}));
    session.Undo();
    EXPECT_EQ(times(), all);

    AnimateOn();
    Step([&] { set(50, 2); });
    Step([&] { number->DeleteKeyAtTime(0); });
    number->DeleteKeys(TRACK_DOALL);
    set(0, 4);
    for (const auto turn : {&headless::Session::Undo, &headless::Session::Redo})
        for (int steps = 2; steps > 0; --steps) {
            EXPECT_TRUE((session.*turn)());
            EXPECT_EQ(times(), Times{0}) << "keys were edited past the hold";
        }
    number->DeleteKeys(TRACK_DOALL);
    set(std::numeric_limits<TimeValue>::min(), 0);
    set(std::numeric_limits<TimeValue>::max(), 2);
    EXPECT_NEAR(get(0), 1, 1e-6) << "a span of time that has overflowed";
    AnimateOff();
    host.FlushUndoBuffer();
    number->DeleteThis();
}

// Its first axis `factor` times as long.
Matrix3 Turned(double degrees, const Point3& at = {}, float factor = 1) {
    Matrix3 matrix = TurnedAboutZ(degrees) * MovedBy(at);
    matrix.SetRow(0, matrix.GetRow(0) * factor);
    return matrix;
}

TEST_F(ControlTest, AMatrixComesBackFromItsPartsAndGoesTheShorterWayBelowAnyParent) {
    INode* const node = Add("node");
    Matrix3 mirrored = Turned(30, {1, 2, 3});
    mirrored.SetRow(2, {0, 0, -2});
    for (const Matrix3& matrix : {mirrored, Turned(30, {}, 0), Matrix3({}, {}, {}, {1, 2, 3})}) {
        node->SetNodeTM(0, matrix);
        ExpectNear(node->GetNodeTM(0), matrix);
    }
    AnimateOn();
    node->SetNodeTM(0, Turned(170));
    node->SetNodeTM(100, Turned(-100, {10, 0, 0}, 3));
    AnimateOff();
    INode* const parent = Add("parent");
    parent->SetNodeTM(0, Turned(-70, {5, 30, 1}));
    for (INode* const above : {host.GetRootNode(), parent}) {
        above->AttachChild(node, 1);
        ExpectNear(node->GetNodeTM(50), Turned(215, {5, 0, 0}, 2), 1e-4);
    }
    node->SetNodeTM(0, Turned(180, {0, 5, 0}));
    ExpectNear(node->GetNodeTM(100), Turned(-90, {10, 5, 0}, 3), 1e-4);
}

}  // namespace
