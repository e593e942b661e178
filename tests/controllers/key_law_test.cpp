// A key table agrees with an ordered map under whatever is done to it inside holds, and undo, redo
// and cancel bring both back to the same states.

#include <gtest/gtest.h>

#include <map>
#include <random>

#include "controllers/control_world.h"
#include "host/animate.h"
#include "host/hold.h"

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
    bool operator==(const Entry&) const = default;
};

// The same table as an ordered map.
struct Model {
    std::map<TimeValue, Entry> keys;
    float currentValue = 0;
    TimeValue currentTime = 0;
    bool operator==(const Model&) const = default;
};

template <class C>
Model Seen(const C& control) {
    Model model;
    for (const auto& key : control.table.keys)
        model.keys.emplace_hint(model.keys.end(), key.time, Entry{key.flags, Number(key.value)});
    model.currentValue = Number(control.table.currentKey.value);
    model.currentTime = control.table.currentKey.time;
    return model;
}

template <class C>
class KeyLaw : public testing::Test {
  protected:
    // An odd number of small times, so that keys meet each other often.
    TimeValue AnyTime() { return static_cast<TimeValue>(random_() % 61) - 20; }
    float AnyNumber() { return static_cast<float>(random_() % 1000); }
    bool Chance() { return random_() % 2 == 0; }

    void Change() {
        switch (random_() % 8) {
            case 0:
            case 1:
                return Set(Chance());
            case 2:
            case 3:
                return Add();
            case 4: {
                const TimeValue t = AnyTime();
                control_->DeleteKeyAtTime(t);
                model_.keys.erase(t);
                return;
            }
            case 5:
                return DeleteIndex(static_cast<int>(random_() % 12) - 1);
            case 6:
                control_->DeleteKeys(TRACK_DOSEL | (Chance() ? TRACK_DOALL : 0));
                std::erase_if(model_.keys, [](const auto& key) { return key.second.flags != 0; });
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
        model_.currentValue = value;
        if constexpr (std::is_same_v<C, OpenTransform>) model_.currentTime = t;
        if (keyed) model_.keys[t] = {0, value};
    }

    void Add() {
        const TimeValue t = AnyTime();
        const Entry entry{static_cast<std::uint32_t>(random_() % 2), AnyNumber()};
        control_->AddKey({entry.flags, t, MakeValue(*control_, entry.value)});
        model_.keys[t] = entry;
    }

    void DeleteIndex(int index) {
        control_->DeleteKeyByIndex(index);
        if (index < 0 || index >= static_cast<int>(model_.keys.size())) return;
        model_.keys.erase(std::next(model_.keys.begin(), index));
    }

    void DeleteRange() {
        const TimeValue start = AnyTime();
        const TimeValue end = AnyTime();
        const std::uint32_t flags = (Chance() ? TIME_INCLEFT : 0) | (Chance() ? TIME_INCRIGHT : 0);
        control_->DeleteTime(Interval(start, end), flags);
        std::erase_if(model_.keys, [&](const auto& key) {
            return key.first >= start && key.first <= end &&
                   (key.first != start || flags & TIME_INCLEFT) &&
                   (key.first != end || flags & TIME_INCRIGHT);
        });
    }

    // A hold of one to four changes. A write comes first, so that none is empty.
    void Step() {
        const Model before = model_;
        theHold.Begin();
        Set(Chance());
        for (std::uint32_t more = static_cast<std::uint32_t>(random_() % 4); more > 0; --more)
            Change();
        if (random_() % 5 == 0) {
            theHold.Cancel();
            model_ = before;
            return;
        }
        theHold.Accept("step");
        undo_.push_back(before);
        redo_.clear();
    }

    void Undo() {
        if (undo_.empty()) return;
        ASSERT_TRUE(world_.Host().Undo());
        redo_.push_back(std::exchange(model_, undo_.back()));
        undo_.pop_back();
    }

    void Redo() {
        if (redo_.empty()) return;
        ASSERT_TRUE(world_.Host().Redo());
        undo_.push_back(std::exchange(model_, redo_.back()));
        redo_.pop_back();
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
    Alone<C> control_;
    Model model_;
    std::vector<Model> undo_;
    std::vector<Model> redo_;
    std::mt19937 random_{4101};
};

using Controls = testing::Types<OpenScalar, OpenTransform>;
TYPED_TEST_SUITE(KeyLaw, Controls);

TYPED_TEST(KeyLaw, ATableAgreesWithAnOrderedMapThroughUndoRedoAndCancel) {
    for (int i = 0; i < 3000; ++i) {
        switch (this->random_() % 8) {
            case 0:
            case 1:
                this->Undo();
                break;
            case 2:
                this->Redo();
                break;
            default:
                this->Step();
        }
        ASSERT_EQ(Seen(*this->control_), this->model_) << "after step " << i;
        if (i % 50 == 0) this->CheckLookups();
    }
}

// Whoever edits past the hold breaks what the records rely on; the table stays a table.
TYPED_TEST(KeyLaw, EditsPastTheHoldLeaveEveryRecordHarmless) {
    for (int i = 0; i < 3000; ++i) {
        switch (this->random_() % 6) {
            case 0:
                this->world_.Host().Undo();
                break;
            case 1:
                this->world_.Host().Redo();
                break;
            case 2:
                this->Change();
                break;
            case 3:
                if (this->random_() % 8 == 0) this->control_->DeleteKeys(TRACK_DOALL);
                break;
            default:
                this->Step();
        }
        const auto& keys = this->control_->table.keys;
        for (std::size_t k = 1; k < keys.size(); ++k)
            ASSERT_LT(keys[k - 1].time, keys[k].time) << "after step " << i;
    }
}

}  // namespace
