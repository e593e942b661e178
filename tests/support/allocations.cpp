#include "tests/support/allocations.h"

#include <algorithm>
#include <cstdlib>
#include <new>

#include "platform/testing.h"

namespace {

std::size_t allocations = 0;
std::size_t liveBytes = 0;
std::size_t peakBytes = 0;

std::size_t untilFailure = 0;  // 0 for none to come

void* Counted(std::size_t size) noexcept {
    if (untilFailure > 0 && --untilFailure == 0) return nullptr;
    void* const block = std::malloc(size > 0 ? size : 1);
    ++allocations;
    liveBytes += platform::RoomOfBlock(block);
    peakBytes = std::max(peakBytes, liveBytes);
    return block;
}

}  // namespace

std::size_t Allocations() {
    return allocations;
}

std::size_t LiveBytes() {
    return liveBytes;
}

FailingAllocation::FailingAllocation(std::size_t nth) {
    untilFailure = nth;
}

FailingAllocation::~FailingAllocation() {
    untilFailure = 0;
}

bool FailingAllocation::HasFailed() const {
    return untilFailure == 0;
}

AllocationPeak::AllocationPeak() : liveAtStart_(liveBytes) {
    peakBytes = liveBytes;
}

std::size_t AllocationPeak::Bytes() const {
    return peakBytes - liveAtStart_;
}

void* operator new(std::size_t size) {
    void* const block = Counted(size);
    if (!block) throw std::bad_alloc();
    return block;
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return Counted(size);
}

void operator delete(void* block) noexcept {
    liveBytes -= platform::RoomOfBlock(block);
    std::free(block);
}

void operator delete(void* block, std::size_t) noexcept {
    operator delete(block);
}
