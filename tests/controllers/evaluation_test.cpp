// What a controller answers at a time, and what a write or a new parent does to that.

#include "tests/controllers/control_world.h"
#include "tests/support/allocations.h"

namespace {

class Evaluation : public ControlTest {
  protected:
    Alone<OpenScalar> scalar_;
    Alone<OpenTransform> transform_;
};

// Each step between keys is rounded to single precision.
TEST_F(Evaluation, AScalarIsLinearBetweenKeysAndConstantBeyondThem) {
    scalar_->AddKey({1, -3, 0.1F});
    for (const bool isAlone : {true, false}) {
        for (TimeValue t = -9; t < 9; ++t) {
            const float product = static_cast<float>(t + 3) / 7.0F * (0.7F - 0.1F);
            const float value = isAlone || t <= -3 ? 0.1F : t >= 4 ? 0.7F : product + 0.1F;
            EXPECT_EQ(ValueAt(*scalar_, t), value) << t;
            const TarvoKey<float> key = scalar_->GetKeyAtTime(t);
            EXPECT_TRUE(key.value == value && key.time == t && key.flags == 0) << t;
        }
        scalar_->AddKey({1, 4, 0.7F});
    }
    scalar_->DeleteKeys(TRACK_DOALL);
    scalar_->AddKey({0, INT_MIN, 0});
    scalar_->AddKey({0, INT_MAX, 1});
    EXPECT_EQ(ValueAt(*scalar_, -1), 0.5F) << "at an equal way from times as far apart as can be";
}

// In animate mode it is a key.
TEST_F(Evaluation, AScalarThatIsSetHoldsAtEveryTimeWithoutKeysAndBesideThemNotAtAll) {
    const auto set = [&](TimeValue t, float value, GetSetMethod method = CTRL_ABSOLUTE) {
        scalar_->SetValue(t, &value, 0, method);
    };
    set(10, 4);
    set(10, 2, CTRL_RELATIVE);
    EXPECT_EQ(ValueAt(*scalar_, -900), 6.0F);
    EXPECT_EQ(scalar_->GetKeyAtTime(50).value, 0.0F);
    AnimateOn();
    set(0, 1);
    set(100, 5);
    set(100, 2, CTRL_RELATIVE);
    AnimateOff();
    set(50, 99);
    EXPECT_EQ(TimesOf(scalar_->table), (Times{0, 100}));
    float sum = 3;
    Interval valid = FOREVER;
    scalar_->GetValue(50, &sum, valid, CTRL_RELATIVE);
    EXPECT_EQ(sum, 3.0F + 4.0F);
    EXPECT_EQ(valid, Interval(50, 50));
}

// To the last bit. The expected numbers were worked out by a program of its own, step by step in
// the defined order and precision. Under a parent the keys are multiplied first and the result is
// brought back: a recorded take is played under whatever the parent does meanwhile.
TEST_F(Evaluation, APoseBetweenKeysHasTheDefinedBits) {
    const Matrix3 left({0.8F, 0.6F, 0}, {-1.2F, 1.6F, 0}, {0, 0, 0.5F}, {1.25F, -30, 400});
    const Matrix3 right({-0.3F, 0.1F, 0.9F}, {0.2F, -0.7F, 0.4F}, {1.1F, 0.6F, 0.2F},
                        {-7.7F, 0.3F, 12.1F});
    const std::pair<TimeValue, Matrix3> poses[] = {
        {20, Matrix3({0x1.09fc58p-3F, 0x1.ea5394p-1F, 0x1.5dea06p-3F},
                     {-0x1.2c58f2p+0F, -0x1.ffda08p-7F, 0x1.f57184p-1F},
                     {0x1.0417f4p-1F, -0x1.6a694p-3F, 0x1.362116p-1F},
                     {-0x1.2e0f04p+1F, -0x1.1c76c8p+4F, 0x1.e7181p+7F})},
        {165, Matrix3({-0x1.56c476p-2F, 0x1.e79888p-2F, 0x1.86550ap-1F},
                      {0x1.463696p-3F, -0x1.8b9dbap-1F, 0x1.1ae7eap-1F},
                      {0x1.170d1ep+0F, 0x1.915142p-2F, 0x1.dede78p-3F},
                      {-0x1.abe1f6p+2F, -0x1.9126ecp+1F, 0x1.c07efcp+5F})}};
    const Matrix3 parent({0, 2, 0}, {-1, 0, 0.5F}, {0, 0, 1}, {3, -4, 5});
    Alone<OpenTransform> inWorld;
    for (const auto& [t, key] : {std::pair(-101, left), {199, right}}) {
        transform_->AddKey({0, t, key});
        inWorld->AddKey({0, t, key * parent});
        EXPECT_EQ(ValueAt(*transform_, t, parent), key);
    }
    for (const auto& [t, pose] : poses) {
        EXPECT_EQ(transform_->GetKeyAtTime(t).value, pose) << t;
        EXPECT_EQ(ValueAt(*transform_, t, Matrix3()), pose) << "under the identity, " << t;
        ValueAt(*transform_, 199, parent);
        EXPECT_EQ(ValueAt(*transform_, t, parent),
                  inWorld->GetKeyAtTime(t).value * Inverse(parent));
    }
}

TEST_F(Evaluation, BeyondTheTableTheEndKeyComesWithItsFlagsAndAPoseThatIsSetHoldsForAWhile) {
    const Matrix3 last = TurnedAboutZ(270);
    transform_->AddKey({4, 0, Matrix3()});
    EXPECT_EQ(transform_->GetKeyAtTime(50).flags, 0u) << "the only key";
    transform_->AddKey({8, 100, last});
    std::string flags;
    for (const TimeValue t : {-10, 0, 50, 100, 110})
        flags += std::to_string(transform_->GetKeyAtTime(t).flags);
    EXPECT_EQ(flags, "40008");
    EXPECT_EQ(transform_->GetKeyAtTime(110).time, 110);
    ExpectNear(transform_->GetKeyAtTime(50).value, TurnedAboutZ(-45), 1e-6F);

    // At its time, or beyond the table until another evaluation.
    const auto poseAt = [&](TimeValue t) { return ValueAt(*transform_, t, Matrix3()); };
    SetWorld(*transform_, 50, MovedBy(9));
    EXPECT_EQ(poseAt(50), MovedBy(9));
    EXPECT_EQ(transform_->NumKeys(), 2);
    SetWorld(*transform_, 150, MovedBy(9));
    EXPECT_EQ(poseAt(101), MovedBy(9));
    EXPECT_TRUE(poseAt(100) == last && poseAt(150) == last);
    Matrix3 value = MovedBy(1);
    Interval valid = FOREVER;
    transform_->GetValue(100, &value, valid, CTRL_RELATIVE);
    EXPECT_EQ(value, last * MovedBy(1));
    EXPECT_EQ(valid, Interval(100, 100));
}

TEST_F(Evaluation, APacketIsAppliedInItsAxisSystemAndAWorldMatrixUnderItsParent) {
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
                                                       {17, start},
                                                       {XFORM_SET, start * axis * Inverse(parent)}};
    TarvoKey<Matrix3>& current = transform_->table.currentKey;
    for (const auto& [command, expected] : cases) {
        SetWorld(*transform_, 0, start);
        packet.command = command;
        transform_->SetValue(7, &packet, 1, CTRL_RELATIVE);
        EXPECT_EQ(current.value, expected) << command;
        EXPECT_EQ(current.time, 7);
    }
    transform_->SetValue(40, &packet, 1, CTRL_ABSOLUTE);
    EXPECT_EQ(current.value, axis * Inverse(parent));
}

TEST_F(Evaluation, AChangeOfParentsKeepsTheWorldPath) {
    const Matrix3 parents[] = {TurnedAboutZ(30) * MovedBy(4), MovedBy(-2) * TurnedAboutZ(70)};
    transform_->AddKey({0, 10, MovedBy(5)});
    transform_->table.currentKey.value = MovedBy(2);
    EXPECT_EQ(transform_->ChangeParents(0, parents[0], parents[1], Matrix3()), 1);
    ExpectNear(transform_->table.keys[0].value * parents[1], MovedBy(5) * parents[0]);
    ExpectNear(transform_->table.currentKey.value * parents[1], MovedBy(2) * parents[0]);
}

TEST_F(Evaluation, NothingIsAllocatedButTheTablesGrowth) {
    transform_->table.keys.EditWhole().reserve(1000);
    AnimateOn();
    const std::size_t before = Allocations();
    for (TimeValue t = 0; t < 1000; ++t)
        SetWorld(*transform_, t * 10, TurnedAboutZ(t * 7));
    for (TimeValue t = -5; t < 11000; t += 33)
        ValueAt(*transform_, t, MovedBy(2));
    EXPECT_EQ(Allocations(), before);
    AnimateOff();
}

}  // namespace
