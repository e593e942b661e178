// A key table agrees with an ordered map of keys that each have an identity, under whatever is done
// to it inside holds and past them. Undo and redo of a record do to the key that was meant what was
// meant, or nothing, and whoever depends on the table is told.

#include <random>

#include "tests/controllers/control_world.h"

namespace {

struct Entry {
    std::uint32_t flags = 0;
    float value = 0;
    TimeValue t = 0;
    int identity = 0;  // of the key that was written; another write makes another key
    bool operator==(const Entry& o) const {
        return flags == o.flags && value == o.value && t == o.t;
    }
};
using MaybeKey = std::optional<Entry>;  // none: the time has no key

struct Table {
    std::vector<Entry> keys;  // their times rise
    Entry cached;
    bool operator==(const Table&) const = default;

    // Where the key of a time stands, or would.
    auto Place(TimeValue t) { return std::ranges::lower_bound(keys, t, {}, &Entry::t); }
    MaybeKey At(TimeValue t) {
        const auto place = Place(t);
        return place != keys.end() && place->t == t ? MaybeKey(*place) : std::nullopt;
    }
    void Put(TimeValue t, const MaybeKey& key) {
        if (At(t)) keys.erase(Place(t));
        if (key) keys.insert(Place(t), *key);
    }
    void MoveBy(float distance) {
        for (Entry& key : keys)
            key.value += distance;
        cached.value += distance;
    }
};

// What the undo or redo of a record does to the table, if it can.
using Trade = std::function<bool(Table&, bool undoes)>;

struct Meant {
    Trade trade;
    bool isNewParent = false;
    bool isUndone = false;

    void Turn(Table& table, bool undoes) {
        if (isUndone != undoes && trade(table, undoes)) isUndone = undoes;
    }
};

// Trades places with the key of a time, if that is the one that was meant.
struct KeyTrade {
    TimeValue t;
    MaybeKey held;
    int there = 0;       // the identity of the key that is meant; 0: no key
    MaybeKey deleted{};  // of a deletion, what comes back each time

    bool operator()(Table& table, bool undoes) {
        const MaybeKey current = table.At(t);
        if ((current ? current->identity : 0) != there) return false;
        table.Put(t, held);
        there = held ? held->identity : 0;
        held = deleted && !undoes ? deleted : current;
        return true;
    }
};

// Read as it lies, so that the table stays as the edits have left it.
Table Seen(const OpenTransform& control) {
    const auto entry = [](const TarvoKey<Matrix3>& key) {
        return Entry{key.flags, key.value.m[3][0], key.time};
    };
    Table seen{{}, entry(control.table.currentKey)};
    for (int i = 0; i < control.table.Count(); ++i)
        seen.keys.push_back(entry(control.table.At(i)));
    return seen;
}

constexpr float kWay = 3;  // from one parent to another

// The host's record of a new parent.
struct NewParent : RestoreObj {
    explicit NewParent(Control& child) : control(child) { Redo(); }
    void Restore(int) override { control.ChangeParents(0, Matrix3(), MovedBy(kWay), Matrix3()); }
    void Redo() override { control.ChangeParents(0, MovedBy(kWay), Matrix3(), Matrix3()); }

    Control& control;
};

TimeValue Later(TimeValue t, int by) {
    return static_cast<TimeValue>(std::clamp<std::int64_t>(std::int64_t{t} + by, INT_MIN, INT_MAX));
}

class KeyLaw : public ControlTest {
  protected:
    KeyLaw() { watcher_.ReplaceReference(0, control_.get()); }

    int Any(int count) { return static_cast<int>(random_() % static_cast<unsigned>(count)); }

    // An odd number of small times, so that keys meet each other often; and those at the ends.
    TimeValue AnyTime() {
        if (Any(40) == 0) return Any(2) == 0 ? INT_MIN : INT_MAX;
        return Any(span_) - 20;
    }

    void Record(const Trade& trade, bool isNewParent = false) {
        if (theHold.Holding()) open_.push_back({trade, isNewParent});
    }
    void Put(Entry entry) {
        entry.identity = ++newestIdentity_;
        Record(KeyTrade{entry.t, model_.At(entry.t), entry.identity});
        model_.Put(entry.t, entry);
    }
    void TakeOut(TimeValue t) {
        const MaybeKey key = model_.At(t);
        if (key) Record(KeyTrade{t, key, 0, key});
        model_.Put(t, std::nullopt);
    }

    Entry AnyEntry() {
        return {static_cast<std::uint32_t>(Any(2)), static_cast<float>(Any(1000)), AnyTime()};
    }
    void Set() {
        const bool keyed = Any(2) == 0;
        Entry entry = AnyEntry();
        entry.flags = 0;
        if (keyed) AnimateOn();
        SetWorld(*control_, entry.t, MovedBy(entry.value));
        AnimateOff();
        Record([held = model_.cached](Table& table, bool) mutable {
            std::swap(table.cached, held);
            return true;
        });
        model_.cached = entry;
        if (keyed) Put(entry);
    }
    TimeValue Add() {
        const Entry entry = AnyEntry();
        control_->AddKey({entry.flags, entry.t, MovedBy(entry.value)});
        Put(entry);
        return entry.t;
    }
    void Write() { Any(2) == 0 ? Set() : static_cast<void>(Add()); }
    void Delete() {
        const TimeValue t = AnyTime();
        const auto index = static_cast<std::size_t>(Any(12));
        const bool isThere = index < model_.keys.size();
        switch (Any(4)) {
            case 0:
                control_->DeleteKeyAtTime(t);
                return TakeOut(t);
            case 1:
                control_->DeleteKeyByIndex(static_cast<int>(index));
                if (isThere) TakeOut(model_.keys[index].t);
                return;
            case 2:
                control_->DeleteKeys(TRACK_DOSEL | (isThere ? TRACK_DOALL : 0));
                for (const Entry& key : std::vector(model_.keys))
                    if (key.flags != 0) TakeOut(key.t);
                return;
            default:
                DeleteTime(Any(20) == 0 ? FOREVER : Interval(t, Later(t, Any(span_ / 7) - 2)));
        }
    }
    // Keys on the ends stay unless they are included. No key within leaves nothing to take back.
    void DeleteTime(Interval range) {
        const std::uint32_t ends = (TIME_INCLEFT | TIME_INCRIGHT) & random_();
        control_->DeleteTime(range, ends);
        const auto isWithin = [&](const Entry& key) {
            return range.InInterval(key.t) && (ends & TIME_INCLEFT || key.t != range.Start());
        };
        if (std::ranges::none_of(model_.keys, isWithin)) return;
        const Table before = model_;
        std::erase_if(model_.keys, [&](const Entry& key) {
            return isWithin(key) && (ends & TIME_INCRIGHT || key.t != range.End());
        });
        Record([held = before, left = model_.keys](Table& table, bool) mutable {
            const bool isLeft =
                std::ranges::equal(table.keys, left, {}, &Entry::identity, &Entry::identity);
            if (isLeft) std::swap(table, held);
            if (isLeft) left = table.keys;
            return isLeft;
        });
    }
    // Past the hold nothing will take it back, so that what records hold belongs nowhere any more.
    void ChangeParents() {
        model_.MoveBy(kWay);
        if (theHold.Holding()) {
            theHold.Put(new NewParent(*control_));
            const auto move = [](Table& table, bool undoes) {
                table.MoveBy(undoes ? -kWay : kWay);
                return true;
            };
            return Record(move, true);
        }
        control_->ChangeParents(0, MovedBy(kWay), Matrix3(), Matrix3());
        for (std::vector<Meant>& step : steps_)
            std::erase_if(step, [](const Meant& meant) { return !meant.isNewParent; });
    }
    // What no hold ever records.
    void ChangeUnrecordably() {
        if (Any(10) == 0) {
            control_->DeleteKeys(TRACK_DOALL);
            model_.keys.clear();
        } else if (!model_.keys.empty()) {
            const int index = Any(static_cast<int>(model_.keys.size()));
            control_->SelectKeyByIndex(index, 7);
            model_.keys[static_cast<std::size_t>(index)].flags = 7;
        }
    }
    void Change() {
        if (Any(4) == 0) return ChangeUnrecordably();
        const int which = Any(8);
        if (which == 7 && theHold.Holding()) return ChangeParents();
        which < 4 ? Write() : Delete();
    }
    // A hold of some changes. A write comes first, so that none is empty.
    void Hold() {
        theHold.Begin();
        open_.clear();
        Write();
        for (int count = Any(4); count > 0; --count)
            Change();
        if (Any(5) == 0) {
            theHold.Cancel();
            return TakeBack(open_);
        }
        theHold.Accept("step");
        steps_.resize(done_++);
        steps_.push_back(open_);
    }
    void TakeBack(std::vector<Meant>& step) {
        for (auto meant = step.rbegin(); meant != step.rend(); ++meant)
            meant->Turn(model_, true);
    }
    void UndoOrRedo(bool undoes) {
        const Table before = Seen(*control_);
        const bool isThere = undoes ? done_ > 0 : done_ < steps_.size();
        EXPECT_EQ(undoes ? host_.Undo() : host_.Redo(), isThere);
        const Table now = Seen(*control_);
        EXPECT_TRUE(now == before || now == told_) << "who depends on it was told of this table";
        if (!isThere) return;
        if (undoes) return TakeBack(steps_[--done_]);
        for (Meant& meant : steps_[done_++])
            meant.Turn(model_, false);
    }
    // A key stands in the way of a step, and is gone again before the next one.
    void DisturbAStep() {
        const TimeValue t = Add();
        UndoOrRedo(Any(2) == 0);
        control_->DeleteKeyAtTime(t);
        TakeOut(t);
    }

    // What lies at a time and beside it. Without a key there the search starts before the first.
    void ExpectFound(TimeValue t) {
        const std::vector<Entry>& keys = model_.keys;
        const int index = model_.At(t) ? static_cast<int>(model_.Place(t) - keys.begin()) : -1;
        EXPECT_EQ(control_->GetKeyIndex(t), index);
        EXPECT_EQ(control_->IsKeyAtTime(t, 0), index >= 0 && t >= 0);
        const auto sides = static_cast<std::uint32_t>(Any(4));
        const int beside = index + (sides & NEXTKEY_RIGHT ? 1 : 0) - (sides & NEXTKEY_LEFT ? 1 : 0);
        const bool isBeside = beside >= 0 && beside < control_->NumKeys();
        TimeValue next = 12345;
        EXPECT_EQ(control_->GetNextKeyTime(t, sides, next), isBeside);
        EXPECT_EQ(next, isBeside ? keys[static_cast<std::size_t>(beside)].t : 12345);
        // Of two keys as near as each other the earlier one, wherever the search starts.
        auto& table = control_->table;
        if (Any(3) == 0) table.lookupIndex = static_cast<std::int32_t>(random_());
        const TarvoKey<Matrix3>& seen = table.FindNearestKey(t);
        const auto nearest = std::ranges::min_element(
            keys, {}, [t](const Entry& key) { return std::abs(std::int64_t{key.t} - t); });
        if (nearest == keys.end())
            EXPECT_TRUE(&seen == &table.InvalidKey() && table.FindBracket(t).IsOneKey());
        else
            EXPECT_TRUE(seen.time == nearest->t && table.At(table.lookupIndex).time == nearest->t);
        if (Any(50) != 0) return;  // it joins the parts of the table
        Tab<TimeValue> times;
        const Interval range(t, Later(t, 9));
        control_->GetKeyTimes(times, range, 0);
        EXPECT_EQ(times.Count(), std::ranges::count_if(keys, [&](const Entry& key) {
                      return range.InInterval(key.t);
                  }));
    }

    Table told_;  // when the controller told of a change last
    Watcher watcher_{[this] { told_ = Seen(*control_); }};
    Alone<OpenTransform> control_;
    Table model_;
    std::vector<Meant> open_;
    std::vector<std::vector<Meant>> steps_;
    std::size_t done_ = 0;
    int newestIdentity_ = 0;
    int span_ = 61;
    std::mt19937 random_{4101};
};

TEST_F(KeyLaw, EditsPastTheHoldLeaveEachRecordToItsOwnKeyOrToNothing) {
    for (int i = 0; i < 20400; ++i) {
        // So many keys that they are held in parts.
        if (i == 20000)
            for (span_ = 6001; model_.keys.size() < 2500;)
                Add();
        const int act = Any(13);
        if (act < 7)
            UndoOrRedo(act < 4);
        else if (act < 10)
            Change();
        else if (act == 10)
            DisturbAStep();
        else
            Hold();
        if (Any(100) == 0) ChangeParents();
        ASSERT_EQ(Seen(*control_), model_) << "after step " << i;
        for (int look = i < 20000 ? 1 : 20; look > 0; --look)
            ExpectFound(AnyTime());
        ASSERT_FALSE(HasFailure()) << "after step " << i;
    }
}

}  // namespace
