// A key table agrees with an ordered map of keys that each have an identity, under whatever is done
// to it inside holds and past them. Undo and redo of a record do to the key that was meant what was
// meant, or nothing. Whoever is told of a change finds the table in order.

#include <gtest/gtest.h>

#include <map>
#include <optional>
#include <random>

#include "host/animate.h"
#include "host/hold.h"
#include "tests/controllers/control_world.h"

namespace {

float Number(float value) {
    return value;
}
float Number(const Matrix3& value) {
    return value.m[3][0];
}
void Write(ScalarControl& control, TimeValue t, float value) {
    control.SetValue(t, &value, 0, CTRL_ABSOLUTE);
}
void Write(TransformControl& control, TimeValue t, float value) {
    SetWorld(control, t, MovedBy(value));
}

struct Entry {
    std::uint32_t flags = 0;
    float value = 0;
    int identity = 0;  // of the key that was written; another write makes another key
    bool operator==(const Entry& other) const {
        return flags == other.flags && value == other.value;
    }
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
};

// One record: it holds what is to trade places with something that stands in the table.
struct Meant {
    bool isCached = false;
    TimeValue t = 0;
    std::optional<Entry> held{};     // none: the time has no key
    int there = 0;                   // the identity that it trades with; 0: no key
    std::optional<Entry> deleted{};  // of a deletion, what comes back each time
    bool isUndone = false;

    void Turn(Table& table, bool toUndone) {
        if (isUndone == toUndone || !Trade(table)) return;
        isUndone = toUndone;
        if (!isUndone && deleted) held = deleted;
    }

  private:
    bool Trade(Table& table) {
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
template <class C>
Table Seen(const C& control) {
    Table seen;
    for (int i = 0; i < control.table.Count(); ++i) {
        const auto& key = control.table.At(i);
        seen.keys.emplace_hint(seen.keys.end(), key.time, Entry{key.flags, Number(key.value)});
    }
    seen.cached.value = Number(control.table.currentKey.value);
    seen.cachedTime = control.table.currentKey.time;
    return seen;
}

template <class C>
class KeyLaw : public testing::Test {
  protected:
    KeyLaw() { onlooker_.ReplaceReference(0, &*control_); }

    int Any(int count) { return static_cast<int>(random_() % static_cast<unsigned>(count)); }

    // An odd number of small times, so that keys meet each other often.
    TimeValue AnyTime() { return Any(span_) - 20; }

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
        Write(*control_, t, value);
        AnimateOff();
        Record({.isCached = true, .t = model_.cachedTime, .held = model_.cached});
        model_.cached.value = value;
        if constexpr (std::is_same_v<C, OpenTransform>) model_.cachedTime = t;
        if (keyed) Put(t, {0, value});
    }
    void Add() {
        const Entry entry{static_cast<std::uint32_t>(Any(2)), static_cast<float>(Any(1000))};
        const TimeValue t = AnyTime();
        if constexpr (std::is_same_v<C, OpenScalar>)
            control_->AddKey({entry.flags, t, entry.value});
        else
            control_->AddKey({entry.flags, t, MovedBy(entry.value)});
        Put(t, entry);
    }
    void Delete() {
        const TimeValue t = AnyTime();
        const int index = Any(12);
        const bool isThere = index < static_cast<int>(model_.keys.size());
        switch (Any(3)) {
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
    void Change() {
        const int which = Any(7);
        which < 2 ? Set(which == 0) : which < 4 ? Add() : Delete();
    }
    // What is not modelled: a record that means the whole table.
    void ChangeOrDeleteRange() {
        if (Any(8) > 0) return Change();
        const TimeValue start = AnyTime();
        control_->DeleteTime(Interval(start, start + Any(20)), Any(2) ? TIME_INCLEFT : 0);
        model_ = {};
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
    // Past the hold nothing will take it back, so that what records hold belongs nowhere any more.
    void ChangeParents() {
        control_->ChangeParents(0, MovedBy(3), Matrix3(), Matrix3());
        if constexpr (std::is_same_v<C, OpenScalar>) return;
        for (auto& [t, entry] : model_.keys)
            entry.value += 3;
        model_.cached.value += 3;
        for (std::vector<Meant>& step : steps_)
            step.clear();
    }

    // A hold of some changes. A write comes first, so that none is empty. False if it is cancelled.
    template <class More>
    bool Hold(More more) {
        theHold.Begin();
        open_.clear();
        Set(Any(2) == 0);
        for (int count = Any(4); count > 0; --count)
            more();
        if (Any(5) == 0) {
            theHold.Cancel();
            TakeBack(open_);
            return false;
        }
        theHold.Accept("step");
        steps_.resize(done_++);
        steps_.push_back(open_);
        return true;
    }
    void TakeBack(std::vector<Meant>& step) {
        for (auto meant = step.rbegin(); meant != step.rend(); ++meant)
            meant->Turn(model_, true);
    }
    void Undo() {
        EXPECT_EQ(world_.Host().Undo(), done_ > 0);
        if (done_ > 0) TakeBack(steps_[--done_]);
    }
    void Redo() {
        EXPECT_EQ(world_.Host().Redo(), done_ < steps_.size());
        if (done_ == steps_.size()) return;
        for (Meant& meant : steps_[done_++])
            meant.Turn(model_, false);
    }

    ControlWorld world_;
    Dependent onlooker_{[this] {
        for (int i = 1; i < control_->NumKeys(); ++i)
            EXPECT_LT(control_->GetKeyTime(i - 1), control_->GetKeyTime(i));
    }};
    Alone<C> control_;
    Table model_;
    std::vector<Meant> open_;
    std::vector<std::vector<Meant>> steps_;
    std::size_t done_ = 0;
    int newestIdentity_ = 0;
    int span_ = 61;
    std::mt19937 random_{4101};
};

using Controls = testing::Types<OpenScalar, OpenTransform>;
TYPED_TEST_SUITE(KeyLaw, Controls);

// With everything recorded, each undo and redo comes to the very state that there was.
TYPED_TEST(KeyLaw, UndoRedoAndCancelComeToTheStatesThatThereWere) {
    std::vector<Table> states{Table()};
    for (int i = 0; i < 3000; ++i) {
        const int act = this->Any(8);
        if (act < 2) {
            this->Undo();
        } else if (act == 2) {
            this->Redo();
        } else if (this->Hold([this] { this->ChangeOrDeleteRange(); })) {
            states.resize(this->done_);
            states.push_back(Seen(*this->control_));
        }
        ASSERT_EQ(Seen(*this->control_), states[this->done_]) << "after step " << i;
    }
}

TYPED_TEST(KeyLaw, EditsPastTheHoldLeaveEachRecordToItsOwnKeyOrToNothing) {
    const auto any = [this] { this->Any(4) == 0 ? this->ChangeUnrecordably() : this->Change(); };
    for (int i = 0; i < 20400; ++i) {
        // So many keys that they are held in parts.
        if (i == 20000)
            for (this->span_ = 6001; this->model_.keys.size() < 2500;)
                this->Add();
        const int act = this->Any(12);
        if (act < 4)
            this->Undo();
        else if (act < 7)
            this->Redo();
        else if (act < 10)
            any();
        else
            this->Hold(any);
        if (this->Any(100) == 0) this->ChangeParents();
        ASSERT_EQ(Seen(*this->control_), this->model_) << "after step " << i;
        const TimeValue t = this->AnyTime();
        const auto found = this->model_.keys.find(t);
        const auto index = static_cast<int>(std::distance(this->model_.keys.begin(), found));
        const bool isThere = found != this->model_.keys.end();
        ASSERT_EQ(this->control_->GetKeyIndex(t), isThere ? index : -1);
        ASSERT_EQ(this->control_->IsKeyAtTime(t, 0), isThere && t >= 0);
    }
}

}  // namespace
