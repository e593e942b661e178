#include <gtest/gtest.h>

#include <climits>

#include "host/hold.h"
#include "tests/controllers/control_world.h"

namespace {

using List = std::vector<TimeValue>;

class KeyOperations : public testing::Test {
  protected:
    void Fill(std::initializer_list<TimeValue> times) {
        for (const TimeValue t : times)
            control_->AddKey({0, t, static_cast<float>(t)});
    }
    List Times() const { return TimesOf(control_->table); }

    ControlWorld world_;
    Alone<OpenScalar> control_;
};

// Without a key there the search starts before the first one.
TEST_F(KeyOperations, TheNextKeyIsTheNeighbourOfTheKeyAtThatTime) {
    Fill({10, 20, 30});
    constexpr TimeValue kNone = -1;
    const TimeValue cases[][3] = {{20, NEXTKEY_RIGHT, 30},
                                  {20, NEXTKEY_LEFT, 10},
                                  {20, NEXTKEY_LEFT | NEXTKEY_RIGHT, 20},
                                  {30, NEXTKEY_RIGHT, kNone},
                                  {10, NEXTKEY_LEFT, kNone},
                                  {99, NEXTKEY_RIGHT, 10},
                                  {99, NEXTKEY_LEFT, kNone}};
    for (const auto& [t, flags, expected] : cases) {
        TimeValue next = kNone;
        const bool found = control_->GetNextKeyTime(t, static_cast<std::uint32_t>(flags), next);
        EXPECT_EQ(found, expected != kNone);
        EXPECT_EQ(next, expected) << t;
    }
    Tab<TimeValue> times;
    EXPECT_EQ(control_->GetKeyTimes(times, Interval(10, 20), 0), 0);
    ASSERT_EQ(times.Count(), 2);
    EXPECT_EQ(times[1], 20);
}

TEST_F(KeyOperations, DeletingARangeOfTimeKeepsTheKeysOnItsEndsUnlessTheyAreIncluded) {
    struct Case {
        Interval range;
        std::uint32_t flags;
        List left;
    };
    const Case cases[] = {
        {{20, 20}, TIME_INCLEFT, {0, 10, 20, 30, 40}},
        {{20, 20}, TIME_INCLEFT | TIME_INCRIGHT, {0, 10, 30, 40}},
        {{10, 30}, 0, {0, 10, 30, 40}},
        {{20, INT_MAX}, TIME_INCRIGHT, {0, 10, 20}},
        {{20, INT_MAX}, TIME_INCLEFT | TIME_INCRIGHT, {0, 10}},
        {{30, 10}, TIME_INCLEFT | TIME_INCRIGHT, {0, 10, 20, 30, 40}},
        {FOREVER, 0, {}},
    };
    for (const Case& one : cases) {
        theHold.Begin();
        control_->DeleteKeys(0);
        control_->DeleteKeys(TRACK_DOALL);
        theHold.Cancel();
        EXPECT_EQ(Times(), List{}) << "which leaves nothing to take back";
        Fill({0, 10, 20, 30, 40});
        control_->DeleteTime(one.range, one.flags);
        EXPECT_EQ(Times(), one.left) << one.range.Start() << ".." << one.range.End();
    }
}

TEST_F(KeyOperations, ADeletedRangeComesBackWithItsCachedKeyUnlessOtherKeysAreThere) {
    const auto turn = [this](bool undoes, const List& expected, TimeValue cached) {
        EXPECT_TRUE(undoes ? world_.Host().Undo() : world_.Host().Redo());
        EXPECT_EQ(Times(), expected);
        EXPECT_EQ(control_->table.currentKey.time, cached);
    };
    Fill({0, 10, 20});
    control_->table.currentKey.time = 15;
    theHold.Begin();
    control_->DeleteTime(Interval(5, 25), 0);
    theHold.Accept("delete");
    control_->table.currentKey.time = 99;
    turn(true, {0, 10, 20}, 15);
    turn(false, {0}, 99);
    Fill({5});
    turn(true, {0, 5}, 99);
    control_->DeleteKeyAtTime(5);
    turn(false, {0}, 99);
    turn(true, {0, 10, 20}, 15);
}

TEST_F(KeyOperations, SelectionGoesByHitsOrIsClearedAsAWhole) {
    Fill({0, 10, 20});
    TrackHitTab hits;
    for (const std::uint32_t hit : {0u, 2u, 3u, 0xFFFFFFFFu}) {
        const TrackHitRecord record{hit, 0};
        hits.Append(1, &record);
    }
    const auto expect = [this](std::uint32_t first, std::uint32_t second, std::uint32_t third) {
        EXPECT_EQ(control_->table.keys[0].flags, first);
        EXPECT_EQ(control_->table.keys[1].flags, second);
        EXPECT_EQ(control_->table.keys[2].flags, third);
    };
    control_->SelectKeys(hits, SELKEYS_SELECT | SELKEYS_DESELECT);
    expect(1, 0, 1);
    control_->SelectKeyByIndex(1, 9);
    control_->SelectKeys(hits, SELKEYS_DESELECT);
    expect(0, 9, 0);
    control_->SelectKeys(hits, SELKEYS_CLEARKEYS | SELKEYS_SELECT);
    expect(0, 0, 0);
    for (const int index : {-1, 3, INT_MIN, INT_MAX}) {
        EXPECT_EQ(control_->GetKeyTime(index), -1);
        control_->SelectKeyByIndex(index, 1);
        control_->DeleteKeyByIndex(index);
    }
    expect(0, 0, 0);
}

TEST_F(KeyOperations, OnlyOneMessageIsStoppedOnItsWayToDependents) {
    PartID part = PART_ALL;
    EXPECT_EQ(control_->NotifyRefChanged(FOREVER, nullptr, part, 354), REF_STOP);
    EXPECT_EQ(control_->NotifyRefChanged(FOREVER, nullptr, part, REFMSG_CHANGE), REF_SUCCEED);
}

}  // namespace
