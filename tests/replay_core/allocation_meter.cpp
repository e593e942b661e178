#include "replay_core/allocation_meter.h"

#include <algorithm>
#include <cstdlib>
#include <new>

namespace {

std::size_t held = 0;
std::size_t peak = 0;
std::size_t allocations = 0;

// The size of a block stands in front of it.
constexpr std::size_t kHead = alignof(std::max_align_t);

void* Take(std::size_t size) noexcept {
    void* const head = std::malloc(kHead + size);
    if (head == nullptr) return nullptr;
    *static_cast<std::size_t*>(head) = size;
    held += size;
    peak = std::max(peak, held);
    ++allocations;
    return static_cast<char*>(head) + kHead;
}

}  // namespace

void* operator new(std::size_t size) {
    if (void* const block = Take(size)) return block;
    throw std::bad_alloc();
}

// A sanitizer's own would hand out blocks without the size in front.
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return Take(size);
}

void operator delete(void* block) noexcept {
    if (block == nullptr) return;
    void* const head = static_cast<char*>(block) - kHead;
    held -= *static_cast<std::size_t*>(head);
    std::free(head);
}

void operator delete(void* block, std::size_t) noexcept {
    operator delete(block);
}

AllocationMeter::AllocationMeter() : heldAtStart_(held), allocationsAtStart_(allocations) {
    peak = held;
}

std::size_t AllocationMeter::PeakBytes() const {
    return peak - heldAtStart_;
}

std::size_t AllocationMeter::Allocations() const {
    return allocations - allocationsAtStart_;
}
