#include "tests/support/allocations.h"

#include "platform/testing.h"

HeapCounts heapCounts;

namespace {

void* Counted(std::size_t size) noexcept {
    HeapCounts& heap = heapCounts;
    if (heap.untilFailure > 0 && --heap.untilFailure == 0) return nullptr;
    void* const block = std::malloc(size > 0 ? size : 1);
    ++heap.allocations;
    heap.liveBytes += platform::RoomOfBlock(block);
    heap.peakBytes = std::max(heap.peakBytes, heap.liveBytes);
    return block;
}

}  // namespace

void* operator new(std::size_t size) {
    void* const block = Counted(size);
    if (!block) throw std::bad_alloc();
    return block;
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return Counted(size);
}

void operator delete(void* block) noexcept {
    heapCounts.liveBytes -= platform::RoomOfBlock(block);
    std::free(block);
}

void operator delete(void* block, std::size_t) noexcept {
    operator delete(block);
}
