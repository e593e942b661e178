#include <gtest/gtest.h>

#include <limits>
#include <map>

#include "core_link/core_link.h"
#include "host/animate.h"
#include "host/hold.h"
#include "host/interface.h"
#include "platform/testing.h"
#include "tests/controllers/control_world.h"
#include "tests/support/puppet_core.h"

namespace {

constexpr TimeValue kFrame = 160;

// A float controller of somebody else: its value is the time, its keys stand on it or on its part.
class Foreign : public Control {
  public:
    std::vector<TimeValue> times;
    Animatable* part = nullptr;

    SClass_ID SuperClassID() override { return CTRL_FLOAT_CLASS_ID; }
    Class_ID ClassID() override { return {1, 1}; }
    void DeleteThis() override { delete this; }
    int NumSubs() override { return 2; }
    Animatable* SubAnim(int index) override { return index == 1 ? part : nullptr; }
    int NumKeys() override { return static_cast<int>(times.size()); }
    TimeValue GetKeyTime(int index) override { return times[static_cast<std::size_t>(index)]; }
    void GetValue(TimeValue t, void* value, Interval&, GetSetMethod method) override {
        EXPECT_EQ(method, CTRL_RELATIVE);
        *static_cast<float*>(value) += static_cast<float>(t);
    }
    void SetValue(TimeValue, void*, int, GetSetMethod) override {}
};

class CopyKeys : public testing::Test {
  protected:
    std::vector<TimeValue> Times() const {
        std::vector<TimeValue> times;
        for (const auto& key : control_->table.keys)
            times.push_back(key.time);
        return times;
    }

    ControlWorld world_;
    Alone<OpenScalar> control_;
    Alone<Foreign> source_;
};

TEST_F(CopyKeys, EveryFrameOfTheSourcesRangeIsSampledTheEndOnlyIfItFallsOnTheStep) {
    source_->times = {100, 100 + 2 * kFrame + 7};
    control_->AddKey({3, 9, 9.0f});
    control_->Copy(&*source_);
    EXPECT_EQ(Times(), (std::vector<TimeValue>{100, 100 + kFrame, 100 + 2 * kFrame}));
    for (const auto& key : control_->table.keys) {
        EXPECT_EQ(key.value, static_cast<float>(key.time));
        EXPECT_EQ(key.flags, 0u);
    }
}

TEST_F(CopyKeys, KeysOfPartsWidenTheRange) {
    Alone<Foreign> part;
    part->times = {-kFrame, kFrame};
    source_->part = &*part;
    control_->Copy(&*source_);
    EXPECT_EQ(Times(), (std::vector<TimeValue>{-kFrame, 0, kFrame}));
    source_->times = {0, 2 * kFrame};
    control_->Copy(&*source_);
    EXPECT_EQ(Times(), (std::vector<TimeValue>{-kFrame, 0, kFrame, 2 * kFrame}));
    source_->part = nullptr;
}

TEST_F(CopyKeys, ASourceWithoutKeysLeavesAnEmptyTableAndTheDefaultValue) {
    control_->AddKey({0, 0, 5.0f});
    control_->table.currentKey.value = 5;
    control_->Copy(&*source_);
    EXPECT_TRUE(Times().empty());
    EXPECT_EQ(control_->table.currentKey.value, 0.0f);
}

TEST_F(CopyKeys, AKeyAtTheLastTickOrFarAwayEndsTheLoop) {
    constexpr TimeValue kFirst = std::numeric_limits<TimeValue>::min();
    constexpr TimeValue kLast = std::numeric_limits<TimeValue>::max();
    source_->times = {kLast - kFrame, kLast};
    control_->Copy(&*source_);
    EXPECT_EQ(Times(), (std::vector<TimeValue>{kLast - kFrame, kLast}));
    source_->times = {kFirst, 5, kLast};
    control_->Copy(&*source_);
    EXPECT_EQ(Times(), source_->times);
}

TEST_F(CopyKeys, TheCachedKeyIsTheTableAtTheMillisecondCounter) {
    platform::SetTickCount(static_cast<DWORD>(kFrame / 2));
    source_->times = {0, kFrame};
    control_->Copy(&*source_);
    platform::ClearTickCount();
    constexpr TimeValue kHalf = kFrame / 2;
    EXPECT_EQ(control_->table.currentKey.time, kHalf);
    EXPECT_EQ(control_->table.currentKey.value, static_cast<float>(kHalf));
}

TEST_F(CopyKeys, ItselfNothingOrAControllerOfOtherValuesChangesNothing) {
    control_->AddKey({0, 10, 1.0f});
    control_->AddKey({0, 20, 2.0f});
    Alone<OpenTransform> other;
    other->AddKey({0, 0, MovedBy(1)});
    for (Control* source : {static_cast<Control*>(&*control_), static_cast<Control*>(&*other),
                            static_cast<Control*>(nullptr)}) {
        control_->Copy(source);
        EXPECT_EQ(Times(), (std::vector<TimeValue>{10, 20}));
    }
}

// What a tree of objects has been copied to.
struct Copies : RemapDir {
    RefTargetHandle FindMapping(RefTargetHandle from) override { return copies[from]; }
    void AddEntry(RefTargetHandle from, RefTargetHandle to) override { copies[from] = to; }
    RefTargetHandle CloneRef(RefTargetHandle from) override { return from->Clone(*this); }

    std::map<RefTargetHandle, RefTargetHandle> copies;
};

TEST_F(CopyKeys, ACloneHasTheKeysAndTheCachedKeyButItsOwnPlaceOfSearch) {
    for (int i = 0; i < 4; ++i)
        control_->AddKey({1, i * 10, static_cast<float>(i)});
    FloatAt(*control_, 25);
    Copies copies;
    auto* const clone = static_cast<OpenScalar*>(control_->Clone(copies));
    ASSERT_NE(clone, nullptr);
    EXPECT_EQ(copies.FindMapping(&*control_), clone);
    EXPECT_EQ(clone->table.keys.size(), 4u);
    EXPECT_EQ(clone->table.keys[2].flags, 1u);
    EXPECT_EQ(clone->table.currentKey.time, 25);
    EXPECT_EQ(clone->table.lookupIndex, 0);
    clone->DeleteThis();
}

TEST_F(CopyKeys, WhileTheCoreRunsATableIsFullButLooksEmpty) {
    control_->AddKey({0, 0, 1.0f});
    control_->AddKey({0, 100, 3.0f});
    Alone<OpenScalar> copy;
    {
        PuppetCore core;
        core.isRunning = true;
        TheCoreLink().core = &core;
        TimeValue next = 0;
        EXPECT_EQ(control_->NumKeys(), 0);
        EXPECT_FALSE(control_->GetNextKeyTime(0, NEXTKEY_RIGHT, next));
        EXPECT_EQ(control_->GetKeyIndex(100), 1);
        EXPECT_EQ(FloatAt(*control_, 50), 2.0f);
        copy->Copy(&*control_);
        EXPECT_TRUE(copy->table.keys.empty());
        TheCoreLink().core = nullptr;
    }
    EXPECT_EQ(control_->NumKeys(), 2);
}

}  // namespace
