#include "support/allocations.h"

#include <cstdlib>
#include <new>

namespace {

std::size_t allocations = 0;

void* Counted(std::size_t size) noexcept {
    ++allocations;
    return std::malloc(size > 0 ? size : 1);
}

}  // namespace

std::size_t Allocations() {
    return allocations;
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
    std::free(block);
}

void operator delete(void* block, std::size_t) noexcept {
    std::free(block);
}
