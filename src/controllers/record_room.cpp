#include "controllers/record_room.h"

#include <new>

#include "host/heap.h"

namespace {

struct RecordBlock : MaxHeapOperators {
    static constexpr std::size_t kBytes = 4032;  // with the rest, what one page holds

    std::size_t taken = 0;    // bytes, from the beginning
    std::size_t records = 0;  // that are alive
    alignas(RecordRoom::kAlignment) std::byte room[kBytes];
};

// From which room is taken; null: the next record begins one. A block that is full is known to its
// records alone, each of which has the way to it in front.
constinit RecordBlock* newest = nullptr;

}  // namespace

void* RecordRoom::Take(std::size_t bytes) {
    constexpr std::size_t kUnit = kAlignment;
    const std::size_t needed = sizeof(RecordBlock*) + (bytes + kUnit - 1) / kUnit * kUnit;
    if (!newest || newest->taken + needed > RecordBlock::kBytes) newest = new RecordBlock;
    std::byte* const room = newest->room + newest->taken;
    newest->taken += needed;
    ++newest->records;
    return new (room) RecordBlock*(newest) + 1;
}

void RecordRoom::GiveBack(void* record) noexcept {
    RecordBlock* const block = static_cast<RecordBlock**>(record)[-1];
    if (--block->records > 0) return;
    if (block == newest) newest = nullptr;
    delete block;
}
