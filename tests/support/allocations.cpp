#include "support/allocations.h"

#include <cstdlib>
#include <new>

namespace {

std::size_t allocations = 0;

}  // namespace

std::size_t Allocations() {
    return allocations;
}

void* operator new(std::size_t size) {
    ++allocations;
    void* const block = std::malloc(size > 0 ? size : 1);
    if (!block) throw std::bad_alloc();
    return block;
}

void operator delete(void* block) noexcept {
    std::free(block);
}

void operator delete(void* block, std::size_t) noexcept {
    std::free(block);
}
