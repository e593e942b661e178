#pragma once

#include <string>

#include "controllers/key_table.h"
#include "host/control.h"
#include "host/hold.h"

template <class C, class K>
class KeyRestore;

// Tells whatever depends on `changed` that it has changed, for all time and in every part.
inline void AnnounceChange(ReferenceTarget& changed) {
    changed.NotifyDependents(FOREVER, PART_ALL, REFMSG_CHANGE, NOTIFY_ALL, true, nullptr);
}

// A keyframe controller over one table of whole values, float or Matrix3. It answers the host's key
// operations from that table; the concrete classes add evaluation, SetValue and their identity.
//
// Inside a hold these put a record before they change anything: SetValue, one for the cached key
// and one for the key that it writes in animate mode; DeleteKeyAtTime, DeleteKeyByIndex and
// DeleteKeys with TRACK_DOSEL, one for each key; DeleteTime, one for the whole table. DeleteKeys
// with TRACK_DOALL, selecting, Copy, Load and ChangeParents put none. SetValue, ChangeParents of a
// transform controller and records that take something back or do it again tell the dependents; the
// rest tells nobody.
//
// While the Core runs, NumKeys is 0: the host, copies and conversions then see a controller without
// keys, though the table is full and values go on being interpolated.
// The order of the virtual operations and of the fields is part of the contract.
template <class T>
class BaseControl : public Control {
  public:
    using Key = TarvoKey<T>;

    ~BaseControl() override;

    void GetClassName(HostString& name) override { name = className; }
    SClass_ID SuperClassID() override { return superClassID; }
    Class_ID ClassID() override { return classID; }
    void DeleteThis() override { delete this; }
    void BeginEditParams(IObjParam* ip, std::uint32_t flags, Animatable* previous) override = 0;
    void EndEditParams(IObjParam* ip, std::uint32_t flags, Animatable* next) override = 0;

    // Indexes outside the table are ignored; the time there is the invalid key's, -1.
    int NumKeys() override;
    TimeValue GetKeyTime(int index) override;
    int GetKeyIndex(TimeValue t) override { return table.IndexOf(t); }

    // The neighbour of the key at exactly `t`. Without such a key NEXTKEY_RIGHT gives the table's
    // first key, wherever `t` is, and NEXTKEY_LEFT nothing.
    bool GetNextKeyTime(TimeValue t, std::uint32_t flags, TimeValue& next) override;
    void DeleteKeyAtTime(TimeValue t) override { DeleteKeyByIndex(table.IndexOf(t)); }
    bool IsKeyAtTime(TimeValue t, std::uint32_t flags) override;  // never at negative times
    int GetKeyTimes(Tab<TimeValue>& times, Interval range, std::uint32_t flags) override;  // 0

    // Removes the keys inside `range`, those on its ends only with TIME_INCLEFT and TIME_INCRIGHT;
    // later keys keep their times.
    void DeleteTime(Interval range, std::uint32_t flags) override;

    // TRACK_DOSEL: the selected keys, each with its own record; else TRACK_DOALL: all, past recall.
    void DeleteKeys(std::uint32_t flags) override;
    void DeleteKeyByIndex(int index) override;
    void SelectKeys(TrackHitTab& hits, std::uint32_t flags) override;
    void SelectKeyByIndex(int index, std::uint32_t value) override;
    void MouseCycleCompleted(TimeValue) override {}
    void MouseCycleStarted(TimeValue) override {}

    // One chunk; see SaveKeys. What is damaged is left out, what is whole is kept.
    IOResult Save(ISave* save) override;
    IOResult Load(ILoad* load) override;
    RefResult NotifyRefChanged(Interval changed, RefTargetHandle target, PartID& part,
                               RefMessage message) override;
    RefTargetHandle Clone(RemapDir& remap) override;

    // Replaces the table by samples of `from`, one per frame over the range of its keys and of
    // those of its parts; no undo. A source of another super class, or this controller itself,
    // changes nothing.
    void Copy(Control* from) override;
    int ChangeParents(TimeValue, const Matrix3&, const Matrix3&, const Matrix3&) override {
        return 1;
    }

    virtual Key GetCurrentKey() { return table.currentKey; }
    // Evaluated; flags 0 unless a class says otherwise.
    virtual Key GetKeyAtTime(TimeValue t) { return table.FindNearestKey(t); }

  protected:
    BaseControl(SClass_ID superClass, Class_ID id, std::string name);

    // The sorted insert through which all recording goes: a later key is appended without a search,
    // a key at a time that has one replaces it.
    void AddKey(const Key& key, bool isHeld = theHold.Holding());

    // What SetValue ends in: the cached key has the value from here on, with the time `cachedAt`,
    // and in animate mode so has the key at `t`.
    void TakeValue(TimeValue t, const T& value, TimeValue cachedAt);

    // Whether GetValue at `t` has to evaluate; the cached key answers for its own time, and beyond
    // the table for all times if its own lies there.
    bool NeedsEvaluation(TimeValue t) const {
        return table.currentKey.time != t && (table.IsRecent(t) || IsNotKept(t));
    }

    KeyTable<T> table;

  private:
    friend class KeyRestore<BaseControl, Key>;

    // Of another time than the cached key's.
    bool IsNotKept(TimeValue t) const;

    // Puts a record of what is about to change on the hold, if that is open.
    template <template <class, class> class Record, class... Given>
    void PutRecord(bool isHeld, Given... given);

    SClass_ID superClassID;
    Class_ID classID;
    std::string className;
};

extern template class BaseControl<float>;
extern template class BaseControl<Matrix3>;
