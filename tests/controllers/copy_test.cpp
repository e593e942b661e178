#include <gtest/gtest.h>

#include <limits>

#include "core_link/core_link.h"
#include "platform/testing.h"
#include "tests/controllers/control_world.h"
#include "tests/support/puppet_core.h"

namespace {

constexpr TimeValue kFrame = 160;
using List = std::vector<TimeValue>;

// A float controller of somebody else: its value is the time, its keys stand on it or on its part.
class Foreign : public Control {
  public:
    List times;
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
    ControlWorld world_;
    Alone<OpenScalar> control_;
    Alone<Foreign> source_;
};

// The end of the range is sampled only if it falls on the step; far too many frames are not. From
// itself, nothing, or a controller of other values nothing comes.
TEST_F(CopyKeys, EveryFrameBetweenTheKeysOfTheSourceAndItsPartsIsSampled) {
    constexpr TimeValue kFirst = std::numeric_limits<TimeValue>::min();
    constexpr TimeValue kLast = std::numeric_limits<TimeValue>::max();
    const List cases[][3] = {// keys of the source, of its part, and what is sampled
                             {{100, 107 + kFrame}, {}, {100, 100 + kFrame}},
                             {{}, {-kFrame, kFrame}, {-kFrame, 0, kFrame}},
                             {{5}, {}, {5}},
                             {{0, kFrame}, {-kFrame}, {-kFrame, 0, kFrame}},
                             {{kLast - kFrame, kLast}, {}, {kLast - kFrame, kLast}},
                             {{kFirst, 5, kLast}, {}, {kFirst, 5, kLast}},
                             {{}, {}, {}}};
    Alone<Foreign> part;
    Alone<OpenTransform> other;
    source_->part = &*part;
    platform::SetTickCount(80);
    for (const auto& [keys, partKeys, expected] : cases) {
        control_->AddKey({3, 9, 9.0F});
        control_->table.currentKey.value = 5;
        source_->times = keys;
        part->times = partKeys;
        for (Control* source : {static_cast<Control*>(&*source_), static_cast<Control*>(&*control_),
                                static_cast<Control*>(&*other), static_cast<Control*>(nullptr)}) {
            control_->Copy(source);
            EXPECT_EQ(TimesOf(control_->table), expected);
        }
        for (const TarvoKey<float>& key : control_->table.keys)
            EXPECT_TRUE(key.value == static_cast<float>(key.time) && key.flags == 0);
        EXPECT_EQ(control_->table.currentKey.time, 80);
        EXPECT_EQ(control_->table.currentKey.value, FloatAt(*control_, 80));
    }
    platform::ClearTickCount();
    EXPECT_EQ(control_->table.currentKey.value, 0.0F);
    source_->part = nullptr;
}

// Notes the first object that is copied.
struct FirstCopy : RemapDir {
    RefTargetHandle FindMapping(RefTargetHandle) override { return nullptr; }
    void AddEntry(RefTargetHandle from, RefTargetHandle) override { first = first ? first : from; }
    RefTargetHandle CloneRef(RefTargetHandle from) override { return from->Clone(*this); }

    RefTargetHandle first = nullptr;
};

TEST_F(CopyKeys, ACloneHasTheKeysAndTheCachedKeyButItsOwnPlaceOfSearch) {
    for (int i = 0; i < 4; ++i)
        control_->AddKey({1, i * 10, static_cast<float>(i)});
    FloatAt(*control_, 25);
    FirstCopy copies;
    auto* const clone = static_cast<OpenScalar*>(control_->Clone(copies));
    EXPECT_EQ(copies.first, &*control_);
    EXPECT_EQ(TimesOf(clone->table), (List{0, 10, 20, 30}));
    EXPECT_EQ(clone->table.keys[2].flags, 1u);
    EXPECT_EQ(clone->table.currentKey.time, 25);
    EXPECT_EQ(clone->table.lookupIndex, 0);
    clone->DeleteThis();
}

TEST_F(CopyKeys, WhileTheCoreRunsATableIsFullButLooksEmpty) {
    control_->AddKey({0, 0, 1.0F});
    control_->AddKey({0, 100, 3.0F});
    Alone<OpenScalar> copy;
    PuppetCore core;
    core.isRunning = true;
    TheCoreLink().core = &core;
    TimeValue next = 0;
    EXPECT_TRUE(control_->NumKeys() == 0 && !control_->GetNextKeyTime(0, NEXTKEY_RIGHT, next));
    EXPECT_EQ(control_->GetKeyIndex(100), 1);
    EXPECT_EQ(FloatAt(*control_, 50), 2.0F);
    copy->Copy(&*control_);
    EXPECT_TRUE(copy->table.keys.empty());
    TheCoreLink().core = nullptr;
    EXPECT_EQ(control_->NumKeys(), 2);
}

}  // namespace
