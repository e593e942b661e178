// A key table agrees with an ordered map of keys that each have an identity, under whatever is done
// to it inside holds and past them. Undo and redo of a record do to the key that was meant what was
// meant, or nothing, and whoever depends on the table is told.

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <map>
#include <optional>
#include <random>

#include "host/animate.h"
#include "host/hold.h"
#include "tests/controllers/control_world.h"
#include "tests/support/watcher.h"

namespace {

struct Entry {
    std::uint32_t flags = 0;
    float value = 0;
    int identity = 0;  // of the key that was written; another write makes another key
    bool operator==(const Entry& o) const { return flags == o.flags && value == o.value; }
};

struct Table {
    std::map<TimeValue, Entry> keys;
    Entry cached;
    TimeValue cachedTime = 0;
    bool operator==(const Table&) const = default;

    std::optional<Entry> At(TimeValue t) const {
        const auto found = keys.find(t);
        return found == keys.end() ? std::nullopt : std::optional(found->second);
    }
    void MoveBy(float distance) {
        for (auto& [t, entry] : keys)
            entry.value += distance;
        cached.value += distance;
    }
    std::vector<int> Identities() const {
        std::vector<int> identities;
        for (const auto& [t, entry] : keys)
            identities.push_back(entry.identity);
        return identities;
    }
};

// One record: it holds what is to trade places with something that stands in the table.
struct Meant {
    bool isCached = false;
    TimeValue t = 0;
    std::optional<Entry> held{};     // none: the time has no key
    int there = 0;                   // the identity that it trades with; 0: no key
    std::optional<Entry> deleted{};  // of a deletion, what comes back each time
    std::optional<Table> whole{};    // of a deleted range, what trades with all that is there
    std::vector<int> left{};         // if these are there
    float moved = 0;                 // of the host's record of a new parent, how far all goes
    bool isUndone = false;

    void Turn(Table& table, bool toUndone) {
        if (isUndone == toUndone || !Trade(table)) return;
        isUndone = toUndone;
        if (!isUndone && deleted) held = deleted;
    }

  private:
    bool Trade(Table& table) {
        if (moved != 0) {
            table.MoveBy(isUndone ? moved : -moved);
            return true;
        }
        if (whole) {
            if (table.Identities() != left) return false;
            std::swap(table, *whole);
            left = table.Identities();
            return true;
        }
        if (isCached) {
            std::swap(table.cached, *held);
            std::swap(table.cachedTime, t);
            return true;
        }
        const std::optional<Entry> current = table.At(t);
        if ((current ? current->identity : 0) != there) return false;
        if (held)
            table.keys[t] = *held;
        else
            table.keys.erase(t);
        there = held ? held->identity : 0;
        held = current;
        return true;
    }
};

// Read as it lies, so that the table stays as the edits have left it.
Table Seen(const OpenTransform& control) {
    Table seen;
    for (int i = 0; i < control.table.Count(); ++i) {
        const auto& key = control.table.At(i);
        seen.keys.emplace_hint(seen.keys.end(), key.time, Entry{key.flags, key.value.m[3][0]});
    }
    seen.cached.value = control.table.currentKey.value.m[3][0];
    seen.cachedTime = control.table.currentKey.time;
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

constexpr TimeValue kFirst = std::numeric_limits<TimeValue>::min();
constexpr TimeValue kLast = std::numeric_limits<TimeValue>::max();

TimeValue Later(TimeValue t, int by) {
    return static_cast<TimeValue>(std::clamp<std::int64_t>(std::int64_t{t} + by, kFirst, kLast));
}

class KeyLaw : public testing::Test {
  protected:
    KeyLaw() { watcher_.ReplaceReference(0, control_.get()); }

    int Any(int count) { return static_cast<int>(random_() % static_cast<unsigned>(count)); }

    // An odd number of small times, so that keys meet each other often; and those at the ends.
    TimeValue AnyTime() {
        if (Any(40) == 0) return Any(2) == 0 ? kFirst : kLast;
        return Any(span_) - 20;
    }

    void Record(Meant meant) {
        if (theHold.Holding()) open_.push_back(meant);
    }
    void Put(TimeValue t, Entry entry) {
        entry.identity = ++newestIdentity_;
        Record({.t = t, .held = model_.At(t), .there = entry.identity});
        model_.keys[t] = entry;
    }
    void TakeOut(TimeValue t) {
        const std::optional<Entry> entry = model_.At(t);
        if (!entry) return;
        Record({.t = t, .held = entry, .deleted = entry});
        model_.keys.erase(t);
    }

    void Set(bool keyed) {
        const TimeValue t = AnyTime();
        const auto value = static_cast<float>(Any(1000));
        if (keyed) AnimateOn();
        SetWorld(*control_, t, MovedBy(value));
        AnimateOff();
        Record({.isCached = true, .t = model_.cachedTime, .held = model_.cached});
        model_.cached.value = value;
        model_.cachedTime = t;
        if (keyed) Put(t, {0, value});
    }
    void Add(TimeValue t) {
        const Entry entry{static_cast<std::uint32_t>(Any(2)), static_cast<float>(Any(1000))};
        control_->AddKey({entry.flags, t, MovedBy(entry.value)});
        Put(t, entry);
    }
    void Delete() {
        const TimeValue t = AnyTime();
        const int index = Any(12);
        const bool isThere = index < static_cast<int>(model_.keys.size());
        switch (Any(4)) {
            case 3:
                return DeleteTime(Any(20) == 0 ? FOREVER : Interval(t, Later(t, Any(9) - 2)),
                                  Any(4));
            case 0:
                control_->DeleteKeyAtTime(t);
                return TakeOut(t);
            case 1:
                control_->DeleteKeyByIndex(index);
                if (isThere) TakeOut(std::next(model_.keys.begin(), index)->first);
                return;
            default:
                control_->DeleteKeys(TRACK_DOSEL | (isThere ? TRACK_DOALL : 0));
                for (const auto& [time, entry] : std::map(model_.keys))
                    if (entry.flags != 0) TakeOut(time);
        }
    }
    // Keys on the ends stay unless they are included. No key within leaves nothing to take back.
    void DeleteTime(Interval range, int ends) {
        const bool isLeft = ends & 1;
        const bool isRight = ends & 2;
        control_->DeleteTime(range, (isLeft ? TIME_INCLEFT : 0) | (isRight ? TIME_INCRIGHT : 0));
        auto& keys = model_.keys;
        const auto first =
            isLeft ? keys.lower_bound(range.Start()) : keys.upper_bound(range.Start());
        if (first == keys.end() || first->first > range.End()) return;
        const Table before = model_;
        keys.erase(first, isRight ? keys.upper_bound(range.End()) : keys.lower_bound(range.End()));
        Record({.whole = before, .left = model_.Identities()});
    }
    // Past the hold nothing will take it back, so that what records hold belongs nowhere any more.
    void ChangeParents() {
        model_.MoveBy(kWay);
        if (theHold.Holding()) {
            theHold.Put(new NewParent(*control_));
            return Record({.moved = kWay});
        }
        control_->ChangeParents(0, MovedBy(kWay), Matrix3(), Matrix3());
        for (std::vector<Meant>& step : steps_)
            std::erase_if(step, [](const Meant& meant) { return meant.moved == 0; });
    }
    void Change() {
        const int which = Any(8);
        if (which == 7 && theHold.Holding()) return ChangeParents();
        which < 2 ? Set(which == 0) : which < 4 ? Add(AnyTime()) : Delete();
    }
    // What no hold ever records.
    void ChangeUnrecordably() {
        if (Any(10) == 0) {
            control_->DeleteKeys(TRACK_DOALL);
            model_.keys.clear();
        } else if (!model_.keys.empty()) {
            const int index = Any(static_cast<int>(model_.keys.size()));
            control_->SelectKeyByIndex(index, 7);
            std::next(model_.keys.begin(), index)->second.flags = 7;
        }
    }
    // A hold of some changes. A write comes first, so that none is empty.
    template <class More>
    void Hold(More more) {
        theHold.Begin();
        open_.clear();
        Any(2) == 0 ? Set(Any(2) == 0) : Add(AnyTime());
        for (int count = Any(4); count > 0; --count)
            more();
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
    void Undo() {
        const Table before = Seen(*control_);
        EXPECT_EQ(world_.Host().Undo(), done_ > 0);
        ExpectTold(before);
        if (done_ > 0) TakeBack(steps_[--done_]);
    }
    void Redo() {
        const Table before = Seen(*control_);
        EXPECT_EQ(world_.Host().Redo(), done_ < steps_.size());
        ExpectTold(before);
        if (done_ == steps_.size()) return;
        for (Meant& meant : steps_[done_++])
            meant.Turn(model_, false);
    }

    // What lies at a time and beside it. Without a key there the search starts before the first.
    void ExpectFound(TimeValue t) {
        const auto found = model_.keys.find(t);
        const bool isThere = found != model_.keys.end();
        const int index =
            isThere ? static_cast<int>(std::distance(model_.keys.begin(), found)) : -1;
        EXPECT_EQ(control_->GetKeyIndex(t), index);
        EXPECT_EQ(control_->IsKeyAtTime(t, 0), isThere && t >= 0);
        const auto sides = static_cast<std::uint32_t>(Any(4));
        const int beside = index + (sides & NEXTKEY_RIGHT ? 1 : 0) - (sides & NEXTKEY_LEFT ? 1 : 0);
        const bool isBeside = beside >= 0 && beside < control_->NumKeys();
        TimeValue next = 12345;
        EXPECT_EQ(control_->GetNextKeyTime(t, sides, next), isBeside);
        EXPECT_EQ(next, isBeside ? std::next(model_.keys.begin(), beside)->first : 12345);
        // Of two keys as near as each other the earlier one, wherever the search starts.
        const auto nearest = std::ranges::min_element(model_.keys, {}, [t](const auto& key) {
            return std::abs(std::int64_t{key.first} - t);
        });
        auto& table = control_->table;
        if (Any(3) == 0) table.lookupIndex = static_cast<std::int32_t>(random_());
        const TarvoKey<Matrix3>& seen = table.FindNearestKey(t);
        EXPECT_EQ(&seen == &table.InvalidKey(), nearest == model_.keys.end());
        if (nearest != model_.keys.end()) {
            EXPECT_EQ(seen.time, nearest->first);
            EXPECT_EQ(table.At(table.lookupIndex).time, nearest->first);
        } else {
            EXPECT_TRUE(table.FindBracket(t).IsOneKey());
        }
        if (Any(50) != 0) return;  // it joins the parts of the table
        Tab<TimeValue> times;
        control_->GetKeyTimes(times, Interval(t, Later(t, 9)), 0);
        EXPECT_EQ(times.Count(),
                  std::distance(model_.keys.lower_bound(t), model_.keys.upper_bound(Later(t, 9))));
    }

    // A key stands in the way of a step, and is gone again before the next one.
    void DisturbAStep() {
        const TimeValue t = AnyTime();
        Add(t);
        Any(2) == 0 ? Undo() : Redo();
        control_->DeleteKeyAtTime(t);
        TakeOut(t);
    }

    // Whoever depends on the controller was told of the table as it is now.
    void ExpectTold(const Table& before) {
        const Table now = Seen(*control_);
        EXPECT_TRUE(now == before || now == told_);
    }

    ControlWorld world_;
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
    const auto any = [this] { Any(4) == 0 ? ChangeUnrecordably() : Change(); };
    for (int i = 0; i < 20400; ++i) {
        // So many keys that they are held in parts.
        if (i == 20000)
            for (span_ = 6001; model_.keys.size() < 2500;)
                Add(AnyTime());
        const int act = Any(13);
        if (act < 4)
            Undo();
        else if (act < 7)
            Redo();
        else if (act < 10)
            any();
        else if (act == 10)
            DisturbAStep();
        else
            Hold(any);
        if (Any(100) == 0) ChangeParents();
        ASSERT_EQ(Seen(*control_), model_) << "after step " << i;
        for (int look = i < 20000 ? 1 : 20; look > 0; --look)
            ExpectFound(AnyTime());
        ASSERT_FALSE(HasFailure()) << "after step " << i;
    }
}

}  // namespace
