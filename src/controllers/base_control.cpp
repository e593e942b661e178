#include "controllers/base_control.h"

#include <utility>

#include "controllers/host_controls.h"
#include "controllers/key_restore.h"
#include "core_link/core_link.h"
#include "host/animate.h"
#include "host/interface.h"
#include "platform/win32.h"

namespace {

// A message of the host that is not passed on to dependents.
constexpr RefMessage kStoppedMessage = 354;

// The platform's millisecond counter, where the cached key is given a time that nothing else
// depends on.
TimeValue CounterTime() {
    return static_cast<TimeValue>(GetTickCount());
}

}  // namespace

template <class T>
BaseControl<T>::BaseControl(SClass_ID superClass, Class_ID id, std::string name)
    : superClassID(superClass), classID(id), className(std::move(name)) {}

template <class T>
BaseControl<T>::~BaseControl() = default;

template <class T>
template <template <class, class> class Record, class... Given>
void BaseControl<T>::PutRecord(bool isHeld, Given... given) {
    static_assert(sizeof(Record<BaseControl, Key>) <= RecordRoom::kMost &&
                  alignof(Record<BaseControl, Key>) <= RecordRoom::kAlignment);
    if (isHeld) theHold.Put(new Record<BaseControl, Key>(*this, given...));
}

template <class T>
int BaseControl<T>::NumKeys() {
    return IsCoreRunning() ? 0 : table.Count();
}

template <class T>
TimeValue BaseControl<T>::GetKeyTime(int index) {
    return (table.Contains(index) ? table.At(index) : KeyTable<T>::InvalidKey()).time;
}

template <class T>
bool BaseControl<T>::GetNextKeyTime(TimeValue t, std::uint32_t flags, TimeValue& next) {
    int index = GetKeyIndex(t);
    if (flags & NEXTKEY_LEFT) --index;
    if (flags & NEXTKEY_RIGHT) ++index;
    if (index < 0 || index >= NumKeys()) return false;
    next = GetKeyTime(index);
    return true;
}

template <class T>
bool BaseControl<T>::IsKeyAtTime(TimeValue t, std::uint32_t) {
    return table.FindExactKey(t).time >= 0;
}

template <class T>
int BaseControl<T>::GetKeyTimes(Tab<TimeValue>& times, Interval range, std::uint32_t) {
    for (const Key& key : table.keys) {
        if (range.InInterval(key.time)) times.Append(1, &key.time);
    }
    return 0;
}

template <class T>
void BaseControl<T>::DeleteTime(Interval range, std::uint32_t flags) {
    const std::int32_t first = flags & TIME_INCLEFT ? table.FirstNotBefore(range.Start())
                                                    : table.FirstAfter(range.Start());
    if (!table.Contains(first) || !range.InInterval(table.At(first).time)) return;
    std::int32_t behindLast = table.FirstAfter(range.End());
    if (table.At(behindLast - 1).time == range.End() && !(flags & TIME_INCRIGHT)) --behindLast;

    PutRecord<ControlCompleteKeyRestore>(theHold.Holding(), first, behindLast);
    while (behindLast > first)
        table.Remove(--behindLast);
}

template <class T>
void BaseControl<T>::DeleteKeys(std::uint32_t flags) {
    if (!(flags & TRACK_DOSEL)) {
        if (flags & TRACK_DOALL) table.Clear();
        return;
    }
    for (std::int32_t index = 0; index < table.Count();) {
        if (table.At(index).flags)
            DeleteKeyByIndex(index);
        else
            ++index;
    }
}

template <class T>
void BaseControl<T>::DeleteKeyByIndex(int index) {
    if (!table.Contains(index)) return;
    PutRecord<ControlKeyDeleteRestore>(theHold.Holding(), index);
    table.Remove(index);
}

template <class T>
void BaseControl<T>::SelectKeys(TrackHitTab& hits, std::uint32_t flags) {
    if (flags & SELKEYS_CLEARKEYS) {
        for (Key& key : table.keys.EditWhole())
            key.flags = 0;
        return;
    }
    if (!(flags & (SELKEYS_SELECT | SELKEYS_DESELECT))) return;
    for (int i = 0; i < hits.Count(); ++i) {
        if (hits[i].hit < table.keys.size())
            table.keys.Edit(hits[i].hit).flags = flags & SELKEYS_SELECT ? 1 : 0;
    }
}

template <class T>
void BaseControl<T>::SelectKeyByIndex(int index, std::uint32_t value) {
    if (table.Contains(index)) table.Edit(index).flags = value;
}

template <class T>
IOResult BaseControl<T>::Save(ISave* save) {
    SaveKeys(*save, table);
    return IO_OK;
}

template <class T>
IOResult BaseControl<T>::Load(ILoad* load) {
    LoadKeys(*load, table);
    // Off every time that is asked for, so that keys are evaluated anew; without keys the loaded
    // value stands.
    table.currentKey.time = -1;
    Interval valid = FOREVER;
    this->GetValue(CounterTime(), &table.currentKey.value, valid, CTRL_ABSOLUTE);
    return IO_OK;
}

template <class T>
RefResult BaseControl<T>::NotifyRefChanged(Interval, RefTargetHandle, PartID&, RefMessage message) {
    return message == kStoppedMessage ? REF_STOP : REF_SUCCEED;
}

template <class T>
RefTargetHandle BaseControl<T>::Clone(RemapDir& remap) {
    NewControl made = MakeControl(superClassID, classID);
    if (!made) return nullptr;
    auto* const copy = static_cast<BaseControl*>(made.get());
    copy->table.keys.EditWhole() = table.keys.Whole();
    copy->table.currentKey = table.currentKey;
    this->BaseClone(this, copy, remap);
    return made.release();
}

template <class T>
void BaseControl<T>::Copy(Control* from) {
    if (!from || from == this || from->SuperClassID() != superClassID) return;
    table.Clear();
    table.names.VoidAll();
    for (const TimeValue t : SamplingTimes(*from)) {
        Key key{0, t, T{}};
        Interval valid = FOREVER;
        from->GetValue(t, &key.value, valid, CTRL_RELATIVE);
        table.keys.push_back(key);
    }
    table.currentKey = this->GetKeyAtTime(CounterTime());
}

template <class T>
void BaseControl<T>::TakeValue(TimeValue t, const T& value, TimeValue cachedAt) {
    const bool isHeld = theHold.Holding();
    PutRecord<ControlKeyModRestore>(isHeld);
    table.currentKey.time = cachedAt;
    table.currentKey.value = value;
    if (Animating()) AddKey({0, t, value}, isHeld);
    AnnounceChange(*this);
}

template <class T>
void BaseControl<T>::AddKey(const Key& key, bool isHeld) {
    const KeyName name = isHeld ? table.names.New() : kNoName;
    const bool isLast = table.EndsBefore(key.time);
    const std::int32_t index = isLast ? table.Count() : table.FirstNotBefore(key.time);
    if (isLast) {
        PutRecord<ControlKeyAppendRestore>(isHeld, index, key.time, name);
    } else if (table.At(index).time == key.time) {
        PutRecord<ControlKeyModRestore>(isHeld, index, name);
        return table.Overwrite(index, key, name);
    } else {
        PutRecord<ControlKeyInsertRestore>(isHeld, index, key.time, name);
    }
    table.Insert(index, key, name);
}

template <class T>
bool BaseControl<T>::IsNotKept(TimeValue t) const {
    const bool isBeyond = table.EndsBefore(t) && table.EndsBefore(table.currentKey.time);
    return !table.keys.empty() && !isBeyond;
}

template class BaseControl<float>;
template class BaseControl<Matrix3>;
