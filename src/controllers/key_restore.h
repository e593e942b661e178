#pragma once

#include <cstddef>
#include <utility>
#include <vector>

#include "controllers/base_control.h"
#include "controllers/record_room.h"
#include "foundation/thrown.h"
#include "host/hold.h"

// The records of changes to a key table, one class per kind of change. Each is put on the hold
// before its change, and relies on the hold to take changes back in the opposite order, so that
// positions are those of the moment of the change. Where the table was changed past the hold in
// between, the key that is meant is found by its name and its time wherever it lies by now; if it
// is gone, was overwritten, or has another in its place, the record does nothing. A step that did
// something ends with the change notification; lookupIndex is left alone.

// What they have in common: the controller, which the host keeps alive as long as its records.
template <class C, class K>
class KeyRestore : public RestoreObj {
  public:
    static void* operator new(std::size_t bytes) { return RecordRoom::Take(bytes); }
    static void operator delete(void* record) noexcept { RecordRoom::GiveBack(record); }

    // The host hears of no exception. A step that finds no memory is not made, nor taken back.
    void Restore(int isUndo) final {
        Make("undo of a key", [&] { return TakeBack(isUndo != 0); });
    }
    void Redo() final {
        Make("redo of a key", [&] { return DoAgain(); });
    }

  protected:
    explicit KeyRestore(C& changed) : controller(&changed) {}

    // False if they have done nothing. A hold that is cancelled is taken back with `isUndo` false,
    // and nothing will be done again.
    virtual bool TakeBack(bool isUndo) = 0;
    virtual bool DoAgain() = 0;

    auto& Table() const { return controller->table; }

    C* controller;

  private:
    template <class Step>
    void Make(const char* name, Step step) const {
        TVL::TraceIfThrown(name, [&] {
            if (step()) AnnounceChange(*controller);
        });
    }
};

// A key that comes or goes: on one side of its step it is in the table, on the other here.
template <class C, class K>
class KeyPresenceRestore : public KeyRestore<C, K> {
  protected:
    // Comes to `place`.
    KeyPresenceRestore(C& changed, std::int32_t place, TimeValue at, KeyName comes)
        : KeyRestore<C, K>(changed), isAddition(true), index(place), time(at), name(comes) {}

    // Goes from `place`.
    KeyPresenceRestore(C& changed, std::int32_t place)
        : KeyRestore<C, K>(changed),
          key(this->Table().At(place)),
          isAddition(false),
          index(place),
          time(key.time),
          name(this->Table().names.Give(place)) {}

  private:
    bool TakeBack(bool) final { return Turn(true); }
    bool DoAgain() final { return Turn(false); }

    bool Turn(bool toUndone) {
        if (undone == toUndone || !(toUndone == isAddition ? TakeOut() : PutBack())) return false;
        undone = toUndone;
        return true;
    }

    // An added key comes back as it was when it was undone, a deleted one as it was deleted.
    bool TakeOut() {
        auto& table = this->Table();
        const std::int32_t place = table.IndexOf(time, name, index);
        if (place < 0) return false;
        if (isAddition) key = table.At(place);
        table.Remove(place);
        return true;
    }

    // To `index` if that is still its place, and not at all if its time has a key by now or the
    // value has lost its meaning.
    bool PutBack() {
        auto& table = this->Table();
        const std::int32_t place = table.PlaceFor(time, index);
        if (place < 0 || !table.names.IsValid(name)) return false;
        table.Insert(place, key, name);
        return true;
    }

    K key;
    bool undone = false;
    bool isAddition;
    std::int32_t index;
    TimeValue time;
    KeyName name;
};

// A key pushed at the end, whose position is `place`.
template <class C, class K>
struct ControlKeyAppendRestore final : KeyPresenceRestore<C, K> {
    ControlKeyAppendRestore(C& changed, std::int32_t place, TimeValue at, KeyName comes)
        : KeyPresenceRestore<C, K>(changed, place, at, comes) {}
};

// A key inserted so that it has the position `place`.
template <class C, class K>
struct ControlKeyInsertRestore final : KeyPresenceRestore<C, K> {
    ControlKeyInsertRestore(C& changed, std::int32_t place, TimeValue at, KeyName comes)
        : KeyPresenceRestore<C, K>(changed, place, at, comes) {}
};

// The key at `place`, removed.
template <class C, class K>
struct ControlKeyDeleteRestore final : KeyPresenceRestore<C, K> {
    ControlKeyDeleteRestore(C& changed, std::int32_t place)
        : KeyPresenceRestore<C, K>(changed, place) {}
};

// A key overwritten by another of the same time, or the cached key changed.
template <class C, class K>
class ControlKeyModRestore final : public KeyRestore<C, K> {
  public:
    // The cached key. It is always there; the name tells only whether the value still has its
    // meaning.
    explicit ControlKeyModRestore(C& changed)
        : KeyRestore<C, K>(changed),
          index(kCurrentKey),
          key(this->Table().currentKey),
          name(this->Table().names.Newest()),
          target(name) {}

    ControlKeyModRestore(C& changed, std::int32_t place, KeyName comes)
        : KeyRestore<C, K>(changed),
          index(place),
          key(this->Table().At(place)),
          name(this->Table().names.Give(place)),
          target(comes) {}

  private:
    static constexpr std::int32_t kCurrentKey = -1;  // in the place of an index

    bool TakeBack(bool isUndo) override {
        if (isUndo) return DoAgain();
        const K kept = key;
        const bool done = DoAgain();
        key = kept;
        return done;
    }
    bool DoAgain() override {
        auto& table = this->Table();
        if (index == kCurrentKey) {
            if (!table.names.IsValid(target)) return false;
            std::swap(table.currentKey, key);
            return true;
        }
        const std::int32_t place = table.IndexOf(key.time, target, index);
        if (place < 0) return false;
        std::swap(table.Edit(place), key);
        table.names.Set(place, name);
        std::swap(name, target);
        return true;
    }

    std::int32_t index;
    K key;
    KeyName name;    // of `key`
    KeyName target;  // of what stands in its place
};

// The whole table and the cached key. It trades places only with the very keys that it left or took
// there, whatever their values are by then; with any others it would lose those.
template <class C, class K>
class ControlCompleteKeyRestore final : public KeyRestore<C, K> {
  public:
    // The keys from `first` up to `behindLast` are about to go.
    ControlCompleteKeyRestore(C& changed, std::int32_t first, std::int32_t behindLast)
        : KeyRestore<C, K>(changed),
          keys(this->Table().keys.Whole()),
          currentKey(this->Table().currentKey),
          names(this->Table().names.GiveAll(this->Table().Count())),
          target(names),
          newest(this->Table().names.Newest()) {
        target.erase(target.begin() + first, target.begin() + behindLast);
    }

  private:
    // A trade needs no memory. A record that keeps its own keys does, but only what is done again
    // would ask for them, which nothing is behind a cancel.
    bool TakeBack(bool isUndo) override {
        const bool done = DoAgain();
        if (isUndo || !done) return done;
        currentKey = this->Table().currentKey;
        static_cast<void>(TVL::ThrownBy([this] { keys = this->Table().keys.Whole(); }));
        return done;
    }

    // A trade that was passed over is not caught up by the one that would take it back.
    bool DoAgain() override {
        if (std::exchange(passedOver, false)) return false;
        auto& table = this->Table();
        passedOver = !table.names.IsValid(newest) || !table.AreNamed(target);
        if (passedOver) return false;
        table.names.Assign(names);
        table.keys.EditWhole().swap(keys);
        std::swap(table.currentKey, currentKey);
        names.swap(target);
        return true;
    }

    KeyArray<K> keys;
    K currentKey;
    std::vector<KeyName> names;   // of `keys`
    std::vector<KeyName> target;  // of the keys whose place they take
    KeyName newest;               // when the record was made
    bool passedOver = false;
};
