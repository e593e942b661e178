#include "controllers/scalar_control.h"

#include <gtest/gtest.h>

#include "host/animate.h"
#include "tests/controllers/control_world.h"

namespace {

class Scalar : public testing::Test {
  protected:
    void Set(TimeValue t, float value, GetSetMethod method = CTRL_ABSOLUTE) {
        control_->SetValue(t, &value, 0, method);
    }

    ControlWorld world_;
    Alone<OpenScalar> control_;
};

// Each step between keys is rounded to single precision.
TEST_F(Scalar, ValuesAreLinearBetweenKeysAndConstantBeyondThem) {
    control_->AddKey({1, -3, 0.1F});
    for (const bool isAlone : {true, false}) {
        for (TimeValue t = -9; t < 9; ++t) {
            const float fraction = static_cast<float>(t + 3) / 7.0F;
            const float product = fraction * (0.7F - 0.1F);
            const float value = isAlone || t <= -3 ? 0.1F : t >= 4 ? 0.7F : product + 0.1F;
            EXPECT_EQ(FloatAt(*control_, t), value) << t;
            const TarvoKey<float> key = control_->GetKeyAtTime(t);
            EXPECT_TRUE(key.value == value && key.time == t && key.flags == 0) << t;
        }
        control_->AddKey({1, 4, 0.7F});
    }
}

TEST_F(Scalar, WithoutKeysTheValueSetLastHoldsAtEveryTime) {
    EXPECT_EQ(FloatAt(*control_, 50), 0.0F);
    Set(10, 4);
    EXPECT_EQ(FloatAt(*control_, -900), 4.0F);
    float sum = 3;
    Interval valid = FOREVER;
    control_->GetValue(3, &sum, valid, CTRL_RELATIVE);
    EXPECT_EQ(sum, 7.0F);
    EXPECT_EQ(valid, Interval(3, 3));
    Set(10, 2, CTRL_RELATIVE);
    EXPECT_EQ(FloatAt(*control_, 0), 6.0F);
    EXPECT_EQ(control_->GetKeyAtTime(50).value, 0.0F);
    EXPECT_EQ(control_->GetKeyAtTime(50).time, 50);
}

TEST_F(Scalar, AValueBecomesAKeyInAnimateModeAndElseDoesNotStick) {
    AnimateOn();
    Set(0, 1);
    Set(100, 5);
    Set(100, 2, CTRL_RELATIVE);
    AnimateOff();
    EXPECT_EQ(control_->NumKeys(), 2);
    EXPECT_EQ(control_->table.keys[1].value, 7.0F);
    Set(50, 99);
    EXPECT_EQ(control_->NumKeys(), 2);
    EXPECT_EQ(FloatAt(*control_, 50), 4.0F);
}

}  // namespace
