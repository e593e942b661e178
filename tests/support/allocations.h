#pragma once

#include <cstddef>

// What this process has asked of operator new. A program that uses one of these has the counting
// operator new, which costs a few instructions, the same for all that is measured.
struct HeapCounts {
    std::size_t allocations = 0;
    std::size_t liveBytes = 0;  // as the heap rounds them
    std::size_t peakBytes = 0;
    std::size_t untilFailure = 0;  // 0 for none to come
};
extern HeapCounts heapCounts;

// How often memory was asked for.
inline std::size_t Allocations() {
    return heapCounts.allocations;
}

// While it lives, the nth allocation from its making on fails, one time. One at a time.
class FailingAllocation {
  public:
    explicit FailingAllocation(std::size_t nth) { heapCounts.untilFailure = nth; }
    ~FailingAllocation() { heapCounts.untilFailure = 0; }
    FailingAllocation& operator=(FailingAllocation&&) = delete;

    bool HasFailed() const { return heapCounts.untilFailure == 0; }
};

// The most bytes that were allocated at one time since the object was made, beyond those that were
// then. One at a time.
class AllocationPeak {
  public:
    AllocationPeak() { heapCounts.peakBytes = liveAtStart_; }

    std::size_t Bytes() const { return heapCounts.peakBytes - liveAtStart_; }

  private:
    std::size_t liveAtStart_ = heapCounts.liveBytes;
};
