#pragma once

#include <algorithm>
#include <utility>
#include <vector>

#include "controllers/base_control.h"
#include "controllers/change_notification.h"
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
    // The host hears of no exception. A step that finds no memory is not made, nor taken back.
    void Restore(int isUndo) final {
        Make("undo of a key", [&] { TakeBack(isUndo); });
    }
    void Redo() final {
        Make("redo of a key", [&] { DoAgain(); });
    }

  protected:
    explicit KeyRestore(C& changed) : controller(&changed) {}

    virtual void TakeBack(int isUndo) = 0;
    virtual void DoAgain() = 0;

    auto& Table() const { return controller->table; }
    void Announce() const { AnnounceChange(*controller); }

    // Puts `key` back, at `index` if that is still its place; false if its time has a key by now,
    // or the value has lost its meaning.
    bool PutBack(std::int32_t index, const K& key, KeyName name) const {
        const std::int32_t place = Table().PlaceFor(key.time, index);
        if (place < 0 || !Table().names.IsValid(name)) return false;
        Table().Insert(place, key, name);
        return true;
    }

    // Moves the key of that name out of the table; false if it is not there.
    bool TakeOut(std::int32_t index, TimeValue time, KeyName name, K& key) const {
        const std::int32_t place = Table().IndexOf(time, name, index);
        if (place < 0) return false;
        key = Table().At(place);
        Table().Remove(place);
        return true;
    }

    C* controller;

  private:
    template <class Step>
    static void Make(const char* name, Step step) {
        const auto thrown = TVL::ThrownBy(step);
        if (thrown) TVL::TraceThrown(name, *thrown);
    }
};

// A key pushed at the end.
template <class C, class K>
class ControlKeyAppendRestore : public KeyRestore<C, K> {
  public:
    ControlKeyAppendRestore(C& changed, TimeValue at, KeyName comes)
        : KeyRestore<C, K>(changed), time(at), name(comes) {}

    void TakeBack(int) override {
        if (undone || !this->TakeOut(this->Table().Count() - 1, time, name, key)) return;
        undone = true;
        this->Announce();
    }
    void DoAgain() override {
        if (!undone || !this->PutBack(this->Table().Count(), key, name)) return;
        undone = false;
        this->Announce();
    }

  private:
    K key;
    bool undone = false;
    TimeValue time;
    KeyName name;
};

// A key inserted so that it has `index`.
template <class C, class K>
class ControlKeyInsertRestore : public KeyRestore<C, K> {
  public:
    ControlKeyInsertRestore(C& changed, std::int32_t place, TimeValue at, KeyName comes)
        : KeyRestore<C, K>(changed), index(place), time(at), name(comes) {}

    void TakeBack(int) override {
        if (undone || !this->TakeOut(index, time, name, key)) return;
        undone = true;
        this->Announce();
    }
    void DoAgain() override {
        if (!undone || !this->PutBack(index, key, name)) return;
        undone = false;
        this->Announce();
    }

  private:
    K key;
    bool undone = false;
    std::int32_t index;
    TimeValue time;
    KeyName name;
};

// The key at `index`, removed.
template <class C, class K>
class ControlKeyDeleteRestore : public KeyRestore<C, K> {
  public:
    ControlKeyDeleteRestore(C& changed, std::int32_t at)
        : KeyRestore<C, K>(changed),
          key(this->Table().At(at)),
          index(at),
          name(this->Table().names.Give(at)) {}

    void TakeBack(int) override {
        if (undone || !this->PutBack(index, key, name)) return;
        undone = true;
        this->Announce();
    }
    void DoAgain() override {
        K removed;
        if (!undone || !this->TakeOut(index, key.time, name, removed)) return;
        undone = false;
        this->Announce();
    }

  private:
    K key;
    bool undone = false;
    std::int32_t index;
    KeyName name;
};

// A key overwritten by another of the same time, or the cached key changed.
template <class C, class K>
class ControlKeyModRestore : public KeyRestore<C, K> {
  public:
    // The cached key. It is always there; the name tells only whether the value still has its
    // meaning.
    explicit ControlKeyModRestore(C& changed)
        : KeyRestore<C, K>(changed),
          index(kCurrentKey),
          key(this->Table().currentKey),
          name(this->Table().names.Newest()),
          target(name) {}

    ControlKeyModRestore(C& changed, std::int32_t at, KeyName comes)
        : KeyRestore<C, K>(changed),
          index(at),
          key(this->Table().At(at)),
          name(this->Table().names.Give(at)),
          target(comes) {}

    // A cancelled hold sees no Redo, so the record keeps what it writes back.
    void TakeBack(int isUndo) override {
        const K kept = key;
        Swap();
        if (!isUndo) key = kept;
    }
    void DoAgain() override { Swap(); }

  private:
    static constexpr std::int32_t kCurrentKey = -1;  // in the place of an index

    void Swap() {
        auto& table = this->Table();
        if (index == kCurrentKey) {
            if (!table.names.IsValid(target)) return;
            std::swap(table.currentKey, key);
        } else {
            const std::int32_t place = table.IndexOf(key.time, target, index);
            if (place < 0) return;
            std::swap(table.At(place), key);
            table.names.Set(place, name);
            std::swap(name, target);
        }
        this->Announce();
    }

    std::int32_t index;
    K key;
    KeyName name;    // of `key`
    KeyName target;  // of what stands in its place
};

// The whole table and the cached key. It trades places only with the very keys that it left or took
// there, whatever their values are by then; with any others it would lose those.
template <class C, class K>
class ControlCompleteKeyRestore : public KeyRestore<C, K> {
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

    // A cancelled hold sees no Redo, so the record keeps what it writes back.
    void TakeBack(int isUndo) override {
        if (isUndo) return Trade();
        const std::vector<K> keptKeys = keys;
        const K keptCurrent = currentKey;
        Trade();
        keys = keptKeys;
        currentKey = keptCurrent;
    }
    void DoAgain() override { Trade(); }

  private:
    // A trade that was passed over is not caught up by the one that would take it back.
    void Trade() {
        if (std::exchange(passedOver, false)) return;
        auto& table = this->Table();
        passedOver = !table.names.IsValid(newest) || !table.AreNamed(target);
        if (passedOver) return;
        table.names.Assign(names);
        table.keys.Whole().swap(keys);
        std::swap(table.currentKey, currentKey);
        names.swap(target);
        this->Announce();
    }

    std::vector<K> keys;
    K currentKey;
    std::vector<KeyName> names;   // of `keys`
    std::vector<KeyName> target;  // of the keys whose place they take
    KeyName newest;               // when the record was made
    bool passedOver = false;
};
