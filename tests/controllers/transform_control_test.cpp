#include "controllers/transform_control.h"

#include <gtest/gtest.h>

#include <cmath>

#include "host/animate.h"
#include "host/hold.h"
#include "tests/controllers/control_world.h"

namespace {

class Transform : public testing::Test {
  protected:
    void Key(TimeValue t, const Matrix3& value, std::uint32_t flags = 0) {
        control_->AddKey({flags, t, value});
    }

    ControlWorld world_;
    Alone<OpenTransform> control_;
};

TEST_F(Transform, ATurnGoesTheShorterWayRound) {
    Key(0, Matrix3());
    Key(100, TurnedAboutZ(270));
    ExpectNear(MatrixAt(*control_, 50), TurnedAboutZ(-45), 1e-6f);
}

TEST_F(Transform, AKeyIsGivenBitForBitAlsoIfItIsShearedOrMirrored) {
    const Matrix3 sheared({-1.5f, 0.25f, 0}, {0, 1, 0.125f}, {0.1f, 0, 1}, {1, 2, 3});
    Key(10, sheared);
    Key(110, Matrix3());
    EXPECT_EQ(MatrixAt(*control_, 10, TurnedAboutZ(30)), sheared);
    const Matrix3 between = MatrixAt(*control_, 50);
    EXPECT_NEAR(DotProd(between.GetRow(0), between.GetRow(1)), 0, 1e-6);
    EXPECT_GT(DotProd(CrossProd(between.GetRow(0), between.GetRow(1)), between.GetRow(2)), 0);
}

TEST_F(Transform, AKeyWithARowOfLengthZeroIsEvaluatedWithoutFault) {
    Key(0, Matrix3({}, {0, 1, 0}, {0, 0, 1}, {}));
    Key(100, Matrix3());
    const Matrix3 between = MatrixAt(*control_, 50);
    EXPECT_NEAR(between.GetRow(0).Length(), 0.5f, 1e-6);
    const float huge = 1e38f;
    Key(200, Matrix3({huge, huge, huge}, {NAN, 0, 0}, {}, {INFINITY, 0, 0}));
    MatrixAt(*control_, 150);
}

TEST_F(Transform, TheParentsSpaceDecidesBetweenKeysButNotAtThem) {
    Key(0, Matrix3());
    Key(100, Matrix3({0, 1, 0}, {-1, 0, 0}, {0, 0, 1}, {10, 0, 0}));
    const Matrix3 parent({1, 0, 0}, {0, 0.5f, 0}, {0, 0, 2}, {7, 8, 9});
    const Matrix3 plain = MatrixAt(*control_, 50);
    MatrixAt(*control_, 0);
    EXPECT_FALSE(MatrixAt(*control_, 50, parent) == plain);
    EXPECT_EQ(MatrixAt(*control_, 100, parent), control_->table.keys[1].value);
    // The path in the world is half-way between the keys in the world.
    MatrixAt(*control_, 0);
    const Point3 world = (MatrixAt(*control_, 50, parent) * parent).GetTrans();
    const Point3 first = parent.GetTrans();
    const Point3 last = (control_->table.keys[1].value * parent).GetTrans();
    EXPECT_NEAR(world.x, (first.x + last.x) / 2, 1e-5);
    EXPECT_NEAR(world.y, (first.y + last.y) / 2, 1e-5);
}

TEST_F(Transform, ARelativeReadMultipliesTheIncomingMatrix) {
    Key(10, MovedBy(3));
    Matrix3 value = TurnedAboutZ(90);
    Interval valid = FOREVER;
    control_->GetValue(10, &value, valid, CTRL_RELATIVE);
    EXPECT_EQ(value, MovedBy(3) * TurnedAboutZ(90));
    EXPECT_EQ(valid, Interval(10, 10));
}

TEST_F(Transform, BeyondTheTableTheEndKeyComesWithItsFlags) {
    Key(0, MovedBy(1), 4);
    EXPECT_EQ(control_->GetKeyAtTime(50).flags, 0u) << "the only key";
    Key(100, MovedBy(2), 8);
    EXPECT_EQ(control_->GetKeyAtTime(-10).flags, 4u);
    EXPECT_EQ(control_->GetKeyAtTime(-10).value, MovedBy(1));
    EXPECT_EQ(control_->GetKeyAtTime(110).flags, 8u);
    EXPECT_EQ(control_->GetKeyAtTime(110).time, 110);
    EXPECT_EQ(control_->GetKeyAtTime(100).flags, 0u);
    EXPECT_EQ(control_->GetKeyAtTime(50).flags, 0u);
}

TEST_F(Transform, AValueSetWithoutAKeyHoldsAtItsTimeOrBeyondTheTableUntilAnotherEvaluation) {
    Key(0, MovedBy(0));
    Key(100, MovedBy(1));
    SetWorld(*control_, 50, MovedBy(9));
    EXPECT_EQ(MatrixAt(*control_, 50), MovedBy(9));
    EXPECT_EQ(control_->NumKeys(), 2);
    SetWorld(*control_, 150, MovedBy(9));
    EXPECT_EQ(MatrixAt(*control_, 150), MovedBy(9));
    EXPECT_EQ(MatrixAt(*control_, 101), MovedBy(9));
    EXPECT_EQ(MatrixAt(*control_, 100), MovedBy(1));
    EXPECT_EQ(MatrixAt(*control_, 150), MovedBy(1));
}

TEST_F(Transform, AWorldMatrixIsStoredRelativeToTheParentAsOneKey) {
    SetXFormPacket packet;
    packet.command = XFORM_SET;
    packet.tmParent = TurnedAboutZ(90);
    packet.tmAxis = MovedBy(5);
    AnimateOn();
    control_->SetValue(40, &packet, 1, CTRL_ABSOLUTE);
    EXPECT_EQ(control_->NumKeys(), 1);
    EXPECT_EQ(control_->table.keys[0].value, MovedBy(5) * Inverse(TurnedAboutZ(90)));
    SetWorld(*control_, 40, MovedBy(6));
    AnimateOff();
    EXPECT_EQ(control_->NumKeys(), 1);
    EXPECT_EQ(control_->table.keys[0].value, MovedBy(6));
}

TEST_F(Transform, MovesTurnsAndScalesAreMadeInTheAxisSystemOfThePacket) {
    const Matrix3 parent = MovedBy(100);
    const Matrix3 axis = TurnedAboutZ(90);
    const Matrix3 start = MovedBy(3);
    SetXFormPacket packet;
    packet.tmParent = parent;
    packet.tmAxis = axis;
    packet.p = Point3(1, 2, 3);
    packet.q = AboutZ(90);

    Matrix3 scale;
    scale.Scale(packet.p);
    const std::pair<std::uint32_t, Matrix3> steps[] = {
        {XFORM_MOVE, MovedBy(packet.p)}, {XFORM_ROTATE, TurnedAboutZ(90)}, {XFORM_SCALE, scale}};
    for (const auto& [command, step] : steps) {
        SetWorld(*control_, 0, start);
        packet.command = command;
        control_->SetValue(7, &packet, 1, CTRL_RELATIVE);
        EXPECT_EQ(control_->table.currentKey.value,
                  start * parent * Inverse(axis) * step * axis * Inverse(parent))
            << command;
        EXPECT_EQ(control_->table.currentKey.time, 7);
    }
    packet.command = 17;
    SetWorld(*control_, 0, start);
    control_->SetValue(8, &packet, 1, CTRL_RELATIVE);
    EXPECT_EQ(control_->table.currentKey.value, start);
    EXPECT_EQ(control_->table.currentKey.time, 8);
}

TEST_F(Transform, AChangeOfParentsKeepsTheWorldPathAtEveryKey) {
    const Matrix3 oldParent = TurnedAboutZ(30) * MovedBy(4);
    const Matrix3 newParent = MovedBy(-2) * TurnedAboutZ(70);
    const Matrix3 values[] = {MovedBy(1), TurnedAboutZ(50), MovedBy(2) * TurnedAboutZ(10)};
    for (int i = 0; i < 3; ++i)
        Key(i * 100, values[i]);
    EXPECT_EQ(control_->ChangeParents(0, oldParent, newParent, Matrix3()), 1);
    for (std::size_t i = 0; i < 3; ++i)
        ExpectNear(control_->table.keys[i].value * newParent, values[i] * oldParent, 1e-5f);
    // The opposite change takes it back as far as rounding goes.
    control_->ChangeParents(0, newParent, oldParent, Matrix3());
    for (std::size_t i = 0; i < 3; ++i)
        ExpectNear(control_->table.keys[i].value, values[i], 1e-5f);
}

// The host's record of a new parent.
struct NewParent : RestoreObj {
    explicit NewParent(Control& child) : control(child) { Redo(); }
    void Restore(int) override { control.ChangeParents(0, Matrix3(), MovedBy(4), Matrix3()); }
    void Redo() override { control.ChangeParents(0, MovedBy(4), Matrix3(), Matrix3()); }

    Control& control;
};

TEST_F(Transform, AChangeOfParentsThatIsRecordedLeavesEarlierRecordsGood) {
    theHold.Begin();
    Key(10, MovedBy(1));
    theHold.Accept("key");
    theHold.Begin();
    theHold.Put(new NewParent(*control_));
    theHold.Accept("parent");
    EXPECT_EQ(control_->table.keys[0].value, MovedBy(5));
    ASSERT_TRUE(world_.Host().Undo());
    ASSERT_TRUE(world_.Host().Undo());
    EXPECT_EQ(control_->NumKeys(), 0);
    ASSERT_TRUE(world_.Host().Redo());
    ASSERT_EQ(control_->NumKeys(), 1);
    EXPECT_EQ(control_->table.keys[0].value, MovedBy(1));
    ASSERT_TRUE(world_.Host().Redo());
    EXPECT_EQ(control_->table.keys[0].value, MovedBy(5));
}

}  // namespace
