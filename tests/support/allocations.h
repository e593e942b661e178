#pragma once

#include <cstddef>

// What this process has asked of operator new. A program that calls one of these has the counting
// operator new, which costs a few instructions, the same for all that is measured.

// How often memory was asked for.
std::size_t Allocations();

// Bytes that are allocated now, as the heap rounds them.
std::size_t LiveBytes();

// While it lives, the nth allocation from its making on fails, one time. One at a time.
class FailingAllocation {
  public:
    explicit FailingAllocation(std::size_t nth);
    ~FailingAllocation();
    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;

    bool HasFailed() const;
};

// The most bytes that were allocated at one time since the object was made, beyond those that were
// then. One at a time.
class AllocationPeak {
  public:
    AllocationPeak();

    std::size_t Bytes() const;

  private:
    std::size_t liveAtStart_;
};
