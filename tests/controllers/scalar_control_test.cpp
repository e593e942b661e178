#include <gtest/gtest.h>

#include <climits>

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
    control_->AddKey({0, INT_MIN, 0});
    control_->DeleteTime(Interval(-9, 9), 0);
    control_->AddKey({0, INT_MAX, 1});
    EXPECT_EQ(FloatAt(*control_, -1), 0.5F) << "at an equal way from times as far apart as can be";
}

// Without keys it holds at every time, beside keys not at all.
TEST_F(Scalar, AValueBecomesAKeyInAnimateModeOnly) {
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
    AnimateOn();
    Set(0, 1);
    Set(100, 5);
    Set(100, 2, CTRL_RELATIVE);
    AnimateOff();
    Set(50, 99);
    EXPECT_EQ(TimesOf(control_->table), (std::vector<TimeValue>{0, 100}));
    EXPECT_EQ(control_->table.keys[1].value, 7.0F);
    EXPECT_EQ(FloatAt(*control_, 50), 4.0F);
}

TEST_F(Scalar, SelectionGoesByHitsOrIsClearedAsAWhole) {
    TrackHitTab hits;
    for (const std::uint32_t hit : {0u, 2u, 3u, 0xFFFFFFFFu}) {
        const TrackHitRecord record{hit, 0};
        hits.Append(1, &record);
    }
    for (const TimeValue t : {0, 10, 20})
        control_->AddKey({0, t, 0});
    const auto flagsAfter = [&](std::uint32_t what) {
        control_->SelectKeys(hits, what);
        std::vector<std::uint32_t> flags;
        for (const auto& key : control_->table.keys)
            flags.push_back(key.flags);
        return flags;
    };
    using Flags = std::vector<std::uint32_t>;
    EXPECT_EQ(flagsAfter(SELKEYS_SELECT | SELKEYS_DESELECT), (Flags{1, 0, 1}));
    control_->SelectKeyByIndex(1, 9);
    EXPECT_EQ(flagsAfter(SELKEYS_DESELECT), (Flags{0, 9, 0}));
    for (const int index : {-1, 3, INT_MIN, INT_MAX}) {
        EXPECT_EQ(control_->GetKeyTime(index), -1);
        control_->SelectKeyByIndex(index, 1);
        control_->DeleteKeyByIndex(index);
    }
    EXPECT_EQ(flagsAfter(SELKEYS_CLEARKEYS | SELKEYS_SELECT), (Flags{0, 0, 0}));

    PartID part = PART_ALL;
    EXPECT_EQ(control_->NotifyRefChanged(FOREVER, nullptr, part, 354), REF_STOP);
    EXPECT_EQ(control_->NotifyRefChanged(FOREVER, nullptr, part, REFMSG_CHANGE), REF_SUCCEED);
}

}  // namespace
