#include "controllers/scalar_control.h"

#include <gtest/gtest.h>

#include "host/animate.h"
#include "tests/controllers/control_world.h"

namespace {

class Scalar : public testing::Test {
  protected:
    float Relative(TimeValue t, float incoming) {
        Interval valid = FOREVER;
        control_->GetValue(t, &incoming, valid, CTRL_RELATIVE);
        EXPECT_EQ(valid, Interval(t, t));
        return incoming;
    }
    void Set(TimeValue t, float value, GetSetMethod method = CTRL_ABSOLUTE) {
        control_->SetValue(t, &value, 0, method);
    }

    ControlWorld world_;
    Alone<OpenScalar> control_;
};

TEST_F(Scalar, ValuesAreLinearBetweenKeysAndConstantBeyondThem) {
    control_->AddKey({1, 0, 10.0f});
    control_->AddKey({1, 100, 20.0f});
    struct Case {
        TimeValue t;
        float value;
    };
    for (const Case& one :
         {Case{25, 12.5f}, {0, 10}, {100, 20}, {-5, 10}, {200, 20}, {75, 17.5f}}) {
        EXPECT_EQ(FloatAt(*control_, one.t), one.value) << one.t;
        const TarvoKey<float> key = control_->GetKeyAtTime(one.t);
        EXPECT_EQ(key.value, one.value);
        EXPECT_EQ(key.time, one.t);
        EXPECT_EQ(key.flags, 0u);
    }
}

TEST_F(Scalar, EachStepBetweenKeysIsRoundedToSinglePrecision) {
    control_->AddKey({0, -3, 0.1f});
    control_->AddKey({0, 4, 0.7f});
    for (TimeValue t = -2; t < 4; ++t) {
        const float fraction = static_cast<float>(t + 3) / 7.0f;
        const float product = fraction * (0.7f - 0.1f);
        EXPECT_EQ(FloatAt(*control_, t), product + 0.1f);
    }
}

TEST_F(Scalar, WithoutKeysTheValueSetLastHoldsAtEveryTime) {
    EXPECT_EQ(FloatAt(*control_, 50), 0.0f);
    Set(10, 4);
    EXPECT_EQ(FloatAt(*control_, -900), 4.0f);
    EXPECT_EQ(Relative(3, 3), 7.0f);
    Set(10, 2, CTRL_RELATIVE);
    EXPECT_EQ(FloatAt(*control_, 0), 6.0f);
    EXPECT_EQ(control_->GetKeyAtTime(50).value, 0.0f);
    EXPECT_EQ(control_->GetKeyAtTime(50).time, 50);
}

TEST_F(Scalar, AValueSetWithoutAKeyDoesNotStick) {
    control_->AddKey({0, 0, 10.0f});
    control_->AddKey({0, 100, 20.0f});
    Set(50, 99);
    EXPECT_EQ(control_->NumKeys(), 2);
    EXPECT_EQ(FloatAt(*control_, 50), 15.0f);
}

TEST_F(Scalar, AValueSetInAnimateModeBecomesAKeyOrReplacesOne) {
    AnimateOn();
    Set(0, 1);
    Set(100, 5);
    Set(100, 7);
    Set(100, 2, CTRL_RELATIVE);
    AnimateOff();
    EXPECT_EQ(control_->NumKeys(), 2);
    EXPECT_EQ(control_->table.keys[1].value, 9.0f);
    EXPECT_EQ(FloatAt(*control_, 100), 9.0f);
}

}  // namespace
