#pragma once

#include <cstddef>

#include "host/host_api.h"

// Base of everything that is allocated on the host's heap, on whichever side of the boundary its
// code stands. The host counts what is alive.
class HOST_API MaxHeapOperators {
  public:
    static void* operator new(std::size_t size);
    static void* operator new(std::size_t, void* place) noexcept { return place; }
    static void operator delete(void* block, std::size_t size) noexcept;

  protected:
    MaxHeapOperators() = default;
    MaxHeapOperators(const MaxHeapOperators&) = default;
    MaxHeapOperators& operator=(const MaxHeapOperators&) = default;
    ~MaxHeapOperators() = default;
};
