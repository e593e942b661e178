#include "controllers/transform_control.h"

#include <gtest/gtest.h>

#include <cmath>

#include "host/animate.h"
#include "host/hold.h"
#include "tests/controllers/control_world.h"
#include "tests/support/allocations.h"

namespace {

// Poses between keys to the last bit. The expected numbers were worked out by a program of its own,
// step by step in the defined order and precision.
const Matrix3 kLeft({0.8F, 0.6F, 0}, {-1.2F, 1.6F, 0}, {0, 0, 0.5F}, {1.25F, -30, 400});
const Matrix3 kRight({-0.3F, 0.1F, 0.9F}, {0.2F, -0.7F, 0.4F}, {1.1F, 0.6F, 0.2F},
                     {-7.7F, 0.3F, 12.1F});

const std::pair<TimeValue, Matrix3> kPoses[] = {
    {-90, Matrix3({0x1.80dbfap-1F, 0x1.5056ap-1F, -0x1.17b862p-7F},
                  {-0x1.48bacap+0F, 0x1.78977ep+0F, 0x1.0e25fp-3F},
                  {0x1.b76baep-6F, -0x1.869e04p-6F, 0x1.0dcf26p-1F},
                  {0x1.d7fa8ap-1F, -0x1.ce3958p+4F, 0x1.81c6eap+8F})},
    {20, Matrix3({0x1.09fc58p-3F, 0x1.ea5394p-1F, 0x1.5dea06p-3F},
                 {-0x1.2c58f2p+0F, -0x1.ffda08p-7F, 0x1.f57184p-1F},
                 {0x1.0417f4p-1F, -0x1.6a694p-3F, 0x1.362116p-1F},
                 {-0x1.2e0f04p+1F, -0x1.1c76c8p+4F, 0x1.e7181p+7F})},
    {165, Matrix3({-0x1.56c476p-2F, 0x1.e79888p-2F, 0x1.86550ap-1F},
                  {0x1.463696p-3F, -0x1.8b9dbap-1F, 0x1.1ae7eap-1F},
                  {0x1.170d1ep+0F, 0x1.915142p-2F, 0x1.dede78p-3F},
                  {-0x1.abe1f6p+2F, -0x1.9126ecp+1F, 0x1.c07efcp+5F})}};

class Transform : public testing::Test {
  protected:
    void Key(TimeValue t, const Matrix3& value, std::uint32_t flags = 0) {
        control_->AddKey({flags, t, value});
    }

    ControlWorld world_;
    Alone<OpenTransform> control_;
};

// Under a parent the keys are multiplied first and the result is brought back: a recorded take is
// played under whatever the parent does meanwhile.
TEST_F(Transform, APoseBetweenKeysHasTheDefinedBits) {
    const Matrix3 parent({0, 2, 0}, {-1, 0, 0.5F}, {0, 0, 1}, {3, -4, 5});
    Alone<OpenTransform> inWorld;
    inWorld->AddKey({0, -101, kLeft * parent});
    inWorld->AddKey({0, 199, kRight * parent});
    Key(-101, kLeft);
    Key(199, kRight);
    for (const auto& [t, pose] : kPoses) {
        EXPECT_EQ(control_->GetKeyAtTime(t).value, pose) << t;
        EXPECT_EQ(MatrixAt(*control_, t), pose) << "under the identity, " << t;
        MatrixAt(*control_, 199);
        EXPECT_EQ(MatrixAt(*control_, t, parent), inWorld->GetKeyAtTime(t).value * Inverse(parent));
    }
    EXPECT_EQ(MatrixAt(*control_, -101, parent), kLeft);
    EXPECT_EQ(MatrixAt(*control_, 199, parent), kRight);
}

TEST_F(Transform, ATurnGoesTheShorterWayRoundAlsoBetweenKeysThatAreNoTurns) {
    Key(0, Matrix3());
    Key(100, TurnedAboutZ(270));
    ExpectNear(MatrixAt(*control_, 50), TurnedAboutZ(-45), 1e-6F);

    Key(300, Matrix3({}, {0, 1, 0}, {0, 0, 1}, {}));
    Key(400, Matrix3());
    EXPECT_NEAR(MatrixAt(*control_, 350).GetRow(0).Length(), 0.5F, 1e-6);
    const float huge = 1e38F;
    Key(500, Matrix3({huge, huge, huge}, {NAN, 0, 0}, {}, {INFINITY, 0, 0}));
    MatrixAt(*control_, 450);
}

TEST_F(Transform, BeyondTheTableTheEndKeyComesWithItsFlagsAndAValueSetWithoutAKeyHoldsForAWhile) {
    Key(0, MovedBy(0), 4);
    EXPECT_EQ(control_->GetKeyAtTime(50).flags, 0u) << "the only key";
    Key(100, MovedBy(1), 8);
    const std::pair<TimeValue, std::uint32_t> cases[] = {
        {-10, 4}, {0, 0}, {50, 0}, {100, 0}, {110, 8}};
    for (const auto& [t, flags] : cases) {
        EXPECT_EQ(control_->GetKeyAtTime(t).flags, flags) << t;
        EXPECT_EQ(control_->GetKeyAtTime(t).time, t);
    }
    EXPECT_EQ(control_->GetKeyAtTime(110).value, MovedBy(1));

    // At its time, or beyond the table until another evaluation.
    SetWorld(*control_, 50, MovedBy(9));
    EXPECT_EQ(MatrixAt(*control_, 50), MovedBy(9));
    EXPECT_EQ(control_->NumKeys(), 2);
    SetWorld(*control_, 150, MovedBy(9));
    EXPECT_EQ(MatrixAt(*control_, 101), MovedBy(9));
    EXPECT_EQ(MatrixAt(*control_, 100), MovedBy(1));
    EXPECT_EQ(MatrixAt(*control_, 150), MovedBy(1));
    Matrix3 value = TurnedAboutZ(90);
    Interval valid = FOREVER;
    control_->GetValue(100, &value, valid, CTRL_RELATIVE);
    EXPECT_EQ(value, MovedBy(1) * TurnedAboutZ(90));
    EXPECT_EQ(valid, Interval(100, 100));
}

TEST_F(Transform, APacketIsAppliedInItsAxisSystemAndAWorldMatrixUnderItsParent) {
    const Matrix3 parent = MovedBy(100);
    const Matrix3 axis = TurnedAboutZ(90);
    const Matrix3 start = MovedBy(3);
    SetXFormPacket packet;
    packet.tmParent = parent;
    packet.tmAxis = axis;
    packet.p = Point3(1, 2, 3);
    packet.q = AboutZ(90);
    const auto around = [&](const Matrix3& step) {
        return start * parent * Inverse(axis) * step * axis * Inverse(parent);
    };
    Matrix3 scale;
    scale.Scale(packet.p);
    const std::pair<std::uint32_t, Matrix3> cases[] = {{XFORM_MOVE, around(MovedBy(packet.p))},
                                                       {XFORM_ROTATE, around(TurnedAboutZ(90))},
                                                       {XFORM_SCALE, around(scale)},
                                                       {XFORM_SET, start * axis * Inverse(parent)},
                                                       {17, start}};
    for (const auto& [command, expected] : cases) {
        SetWorld(*control_, 0, start);
        packet.command = command;
        control_->SetValue(7, &packet, 1, CTRL_RELATIVE);
        EXPECT_EQ(control_->table.currentKey.value, expected) << command;
        EXPECT_EQ(control_->table.currentKey.time, 7);
    }
    packet.command = XFORM_SET;
    AnimateOn();
    control_->SetValue(40, &packet, 1, CTRL_ABSOLUTE);
    AnimateOff();
    ASSERT_EQ(control_->NumKeys(), 1);
    EXPECT_EQ(control_->table.keys[0].value, axis * Inverse(parent));
}

TEST_F(Transform, EvaluationAndRecordingAllocateNothingButTheTablesGrowth) {
    control_->table.keys.Whole().reserve(1000);
    AnimateOn();
    const std::size_t before = Allocations();
    for (TimeValue t = 0; t < 1000; ++t)
        SetWorld(*control_, t * 10, TurnedAboutZ(t * 7));
    for (TimeValue t = -5; t < 11000; t += 33) {
        MatrixAt(*control_, t, MovedBy(2));
        control_->GetKeyAtTime(t);
    }
    EXPECT_EQ(Allocations(), before);
    AnimateOff();
}

TEST_F(Transform, AChangeOfParentsKeepsTheWorldPath) {
    const Matrix3 parents[] = {TurnedAboutZ(30) * MovedBy(4), MovedBy(-2) * TurnedAboutZ(70)};
    Key(10, MovedBy(5));
    control_->table.currentKey.value = MovedBy(2);
    EXPECT_EQ(control_->ChangeParents(0, parents[0], parents[1], Matrix3()), 1);
    ExpectNear(control_->table.keys[0].value * parents[1], MovedBy(5) * parents[0], 1e-5F);
    ExpectNear(control_->table.currentKey.value * parents[1], MovedBy(2) * parents[0], 1e-5F);
}

}  // namespace
