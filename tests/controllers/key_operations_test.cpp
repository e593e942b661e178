#include <gtest/gtest.h>

#include <climits>

#include "host/animate.h"
#include "host/hold.h"
#include "tests/controllers/control_world.h"

namespace {

class KeyOperations : public testing::Test {
  protected:
    void Fill(std::initializer_list<TimeValue> times) {
        for (const TimeValue t : times)
            control_->AddKey({0, t, static_cast<float>(t)});
    }

    std::vector<TimeValue> Times() const {
        std::vector<TimeValue> times;
        for (const auto& key : control_->table.keys)
            times.push_back(key.time);
        return times;
    }

    using List = std::vector<TimeValue>;

    ControlWorld world_;
    Alone<OpenScalar> control_;
};

TEST_F(KeyOperations, TheNextKeyIsTheNeighbourOfTheKeyAtThatTime) {
    Fill({10, 20, 30});
    TimeValue next = 0;
    EXPECT_TRUE(control_->GetNextKeyTime(20, NEXTKEY_RIGHT, next));
    EXPECT_EQ(next, 30);
    EXPECT_TRUE(control_->GetNextKeyTime(20, NEXTKEY_LEFT, next));
    EXPECT_EQ(next, 10);
    EXPECT_TRUE(control_->GetNextKeyTime(20, NEXTKEY_LEFT | NEXTKEY_RIGHT, next));
    EXPECT_EQ(next, 20);
    EXPECT_FALSE(control_->GetNextKeyTime(30, NEXTKEY_RIGHT, next));
    EXPECT_FALSE(control_->GetNextKeyTime(10, NEXTKEY_LEFT, next));
    // Without a key there the search starts before the first one.
    EXPECT_TRUE(control_->GetNextKeyTime(99, NEXTKEY_RIGHT, next));
    EXPECT_EQ(next, 10);
    EXPECT_FALSE(control_->GetNextKeyTime(99, NEXTKEY_LEFT, next));
}

TEST_F(KeyOperations, KeyTimesInsideTheIntervalAreAppendedAndNotCounted) {
    Fill({0, 10, 20, 30});
    Tab<TimeValue> times;
    const TimeValue before = 77;
    times.Append(1, &before);
    EXPECT_EQ(control_->GetKeyTimes(times, Interval(10, 20), 0), 0);
    ASSERT_EQ(times.Count(), 3);
    EXPECT_EQ(times[0], 77);
    EXPECT_EQ(times[1], 10);
    EXPECT_EQ(times[2], 20);
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
        {{20, INT_MAX}, TIME_INCRIGHT, {0, 10, 20}},
        {{20, INT_MAX}, TIME_INCLEFT | TIME_INCRIGHT, {0, 10}},
        {{30, 10}, TIME_INCLEFT | TIME_INCRIGHT, {0, 10, 20, 30, 40}},
        {FOREVER, 0, {}},
    };
    for (const Case& one : cases) {
        control_->DeleteKeys(TRACK_DOALL);
        Fill({0, 10, 20, 30, 40});
        control_->DeleteTime(one.range, one.flags);
        EXPECT_EQ(Times(), one.left) << one.range.Start() << ".." << one.range.End();
    }
}

TEST_F(KeyOperations, DeletingAllKeysLeavesNothingToUndo) {
    Fill({0, 10});
    theHold.Begin();
    control_->DeleteKeys(0);
    EXPECT_EQ(Times(), (List{0, 10}));
    control_->DeleteKeys(TRACK_DOALL);
    theHold.Cancel();
    EXPECT_EQ(Times(), List{});
}

TEST_F(KeyOperations, SelectionGoesByHitsOrIsClearedAsAWhole) {
    Fill({0, 10, 20});
    TrackHitTab hits;
    for (const std::uint32_t hit : {0u, 2u, 3u, 0xFFFFFFFFu}) {
        const TrackHitRecord record{hit, 0};
        hits.Append(1, &record);
    }
    const auto flags = [this] {
        return List{static_cast<int>(control_->table.keys[0].flags),
                    static_cast<int>(control_->table.keys[1].flags),
                    static_cast<int>(control_->table.keys[2].flags)};
    };
    control_->SelectKeys(hits, SELKEYS_SELECT | SELKEYS_DESELECT);
    EXPECT_EQ(flags(), (List{1, 0, 1}));
    control_->SelectKeyByIndex(1, 9);
    control_->SelectKeys(hits, SELKEYS_DESELECT);
    EXPECT_EQ(flags(), (List{0, 9, 0}));
    control_->SelectKeys(hits, SELKEYS_CLEARKEYS | SELKEYS_SELECT);
    EXPECT_EQ(flags(), (List{0, 0, 0}));
}

TEST_F(KeyOperations, PositionsOutsideTheTableAreHarmless) {
    Fill({5});
    for (const int index : {-1, 1, INT_MIN, INT_MAX}) {
        EXPECT_EQ(control_->GetKeyTime(index), -1);
        control_->SelectKeyByIndex(index, 1);
        control_->DeleteKeyByIndex(index);
    }
    EXPECT_EQ(Times(), List{5});
    EXPECT_EQ(control_->table.keys[0].flags, 0u);
}

TEST_F(KeyOperations, AnAppendedKeyComesBackWithTheFlagsThatItHadWhenItWasUndone) {
    theHold.Begin();
    control_->AddKey({0, 10, 1.0f});
    theHold.Accept("append");
    control_->SelectKeyByIndex(0, 5);
    ASSERT_TRUE(world_.Host().Undo());
    EXPECT_EQ(control_->NumKeys(), 0);
    ASSERT_TRUE(world_.Host().Redo());
    EXPECT_EQ(control_->table.keys[0].flags, 5u);
}

TEST_F(KeyOperations, ARecordMeansItsOwnKeyWhateverWasEditedPastTheHold) {
    Fill({0, 10, 20});
    const auto held = [](auto edit) {
        theHold.Begin();
        edit();
        theHold.Accept("edit");
    };
    held([this] { control_->DeleteKeyAtTime(10); });
    ASSERT_TRUE(world_.Host().Undo());
    control_->DeleteKeyAtTime(0);
    ASSERT_TRUE(world_.Host().Redo());
    EXPECT_EQ(Times(), List{20}) << "the deleted key lies one place lower";

    held([this] { control_->AddKey({0, 20, 99.0f}); });
    Fill({5});
    ASSERT_TRUE(world_.Host().Undo());
    EXPECT_EQ(control_->table.keys[1].value, 20.0f) << "the overwritten key lies one place higher";

    held([this] { Fill({30, 40, 50}); });
    Fill({60, 70});
    ASSERT_TRUE(world_.Host().Undo());
    EXPECT_EQ(Times(), (List{5, 20, 60, 70})) << "the end of the table is another's";

    held([this] { control_->DeleteTime(Interval(50, 80), 0); });
    Fill({90});
    ASSERT_TRUE(world_.Host().Undo());
    EXPECT_EQ(Times(), (List{5, 20, 90})) << "a whole table would take the new key away";
    control_->DeleteKeyAtTime(90);
    ASSERT_TRUE(world_.Host().Redo());
    EXPECT_EQ(Times(), (List{5, 20})) << "what was not undone is not done again";
}

TEST_F(KeyOperations, UndoingADeletedRangeBringsBackTheCachedKeyToo) {
    Fill({0, 10, 20});
    control_->table.currentKey = {0, 15, 15.0f};
    theHold.Begin();
    control_->DeleteTime(Interval(5, 25), 0);
    theHold.Accept("delete");
    control_->table.currentKey = {0, 99, 99.0f};
    ASSERT_TRUE(world_.Host().Undo());
    EXPECT_EQ(Times(), (List{0, 10, 20}));
    EXPECT_EQ(control_->table.currentKey.time, 15);
    ASSERT_TRUE(world_.Host().Redo());
    EXPECT_EQ(control_->table.currentKey.time, 99);
}

TEST_F(KeyOperations, OnlyOneMessageIsStoppedOnItsWayToDependents) {
    PartID part = PART_ALL;
    EXPECT_EQ(control_->NotifyRefChanged(FOREVER, nullptr, part, 354), REF_STOP);
    EXPECT_EQ(control_->NotifyRefChanged(FOREVER, nullptr, part, REFMSG_CHANGE), REF_SUCCEED);
}

}  // namespace
