#pragma once

#include <cstddef>

// Watches operator new of the whole test program from its construction on.
class AllocationMeter {
  public:
    AllocationMeter();

    // The most bytes that were held at one time, beyond what was held at the start.
    std::size_t PeakBytes() const;

    // How often memory was asked for.
    std::size_t Allocations() const;

  private:
    std::size_t heldAtStart_;
    std::size_t allocationsAtStart_;
};
