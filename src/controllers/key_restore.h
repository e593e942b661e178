#pragma once

#include <utility>
#include <vector>

#include "controllers/base_control.h"
#include "controllers/change_notification.h"
#include "host/hold.h"

// The records of changes to a key table, one class per kind of change. Each is put on the hold
// before its change, and relies on the hold to take changes back in the opposite order, so that
// positions are those of the moment of the change. Where the table was changed past the hold in
// between, a record that no longer fits does nothing, and a key that it brings back goes where its
// time belongs. A step that did something ends with the change notification; lookupIndex is left
// alone.

// What they have in common: the controller, which the host keeps alive as long as its records.
template <class C, class K>
class KeyRestore : public RestoreObj {
  protected:
    explicit KeyRestore(C& changed) : controller(&changed) {}

    auto& Table() const { return controller->table; }
    void Announce() const { AnnounceChange(*controller); }

    // Puts `key` back at `index`; false if its time has a key by now.
    bool PutBack(std::int32_t index, const K& key) const {
        auto& table = Table();
        if (table.IndexOf(key.time) >= 0) return false;
        const bool fits = index >= 0 && index <= table.Count() &&
                          (index == 0 || table.At(index - 1).time < key.time) &&
                          (index == table.Count() || key.time < table.At(index).time);
        table.Insert(fits ? index : table.FirstNotBefore(key.time), key);
        return true;
    }

    // Moves the key at `index` out of the table; false if there is none.
    bool TakeOut(std::int32_t index, K& key) const {
        if (!Table().Contains(index)) return false;
        key = Table().At(index);
        Table().Remove(index, index + 1);
        return true;
    }

    C* controller;
};

// A key pushed at the end.
template <class C, class K>
class ControlKeyAppendRestore : public KeyRestore<C, K> {
  public:
    explicit ControlKeyAppendRestore(C& changed) : KeyRestore<C, K>(changed) {}

    void Restore(int) override {
        if (undone || !this->TakeOut(this->Table().Count() - 1, key)) return;
        undone = true;
        this->Announce();
    }
    void Redo() override {
        if (!undone || !this->PutBack(this->Table().Count(), key)) return;
        undone = false;
        this->Announce();
    }

  private:
    K key;
    bool undone = false;
};

// A key inserted so that it has `index`.
template <class C, class K>
class ControlKeyInsertRestore : public KeyRestore<C, K> {
  public:
    ControlKeyInsertRestore(C& changed, std::int32_t at) : KeyRestore<C, K>(changed), index(at) {}

    void Restore(int) override {
        if (undone || !this->TakeOut(index, key)) return;
        undone = true;
        this->Announce();
    }
    void Redo() override {
        if (!undone || !this->PutBack(index, key)) return;
        undone = false;
        this->Announce();
    }

  private:
    K key;
    bool undone = false;
    std::int32_t index;
};

// The key at `index`, removed.
template <class C, class K>
class ControlKeyDeleteRestore : public KeyRestore<C, K> {
  public:
    ControlKeyDeleteRestore(C& changed, const K& removed, std::int32_t at)
        : KeyRestore<C, K>(changed), key(removed), index(at) {}

    void Restore(int) override {
        if (undone || !this->PutBack(index, key)) return;
        undone = true;
        this->Announce();
    }
    void Redo() override {
        K removed;
        if (!undone || !this->TakeOut(index, removed)) return;
        undone = false;
        this->Announce();
    }

  private:
    K key;
    bool undone = false;
    std::int32_t index;
};

// A key overwritten by another of the same time, or the cached key changed.
template <class C, class K>
class ControlKeyModRestore : public KeyRestore<C, K> {
  public:
    static constexpr std::int32_t kCurrentKey = -1;  // in the place of an index

    ControlKeyModRestore(C& changed, std::int32_t at)
        : KeyRestore<C, K>(changed),
          index(at),
          key(at == kCurrentKey ? this->Table().currentKey : this->Table().At(at)) {}

    // A cancelled hold sees no Redo, so the record keeps what it writes back.
    void Restore(int isUndo) override {
        if (isUndo) return Swap();
        K* const target = Target();
        if (!target) return;
        *target = key;
        this->Announce();
    }
    void Redo() override { Swap(); }

  private:
    void Swap() {
        K* const target = Target();
        if (!target) return;
        std::swap(*target, key);
        this->Announce();
    }

    // Null if the key that was overwritten is no longer there.
    K* Target() const {
        auto& table = this->Table();
        if (index == kCurrentKey) return &table.currentKey;
        return table.Contains(index) && table.At(index).time == key.time ? &table.At(index)
                                                                         : nullptr;
    }

    std::int32_t index;
    K key;
};

// The whole table and the cached key.
template <class C, class K>
class ControlCompleteKeyRestore : public KeyRestore<C, K> {
  public:
    explicit ControlCompleteKeyRestore(C& changed)
        : KeyRestore<C, K>(changed),
          keys(this->Table().keys),
          currentKey(this->Table().currentKey) {}

    void Restore(int isUndo) override {
        if (isUndo) return Swap();
        this->Table().keys = keys;
        this->Table().currentKey = currentKey;
        this->Announce();
    }
    void Redo() override { Swap(); }

  private:
    void Swap() {
        std::swap(this->Table().keys, keys);
        std::swap(this->Table().currentKey, currentKey);
        this->Announce();
    }

    std::vector<K> keys;
    K currentKey;
};
