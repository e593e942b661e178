#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace platform {

// Records behind handles. A handle holds the number of a slot in its low 32 bits and the slot's
// generation, which changes with every record that is removed, in the high 32 bits: a handle that
// is null, made up or stale is told from a good one without touching a record.
template <class Handle, class Record>
class HandleTable {
  public:
    Handle Add(Record record) {
        auto owned = std::make_unique<Record>(std::move(record));
        if (free_.empty()) {
            slots_.emplace_back();
            // Room for every slot to come back to, so that Remove cannot fail.
            free_.reserve(slots_.capacity());
            free_.push_back(slots_.size() - 1);
        }
        const std::size_t slot = free_.back();
        free_.pop_back();
        slots_[slot].record = std::move(owned);
        return MakeHandle(slot, slots_[slot].generation);
    }

    // The record stays where it is until it is removed.
    Record* Find(Handle handle) const {
        const std::size_t slot = SlotOf(handle);
        return slot < slots_.size() ? slots_[slot].record.get() : nullptr;
    }

    bool Remove(Handle handle) {
        const std::size_t slot = SlotOf(handle);
        if (slot >= slots_.size()) return false;
        slots_[slot].record.reset();
        ++slots_[slot].generation;
        free_.push_back(slot);
        return true;
    }

    std::size_t Count() const { return slots_.size() - free_.size(); }

    template <class Visit>
    void ForEach(Visit&& visit) {
        for (Slot& slot : slots_) {
            if (slot.record) visit(*slot.record);
        }
    }

  private:
    struct Slot {
        std::uint32_t generation = 1;
        std::unique_ptr<Record> record;
    };

    static Handle MakeHandle(std::size_t slot, std::uint32_t generation) {
        const std::uint64_t value = (std::uint64_t{generation} << 32) | (slot + 1);
        return reinterpret_cast<Handle>(static_cast<std::uintptr_t>(value));
    }

    // The number of slots if the handle is not one of a living record.
    std::size_t SlotOf(Handle handle) const {
        const std::uint64_t value = reinterpret_cast<std::uintptr_t>(handle);
        const std::size_t number = value & 0xFFFFFFFF;
        if (number == 0 || number > slots_.size()) return slots_.size();
        const Slot& slot = slots_[number - 1];
        return slot.record && slot.generation == value >> 32 ? number - 1 : slots_.size();
    }

    std::vector<Slot> slots_;
    std::vector<std::size_t> free_;
};

}  // namespace platform
