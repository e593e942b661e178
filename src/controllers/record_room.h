#pragma once

#include <cstddef>
#include <new>

#include "host/heap.h"

// Room for the undo records of keys. They come by the thousand in a row and go so, and are small:
// one by one they would cost the host's heap more time than what they record. A block of that heap
// holds some dozens, and goes with the last of them.
class RecordRoom {
  public:
    static constexpr std::size_t kMost = 512;  // bytes of a record
    static constexpr std::size_t kAlignment = alignof(void*);

    static void* Take(std::size_t bytes) {
        constexpr std::size_t kUnit = kAlignment;
        const std::size_t needed = sizeof(Block*) + (bytes + kUnit - 1) / kUnit * kUnit;
        if (!newest_ || newest_->taken + needed > Block::kBytes) BeginBlock();
        std::byte* const room = newest_->room + newest_->taken;
        newest_->taken += needed;
        ++newest_->records;
        return new (room) Block*(newest_) + 1;
    }

    static void GiveBack(void* record) noexcept {
        Block* const block = static_cast<Block**>(record)[-1];
        if (--block->records == 0) EndBlock(block);
    }

  private:
    struct Block : MaxHeapOperators {
        static constexpr std::size_t kBytes = 4032;  // with the rest, what one page holds

        std::size_t taken = 0;    // bytes, from the beginning
        std::size_t records = 0;  // that are alive
        alignas(kAlignment) std::byte room[kBytes];
    };

    static void BeginBlock();
    static void EndBlock(Block* block) noexcept;

    // From which room is taken; null: the next record begins one. A block that is full is known to
    // its records alone, each of which has the way to it in front.
    static constinit inline Block* newest_ = nullptr;
};
