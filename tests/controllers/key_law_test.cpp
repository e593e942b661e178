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

float MakeValue(const OpenScalar&, float number) {
    return number;
}
Matrix3 MakeValue(const OpenTransform&, float number) {
    return MovedBy(number);
}

struct Entry {
    std::uint32_t flags = 0;
    float value = 0;
    int identity = 0;  // of the key that was written; another write makes another key
    bool operator==(const Entry& other) const {
        return flags == other.flags && value == other.value;
    }
};
using Entries = std::map<TimeValue, Entry>;

// The same table as an ordered map.
struct Model {
    Entries keys;
    float currentValue = 0;
    TimeValue currentTime = 0;
    bool operator==(const Model&) const = default;

    std::optional<Entry> At(TimeValue t) const {
        const auto found = keys.find(t);
        return found == keys.end() ? std::nullopt : std::optional(found->second);
    }
    std::map<TimeValue, int> Identities() const {
        std::map<TimeValue, int> identities;
        for (const auto& [t, entry] : keys)
            identities[t] = entry.identity;
        return identities;
    }
};

// What one record means: it holds what is to trade places with something that stands in the table.
struct Meant {
    enum class What { kKey, kCachedKey, kTable } what = What::kKey;
    TimeValue t = 0;
    std::optional<Entry> held{};     // none: the time has no key
    int there = 0;                   // the identity that it trades with; 0: no key
    std::optional<Entry> deleted{};  // of a deletion, what comes back each time
    Model table{};
    std::map<TimeValue, int> tableThere{};
    bool isUndone = false;

    void Undo(Model& model) {
        if (!isUndone) isUndone = Trade(model);
    }
    void Redo(Model& model) {
        if (!isUndone || !Trade(model)) return;
        isUndone = false;
        if (deleted) held = deleted;
    }

  private:
    bool Trade(Model& model) {
        if (what == What::kKey) return TradeKey(model);
        if (what == What::kTable) {
            if (model.Identities() != tableThere) return false;
            tableThere = table.Identities();
            std::swap(model.keys, table.keys);
        }
        std::swap(model.currentValue, table.currentValue);
        std::swap(model.currentTime, table.currentTime);
        return true;
    }
    bool TradeKey(Model& model) {
        const std::optional<Entry> current = model.At(t);
        if ((current ? current->identity : 0) != there) return false;
        if (held)
            model.keys[t] = *held;
        else
            model.keys.erase(t);
        there = held ? held->identity : 0;
        held = current;
        return true;
    }
};
using Step = std::vector<Meant>;

// Looks at the controller whenever that tells of a change.
template <class C>
class Onlooker : public ReferenceMaker {
  public:
    SClass_ID SuperClassID() override { return 0; }
    Class_ID ClassID() override { return {}; }
    void DeleteThis() override {}
    int NumRefs() override { return 1; }
    RefTargetHandle GetReference(int) override { return control_; }
    void SetReference(int, RefTargetHandle target) override { control_ = static_cast<C*>(target); }
    RefResult NotifyRefChanged(Interval, RefTargetHandle, PartID&, RefMessage) override {
        for (int i = 1; i < control_->NumKeys(); ++i)
            EXPECT_LT(control_->GetKeyTime(i - 1), control_->GetKeyTime(i));
        return REF_SUCCEED;
    }

  private:
    C* control_ = nullptr;
};

// Read as it lies, so that the table stays as the edits have left it.
template <class C>
Model Seen(const C& control) {
    Model model;
    for (int i = 0; i < control.table.Count(); ++i) {
        const auto& key = control.table.At(i);
        model.keys.emplace_hint(model.keys.end(), key.time, Entry{key.flags, Number(key.value)});
    }
    model.currentValue = Number(control.table.currentKey.value);
    model.currentTime = control.table.currentKey.time;
    return model;
}

template <class C>
class KeyLaw : public testing::Test {
  protected:
    KeyLaw() { onlooker_.ReplaceReference(0, &*control_); }

    int Any(int count) { return static_cast<int>(random_() % static_cast<unsigned>(count)); }
    bool Chance() { return Any(2) == 0; }
    float AnyNumber() { return static_cast<float>(Any(1000)); }

    // An odd number of small times, so that keys meet each other often.
    TimeValue AnyTime() { return Any(span_) - 20; }

    void Record(Meant meant) {
        if (theHold.Holding()) open_.push_back(std::move(meant));
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

    void Change() {
        switch (Any(8)) {
            case 0:
            case 1:
                return Set(Chance());
            case 2:
            case 3:
                return Add();
            case 4: {
                const TimeValue t = AnyTime();
                control_->DeleteKeyAtTime(t);
                return TakeOut(t);
            }
            case 5:
                return DeleteIndex(Any(12) - 1);
            case 6:
                control_->DeleteKeys(TRACK_DOSEL | (Chance() ? TRACK_DOALL : 0));
                for (const auto& [t, entry] : Entries(model_.keys))
                    if (entry.flags != 0) TakeOut(t);
                return;
            default:
                return DeleteRange();
        }
    }

    void Set(bool keyed) {
        const TimeValue t = AnyTime();
        const float value = AnyNumber();
        if (keyed) AnimateOn();
        Write(*control_, t, value);
        AnimateOff();
        Record({.what = Meant::What::kCachedKey, .table = model_});
        model_.currentValue = value;
        if constexpr (std::is_same_v<C, OpenTransform>) model_.currentTime = t;
        if (keyed) Put(t, {0, value});
    }

    void Add() {
        const TimeValue t = AnyTime();
        const Entry entry{static_cast<std::uint32_t>(Any(2)), AnyNumber()};
        control_->AddKey({entry.flags, t, MakeValue(*control_, entry.value)});
        Put(t, entry);
    }

    void DeleteIndex(int index) {
        control_->DeleteKeyByIndex(index);
        if (index < 0 || index >= static_cast<int>(model_.keys.size())) return;
        TakeOut(std::next(model_.keys.begin(), index)->first);
    }

    void DeleteRange() {
        const TimeValue start = AnyTime();
        const TimeValue end = AnyTime();
        const std::uint32_t flags = (Chance() ? TIME_INCLEFT : 0) | (Chance() ? TIME_INCRIGHT : 0);
        control_->DeleteTime(Interval(start, end), flags);
        const Model before = model_;
        const auto gone = std::erase_if(model_.keys, [&](const auto& key) {
            return key.first >= start && key.first <= end &&
                   (key.first != start || flags & TIME_INCLEFT) &&
                   (key.first != end || flags & TIME_INCRIGHT);
        });
        if (gone == 0) return;
        Record({.what = Meant::What::kTable, .table = before, .tableThere = model_.Identities()});
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
        model_.currentValue += 3;
        for (std::vector<Step>* steps : {&undo_, &redo_})
            for (Step& step : *steps)
                step.clear();
    }

    // A hold of some changes. A write comes first, so that none is empty.
    template <class More>
    void Hold(More more) {
        theHold.Begin();
        open_.clear();
        Set(Chance());
        for (int count = Any(4); count > 0; --count)
            more();
        if (Any(5) == 0) {
            theHold.Cancel();
            TakeBack(open_);
            return;
        }
        theHold.Accept("step");
        undo_.push_back(open_);
        redo_.clear();
    }

    void TakeBack(Step& step) {
        for (auto meant = step.rbegin(); meant != step.rend(); ++meant)
            meant->Undo(model_);
    }

    void Undo() {
        if (undo_.empty()) return;
        ASSERT_TRUE(world_.Host().Undo());
        TakeBack(undo_.back());
        redo_.push_back(std::move(undo_.back()));
        undo_.pop_back();
    }

    void Redo() {
        if (redo_.empty()) return;
        ASSERT_TRUE(world_.Host().Redo());
        for (Meant& meant : redo_.back())
            meant.Redo(model_);
        undo_.push_back(std::move(redo_.back()));
        redo_.pop_back();
    }

    // So many keys that they are held in parts.
    void Widen() {
        span_ = 6001;
        for (int i = 0; i < 3000; ++i)
            Add();
    }

    void CheckLookups() {
        ASSERT_EQ(control_->NumKeys(), static_cast<int>(model_.keys.size()));
        for (TimeValue t = -21; t <= 41; ++t) {
            const auto found = model_.keys.find(t);
            const auto index = static_cast<int>(std::distance(model_.keys.begin(), found));
            ASSERT_EQ(control_->GetKeyIndex(t), found == model_.keys.end() ? -1 : index);
            ASSERT_EQ(control_->IsKeyAtTime(t, 0), found != model_.keys.end() && t >= 0);
        }
    }

    ControlWorld world_;
    Onlooker<C> onlooker_;
    Alone<C> control_;
    Model model_;
    Step open_;
    std::vector<Step> undo_;
    std::vector<Step> redo_;
    int newestIdentity_ = 0;
    int span_ = 61;
    std::mt19937 random_{4101};
};

using Controls = testing::Types<OpenScalar, OpenTransform>;
TYPED_TEST_SUITE(KeyLaw, Controls);

// With everything recorded, each undo and redo comes to the very state that there was.
TYPED_TEST(KeyLaw, UndoRedoAndCancelComeToTheStatesThatThereWere) {
    std::vector<Model> states{Model()};
    for (int i = 0; i < 3000; ++i) {
        const int act = this->Any(8);
        const std::size_t steps = this->undo_.size();
        if (act < 2)
            this->Undo();
        else if (act == 2)
            this->Redo();
        else
            this->Hold([this] { this->Change(); });
        ASSERT_EQ(Seen(*this->control_), this->model_) << "after step " << i;
        states.resize(std::max(states.size(), this->undo_.size() + 1));
        Model& state = states[this->undo_.size()];
        if (act > 2 && this->undo_.size() > steps) state = this->model_;
        ASSERT_EQ(this->model_, state) << "after step " << i;
        if (i % 50 == 0) this->CheckLookups();
    }
}

TYPED_TEST(KeyLaw, EditsPastTheHoldLeaveEachRecordToItsOwnKeyOrToNothing) {
    const auto any = [this] { this->Any(4) == 0 ? this->ChangeUnrecordably() : this->Change(); };
    for (int i = 0; i < 20400; ++i) {
        if (i == 20000) this->Widen();
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
        if (i % 500 == 0) this->CheckLookups();
    }
}

}  // namespace
