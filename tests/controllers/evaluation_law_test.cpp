// What a controller keeps from one evaluation to the next is never seen: under whatever is done to
// its keys, at whatever times and below whatever parents, it answers as if it had found and worked
// out everything anew.

#include "headless/memory_chunks.h"
#include "tests/controllers/control_world.h"
#include "tests/support/allocations.h"
#include "tests/support/plain_arithmetic.h"

namespace {

class EvaluationLaw : public ControlTest {
  protected:
    using Key = TarvoKey<Matrix3>;

    unsigned Any(unsigned count) { return static_cast<unsigned>(random_()) % count; }

    TimeValue AnyTime() {
        if (Any(60) == 0) return Any(2) == 0 ? INT_MIN : INT_MAX;
        return static_cast<TimeValue>(Any(span_)) - 50;
    }
    TimeValue Near() const { return std::clamp(lately_, -1000, 1000000); }

    // Often the one before, or near it.
    TimeValue NextTime() {
        const TimeValue near = Near() + static_cast<int>(Any(5)) - 2;
        return lately_ = Any(3) == 0 ? AnyTime() : near;
    }

    void Change() {
        OpenTransform& control = *control_;
        auto& table = control.table;
        const int index = static_cast<int>(Any(40));
        const bool isThere = index < table.Count();
        switch (Any(13)) {
            case 0:
                AnimateOn();
                SetWorld(control, NextTime(), AnyMatrix(random_));
                return AnimateOff();
            case 1:
                return SetWorld(control, AnyTime(), AnyMatrix(random_));
            case 2:
                return control.DeleteKeyAtTime(isThere ? table.At(index).time : 0);
            case 3:
                return control.DeleteTime({Near(), Near() + 9}, TIME_INCLEFT);
            case 4:
                return control.SelectKeyByIndex(index, Any(3));
            case 5:
                control.ChangeParents(0, MovedBy(3), TurnedAboutZ(30), Matrix3());
                return;
            case 6:
                if (isThere) table.Edit(index).value = AnyMatrix(random_);
                return;
            case 7:
                if (isThere) control.AddKey({0, table.At(index).time, AnyMatrix(random_)});
                return;
            case 8:
                if (Any(20) == 0) Load();
                return;
            case 9:
                TimesOf(table);  // as one array from here on
                return;
            case 10:
                if (Any(20) == 0) control.DeleteKeys(TRACK_DOALL);
                return;
            default:
                control.AddKey({Any(2), AnyTime(), AnyMatrix(random_)});
        }
    }
    // Adds the keys of another table, of which some take the place of its own. The other one must
    // not be recorded, as it does not live as long as the undo stream.
    void Load() {
        Alone<OpenTransform> other;
        for (unsigned count = Any(9); count > 0; --count)
            other->table.keys.push_back({0, AnyTime(), AnyMatrix(random_)});
        const auto bytes = headless::SavedBytes([&](ISave* save) { return other->Save(save); });
        headless::LoadBytes(bytes, [&](ILoad* load) { return control_->Load(load); });
    }
    void ChangeInAHold() {
        theHold.Begin();
        for (unsigned count = Any(4) + 1; count > 0; --count)
            Change();
        Any(4) == 0 ? theHold.Cancel() : theHold.Accept("step");
    }

    // Found from the first key on.
    Key Plain(TimeValue t, const Matrix3& parent) {
        const auto& table = control_->table;
        int right = 0;
        while (right < table.Count() && table.At(right).time < t)
            ++right;
        const int last = table.Count() - 1;
        if (right <= last && table.At(right).time == t) {
            nearest_ = right;
            return {0, t, table.At(right).value};
        }
        nearest_ = std::min(right, last);
        if (right == 0 || right > last)
            return {last > 0 ? table.At(nearest_).flags : 0, t, table.At(nearest_).value};
        const auto& [l, r] = std::pair(table.At(right - 1), table.At(right));
        const auto from = static_cast<float>(std::int64_t{t} - l.time);
        const auto whole = static_cast<float>(std::int64_t{r.time} - l.time);
        if (std::int64_t{t} - l.time <= std::int64_t{r.time} - t) nearest_ = right - 1;
        const Matrix3 between = PlainBetween(PlainProduct(l.value, parent),
                                             PlainProduct(r.value, parent), from / whole);
        return {0, t, PlainProduct(between, PlainInverse(parent))};
    }
    void ExpectAnswers(TimeValue t, const Matrix3& parent) {
        const auto& table = control_->table;
        Key expected = table.currentKey;
        nearest_ = table.lookupIndex;
        const auto isBeyond = [&](TimeValue at) { return at > table.keys.back().time; };
        const bool isNew =
            table.Count() > 0 && t != expected.time && !(isBeyond(t) && isBeyond(expected.time));
        if (isNew) expected = Plain(t, parent);
        Matrix3 value = parent;
        Interval valid = FOREVER;
        const bool isLocal = Any(2) == 0;
        control_->GetValue(t, &value, valid, isLocal ? CTRL_ABSOLUTE : CTRL_RELATIVE);
        EXPECT_TRUE(SameBits(table.currentKey.value, expected.value));
        EXPECT_TRUE(
            SameBits(value, isLocal ? expected.value : PlainProduct(expected.value, parent)));
        EXPECT_EQ(table.currentKey.time, expected.time);
        EXPECT_EQ(table.currentKey.flags, expected.flags);
        EXPECT_EQ(table.lookupIndex, nearest_);
    }

    Alone<OpenTransform> control_;
    std::mt19937 random_{1807};
    unsigned span_ = 100;
    TimeValue lately_ = 0;
    int nearest_ = 0;
};

TEST_F(EvaluationLaw, WhatIsKeptBetweenEvaluationsIsNeverSeen) {
    Matrix3 parent;
    for (int i = 0; i < 12000; ++i) {
        if (i == 10000)
            for (span_ = 9000; control_->table.Count() < 700;)
                control_->AddKey({0, AnyTime(), AnyMatrix(random_)});
        const unsigned act = Any(8);
        if (act == 0) host_.Undo();
        if (act == 1) host_.Redo();
        if (act == 2) ChangeInAHold();
        if (act == 3) Change();
        if (Any(4) == 0) parent = AnyMatrix(random_);
        for (int look = 0; look < 4; ++look) {
            // The same parent for a while, or one that differs in a sign that no comparison sees.
            if (Any(6) == 0) parent.m[Any(4)][Any(3)] *= -1;
            ExpectAnswers(NextTime(), parent);
        }
        ASSERT_FALSE(HasFailure()) << "after step " << i;
    }
}

TEST_F(EvaluationLaw, AWorldMatrixThatIsSetHasTheBitsOfItsProducts) {
    for (int i = 0; i < 20000; ++i) {
        SetXFormPacket packet;
        packet.tmAxis = AnyMatrix(random_);
        packet.tmAxis.flags = Any(8);  // as whoever made the matrix has left them
        if (Any(2) == 0) packet.tmParent = AnyMatrix(random_);
        Matrix3& value = control_->table.currentKey.value;
        value = Any(2) == 0 ? AnyMatrix(random_) : Matrix3();
        if (Any(8) == 0) value.m[Any(4)][Any(3)] *= -1;
        const bool isAlone = Any(2) == 0;
        const Matrix3 expected =
            PlainProduct(PlainProduct(isAlone ? Matrix3() : value, packet.tmAxis),
                         PlainInverse(packet.tmParent));
        control_->SetValue(i, &packet, 1, isAlone ? CTRL_ABSOLUTE : CTRL_RELATIVE);
        ASSERT_TRUE(SameBits(value, expected)) << i;
    }
}

// Keys that lie evenly, nearly so, in heaps, with a rest or at two rates; so many that marks are
// made of them, and anew when all times have changed; in one array, in parts, and joined again.
TEST_F(EvaluationLaw, ABracketIsFoundHoweverTheKeysLieAndWithoutMemory) {
    auto& table = control_->table;
    for (unsigned way = 0; way < 6; ++way) {
        control_->DeleteKeys(TRACK_DOALL);
        std::vector<TimeValue> times;
        std::int64_t t = way == 5 ? INT_MIN : -1000;
        for (int i = 0; i < (way == 2 ? 40000 : 9000);
             ++i, t += way < 2    ? 7 + way * Any(9)
                       : way == 2 ? (i % 20 == 0 ? 8000 : 1 + Any(5))
                       : way == 3 ? (i == 3000 ? 1000000 : 5)
                                  : (i < 4500 ? 2 : 900000 / way)) {
            if (t > INT_MAX) break;
            times.push_back(static_cast<TimeValue>(t));
            control_->AddKey({0, times.back(), Matrix3()});
        }
        for (int i = 0; i < 6000; ++i) {
            if (i == 2000) {
                for (Key& key : table.keys.EditWhole())
                    key.time += 30;
                times = TimesOf(table);
            }
            if (i == 4000) {
                control_->DeleteKeyByIndex(30);
                times.erase(times.begin() + 30);
            }
            if (i == 4500) TimesOf(table);
            const std::size_t left =
                i % 3 == 0 ? static_cast<std::size_t>(i) : Any(static_cast<unsigned>(times.size()));
            if (left + 1 >= times.size()) continue;
            const auto gap =
                static_cast<unsigned>(times[left + 1]) - static_cast<unsigned>(times[left]);
            const auto at = static_cast<TimeValue>(static_cast<unsigned>(times[left]) + Any(gap));
            const std::size_t before = Allocations();
            const KeyBracket<Matrix3> around = table.FindBracket(at);
            ASSERT_EQ(Allocations(), before);
            ASSERT_EQ(around.left->time, times[left]) << way << ' ' << i;
            ASSERT_EQ(around.right->time, times[at == times[left] ? left : left + 1]);
        }
    }
}

}  // namespace
